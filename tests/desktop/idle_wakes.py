"""How often a program wakes up, with all that it has started, by the kernel's own count.

A thread that waits is woken, does its work and waits again: the kernel counts this as a voluntary switch. The counts
stand in /proc, where looking at them wakes nobody. What one timer or one event sets off passes through several threads
and processes, so all switches within a few seconds of the first are one wake; later ones are another.
"""

import glob
import os
import time
from typing import NamedTuple

TOGETHER = 3.0  # seconds from the first switch of a wake on; what lasts longer counts again
STEP = 0.1


class Wake(NamedTuple):
    """A wake: seconds from the beginning to it, and its switches."""

    at: float
    switches: int


def read(path: str) -> str:
    """The text of a file; empty once there is none."""
    try:
        with open(path, encoding="utf-8", errors="replace") as file:
            return file.read()
    except OSError:
        return ""


def family(process: int) -> list:
    """The process and all that descend from it."""
    members = [process]
    for member in members:
        for children in glob.glob(f"/proc/{member}/task/*/children"):
            members += [int(child) for child in read(children).split()]
    return members


def switches(process: int) -> dict:
    """The voluntary switches of each thread of the family so far."""
    counts = {}
    for member in family(process):
        for status in glob.glob(f"/proc/{member}/task/*/status"):
            for line in read(status).splitlines():
                if line.startswith("voluntary_ctxt_switches:"):
                    counts[os.path.dirname(status)] = int(line.split()[1])
    return counts


def watch(process: int, seconds: float) -> list:
    """The wakes within so many seconds."""
    wakes = []
    begin = time.monotonic()
    before = switches(process)
    while (now := time.monotonic() - begin) < seconds:
        time.sleep(STEP)
        counts = switches(process)
        # A thread that was not there before was woken as often as it counts.
        moved = sum(max(0, count - before.get(thread, 0)) for thread, count in counts.items())
        before = counts
        if moved and wakes and now - wakes[-1].at < TOGETHER:
            wakes[-1] = Wake(wakes[-1].at, wakes[-1].switches + moved)
        elif moved:
            wakes.append(Wake(now, moved))
    return wakes


def settle(process: int):
    """Waits until the program has slept for a while: what belongs to its start is over by then."""
    tries = 8
    for _ in range(tries):
        wakes = watch(process, 15.0)
        if not wakes:
            return
    raise AssertionError(f"no rest in {tries * 15} seconds, at last {wakes}")
