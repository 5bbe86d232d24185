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
SECONDS_TO_2001 = 978_307_200
EARLIER_START = "an earlier process of this number"


def is_watchdog(script: str) -> bool:
    return script.startswith("sleep ")


def is_recorded(download) -> bool:
    """Frozen, and no lifeline is left that would thaw it at the guard's death: that is the next start's from now on."""
    if not download.is_frozen() or download.pid not in listed():
        return False
    return all(map(is_watchdog, acting.thawing_shells(download.pid).values()))


def listed() -> set:
    """The processes that are on the list of what is frozen."""
    return {pid for entry in suspended() or [] for pid in entry["pids"]}


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
            seen = {"killed": first.end(signal.SIGKILL), "state": state(download.pid)}
            # No rule that could be crossed any more: what is thawed stays so.
            save_settings(threshold=10**12)
            with Guard(folder) as second:
                second.wait_for_text("Recovered from")
                seen |= {"left": suspended()} | download.finish()
                return seen | {"guard": second.end(), "lines": second.lines()}


def watchdog_of(process: int) -> int:
    """The id of the shell that will thaw the process after a while; 0: there is none."""
    shells = acting.thawing_shells(process)
    return next((shell for shell, script in shells.items() if is_watchdog(script)), 0)


def two_freezes(folder: str, number: int) -> dict:
    """An application of two processes, the second of which is frozen alone, long after the first: only that one is on
    the list then. Then the guard ends. What is frozen still is recovered by another one, and both go on to their end.
    """
    def rule(threshold: int) -> list:
        return [acting.RULE | {"windowSeconds": 5, "thresholdBytes": threshold}]

    save_settings(rules=rule(ONCE_THRESHOLD))
    with Guard(folder) as guard:
        guard.baseline()
        with downloading(*ONCE) as first:
            guard.wait_for(lambda: is_recorded(first), "a frozen download")
            # Until what its connection still took in is out of the rule's window.
            guard.wait_for_rounds(15)
            with downloading(*ONCE) as second:
                guard.wait_for(lambda: is_recorded(second), "another frozen download")
                seen = {"both": [first.is_frozen(), second.is_frozen()], "listed alone": listed() == {second.pid},
                        "guard": guard.end(number)}
                labs.wait_until(lambda: not first.is_frozen(), "the first one going on")
                seen["second"] = state(second.pid)
                save_settings(threshold=10**12)
                with Guard(folder) as next_one:
                    next_one.baseline()
                    seen["recovered"] = "Recovered from" in next_one.output
                    return seen | {"downloads": [first.finish(), second.finish()], "left": suspended()}


def two_freezes_terminated(folder: str) -> dict:
    return two_freezes(folder, signal.SIGTERM)


def two_freezes_killed(folder: str) -> dict:
    return two_freezes(folder, signal.SIGKILL)


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
    with open(os.path.join(acting.STATE, "suspended.json"), "w", encoding="utf-8") as file:
        json.dump(entries, file)


def save_long_history(folder: str):
    """A history that takes the guard long to save; it does so between a freeze and the list of what is frozen."""
    record = {"app": "-", "bytes": 0, "at": int(time.time()) - SECONDS_TO_2001}
    with open(os.path.join(folder, "enforcement-history.json"), "w", encoding="utf-8") as file:
        # Nearly as large as a file may be.
        json.dump({"records": [record] * 190_000}, file, separators=(",", ":"))


def killed_at_once(folder: str) -> dict:
    """Killed as soon as something is frozen, before that is on record; nobody starts another guard."""
    seen = {"rounds": 0, "frozen": 0, "unlisted": 0, "stayed": 0}
    place = os.path.join(acting.TEMPORARY, "state")  # on a disk with more room
    save_settings(place, threshold=20_000, sampleInterval=0.2)
    save_long_history(place)
    with downloading("photo-backup", 10**12, 200_000) as download:
        for _ in range(10):
            with Guard(folder, state_folder=place) as guard:
                deadline = time.monotonic() + 60
                while not download.is_frozen() and time.monotonic() < deadline:
                    pass
                guard.process.kill()
                seen["frozen"] += time.monotonic() < deadline
                guard.process.wait()
            seen["unlisted"] += not suspended(place)
            try:
                labs.wait_until(lambda: not download.is_frozen(), "a thawed download", 10)
            except AssertionError:
                seen["stayed"] += 1
                os.kill(download.pid, signal.SIGCONT)
            seen["rounds"] += 1
    return seen


def time_to_freeze(folder: str, programs: list) -> float:
    """How long after its start a guard has frozen one of the programs and saved that."""
    with Guard(folder) as guard:
        guard.wait_for(lambda: any(map(is_recorded, programs)), "a frozen download")
        taken = time.monotonic() - guard.begun
        guard.end()
        return taken


def killed_at_random(folder: str) -> dict:
    """Killed 200 times, at any moment from its first instruction to after its first freeze. Before the next start
    whatever is frozen is on the list.
    """
    chance = random.Random(20)
    save_settings(threshold=20_000, sampleInterval=0.2)
    bystander = subprocess.Popen([sys.executable, "-c", BYSTANDER], stdout=subprocess.PIPE, text=True)
    bystander.stdout.readline()
    seen = {"rounds": 0, "frozen": 0, "thawed": 0, "unknown": []}
    begun = time.monotonic()
    with contextlib.ExitStack() as stack:
        names = ("photo-backup", "radio", "radio")
        programs = [stack.enter_context(downloading(name, 10**12, 200_000)) for name in names]
        longest = 1.5 * min(time_to_freeze(folder, programs) for _ in range(3))

        def frozen() -> set:
            return {each.pid for each in programs if each.is_frozen()}
        before = frozen()
        for number in range(200):
            forge(bystander.pid)
            with Guard(folder) as guard:
                time.sleep(chance.uniform(0, longest))  # nothing is waited for: the moment is what this is about
                guard.end(signal.SIGKILL)
            decoded()
            # The lifelines take a moment.
            with contextlib.suppress(AssertionError):
                labs.wait_until(lambda: frozen() <= listed(), "an end of what nobody knows of", 10)
            after = frozen()
            if after - listed():
                seen["unknown"].append([number, sorted(after - listed())])
            seen["thawed"] += bool(before - after) and "Recovered from" in guard.output
            seen["frozen"] += bool(after)
            seen["rounds"] += 1
            before = after
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
    acting.play([duration, terminated, interrupted, recovery, two_freezes_terminated, two_freezes_killed, watchdog,
                 private_files, killed_at_once, killed_at_random])
