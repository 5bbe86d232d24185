#!/usr/bin/python3
"""What happens on the lab's laptop when the guard goes away while something is frozen; see scene.py.

    thaw_scene.py NAME FOLDER
"""

import contextlib
import json
import os
import random
import signal
import stat
import subprocess
import sys
import time

import acting
import labs
from acting import ONCE, ONCE_THRESHOLD, Guard, downloading, save_settings, state, suspended

MEGABYTES = 1_000_000
EARLIER_START = "an earlier process of this number"


def is_recorded(download) -> bool:
    return download.is_frozen() and bool(suspended())


def ended_by(folder: str, number: int, *options: str) -> dict:
    """A guard that holds a download frozen and is ended; the download goes on to its end."""
    save_settings()
    with Guard(folder, *options) as guard:
        guard.baseline()
        with downloading("photo-backup", 6 * MEGABYTES, 2 * MEGABYTES) as download:
            guard.wait_for(lambda: is_recorded(download), "a frozen download")
            status = guard.end(number) if number else guard.process.wait(90)
            return {"guard": status, "state": state(download.pid), "left": suspended()} | download.finish()


def duration(folder: str) -> dict:
    return ended_by(folder, 0, "--duration", "30")


def terminated(folder: str) -> dict:
    return ended_by(folder, signal.SIGTERM)


def interrupted(folder: str) -> dict:
    return ended_by(folder, signal.SIGINT)


def recovery(folder: str) -> dict:
    """The guard is killed; the next one thaws what the first one froze."""
    save_settings(threshold=ONCE_THRESHOLD)
    with Guard(folder) as first:
        first.baseline()
        with downloading(*ONCE) as download:
            first.wait_for(lambda: is_recorded(download), "a frozen download")
            first.wait_for_lifelines()
            seen = {"killed": first.end(signal.SIGKILL), "state": state(download.pid)}
            # No rule that could be crossed any more: what is thawed stays so.
            save_settings(threshold=10**12)
            with Guard(folder) as second:
                second.wait_for_text("Recovered from")
                seen |= {"left": suspended()} | download.finish()
                return seen | {"guard": second.end(), "lines": second.lines()}


def watchdog_of(process: int) -> int:
    """The id of the shell that will thaw the process; 0: there is none."""
    for candidate in labs.processes():
        try:
            with open(f"/proc/{candidate}/cmdline", "rb") as file:
                words = file.read().split(b"\0")
        except OSError:
            continue
        if words[:2] == [b"/bin/sh", b"-c"] and f"kill -CONT {process} ".encode() in words[2]:
            return candidate
    return 0


def watchdog(folder: str) -> dict:
    """The guard goes down with its terminal, and nobody starts another; its watchdog thaws what it froze."""
    save_settings(threshold=ONCE_THRESHOLD)
    ledger = os.path.join(acting.STATE, "ledger.json")
    delay = 25
    with Guard(folder, "--auto-resume", str(delay), terminal=True) as guard:
        guard.wait_for(lambda: os.path.exists(ledger), "the first sample")
        with downloading(*ONCE) as download:
            guard.wait_for(lambda: is_recorded(download), "a frozen download")
            frozen_at = time.monotonic()
            process = watchdog_of(download.pid)
            fields = acting.stat_of(process)
            guard.wait_for_lifelines()
            seen = {"delay": delay, "session": int(fields[3]) == process, "terminal": int(fields[4]),
                    "streams": [os.readlink(f"/proc/{process}/fd/{stream}") for stream in range(3)]}
            guard.process.kill()
            guard.process.wait()
            guard.close_terminal()
            seen |= {"state": state(download.pid), "alive": watchdog_of(download.pid) == process}
            labs.wait_until(lambda: not download.is_frozen(), "a thawed download", 60)
            seen["after"] = time.monotonic() - frozen_at
            return seen | download.finish()


def private_files(folder: str) -> dict:
    """What the modes of the state folder and its files are after a freeze, however open new files usually are."""
    os.umask(0)
    place = os.path.join(acting.STATE, "fresh", "state")
    with Guard(folder, state_folder=place) as guard:
        guard.baseline()
        guard.end()
    modes = {}
    save_settings(place)
    os.chmod(os.path.join(place, "settings.json"), 0o666)
    with Guard(folder, state_folder=place) as guard, \
            downloading("photo-backup", 12 * MEGABYTES, 2 * MEGABYTES) as download:
        guard.wait_for(download.is_frozen, "a frozen download")
        guard.wait_for(lambda: os.path.exists(os.path.join(place, "suspended.json")), "the list of what is frozen")
        guard.end()
    for path in (os.path.dirname(place), place, *(os.path.join(place, name) for name in os.listdir(place))):
        modes[os.path.basename(path)] = oct(stat.S_IMODE(os.stat(path).st_mode))
    return modes


# Counts the signals that thaw it, and tells the count after each.
BYSTANDER = """
import signal, sys
count = 0
def thawed(*_):
    global count
    count += 1
    print(count, flush=True)
signal.signal(signal.SIGCONT, thawed)
print(count, flush=True)
while True:
    signal.pause()
"""


def decoded() -> dict:
    """Each state file as JSON; a file that can't be decoded ends the scene."""
    files = {}
    for name in os.listdir(acting.STATE):
        if name.endswith(".json"):
            with open(os.path.join(acting.STATE, name), encoding="utf-8") as file:
                files[name] = json.load(file)
    return files


def forge(bystander: int):
    """Adds the bystander to the list of what is frozen, as a process that has since made room for another."""
    entries = (suspended() or []) + [{"app": "bystander", "pids": [bystander], "starts": [EARLIER_START],
                                      "bytes": 1, "at": 795261600.25}]
    with open(acting.SUSPENDED, "w", encoding="utf-8") as file:
        json.dump(entries, file)


def killed_at_once(folder: str) -> dict:
    """Killed as soon as something is frozen, often before that is on record; nobody starts another guard."""
    seen = {"rounds": 0, "frozen": 0, "unlisted": 0, "stayed": 0}
    save_settings(threshold=20_000, sampleInterval=0.2)
    with downloading("photo-backup", 10**12, 200_000) as download:
        for _ in range(20):
            with Guard(folder) as guard:
                deadline = time.monotonic() + 60
                while not download.is_frozen() and time.monotonic() < deadline:
                    pass
                guard.process.kill()
                seen["frozen"] += time.monotonic() < deadline
                guard.process.wait()
            seen["unlisted"] += not suspended()
            try:
                labs.wait_until(lambda: not download.is_frozen(), "a thawed download", 10)
            except AssertionError:
                seen["stayed"] += 1
                os.kill(download.pid, signal.SIGCONT)
            seen["rounds"] += 1
            if suspended():
                os.remove(acting.SUSPENDED)
    return seen


def time_to_freeze(folder: str, programs: list) -> float:
    """How long after its start a guard has frozen one of the programs and saved that."""
    with Guard(folder) as guard:
        guard.wait_for(lambda: any(map(is_recorded, programs)), "a frozen download")
        taken = time.monotonic() - guard.begun
        guard.end()
        return taken


def killed_at_random(folder: str) -> dict:
    """Killed 200 times, at any moment from its first instruction to after its first freeze."""
    chance = random.Random(20)
    save_settings(threshold=20_000, sampleInterval=0.2)
    bystander = subprocess.Popen([sys.executable, "-c", BYSTANDER], stdout=subprocess.PIPE, text=True)
    bystander.stdout.readline()
    seen = {"rounds": 0, "frozen": 0, "recovered": 0}
    begun = time.monotonic()
    with contextlib.ExitStack() as stack:
        names = ("photo-backup", "radio", "radio")
        programs = [stack.enter_context(downloading(name, 10**12, 200_000)) for name in names]
        ids = {each.pid for each in programs}
        longest = 1.5 * min(time_to_freeze(folder, programs) for _ in range(3))
        for _ in range(200):
            forge(bystander.pid)
            with Guard(folder) as guard:
                time.sleep(chance.uniform(0, longest))  # nothing is waited for: the moment is what this is about
                guard.end(signal.SIGKILL)
                seen["recovered"] += "Recovered from" in guard.output
            listed = {pid for entry in decoded().get("suspended.json", []) for pid in entry["pids"]}
            seen["rounds"] += 1
            seen["frozen"] += bool(listed & ids)
        seen["seconds"] = time.monotonic() - begun
        forge(bystander.pid)
        save_settings(threshold=10**12, sampleInterval=0.2)
        with Guard(folder) as guard:
            guard.baseline()
            seen |= {"guard": guard.end(), "frozen at the end": acting.all_frozen(), "lines": guard.lines()}
        seen |= {"files": sorted(decoded()), "left": suspended()}
        bystander.send_signal(signal.SIGCONT)
        seen["counted"] = int(bystander.stdout.readline())
        bystander.kill()
        bystander.wait()
        return seen


if __name__ == "__main__":
    acting.play([duration, terminated, interrupted, recovery, watchdog, private_files, killed_at_once, killed_at_random])
