#!/usr/bin/python3
"""What happens on the lab's laptop when the guard steps in; see scene.py.

    enforce_scene.py NAME FOLDER
"""

import os
import signal
import subprocess
import sys
import threading
import time

import acting
from acting import Download, Guard, downloading, is_frozen, save_settings, state, suspended
from scene import program, url

MEGABYTES = 1_000_000


def freeze(folder: str) -> dict:
    """A runaway download is frozen; the guard ends, and the download goes on to its end."""
    save_settings(threshold=acting.ONCE_THRESHOLD)
    with Guard(folder) as guard:
        guard.baseline()
        with downloading(*acting.ONCE) as download:
            guard.wait_for(download.is_frozen, "a frozen download")
            guard.wait_for_text("Resume")
            entries = suspended()
            guard.wait_for_rounds(1)
            before = download.received()
            guard.wait_for_rounds(3)
            seen = {"grown": download.received() - before, "received": before, "state": state(download.pid),
                    "pid": download.pid, "entries": entries, "notice": guard.notice("photo-backup was paused")}
            seen["guard"] = guard.end()
            return seen | download.finish() | {"lines": guard.lines(), "left": suspended()}


def resume_by_key(folder: str) -> dict:
    """The same in the terminal view, where the user thaws it: `r` alone lets the rules find it again, `z` does not."""
    save_settings()
    with Guard(folder, terminal=True) as guard:
        guard.wait_for(lambda: os.path.exists(os.path.join(acting.STATE, "ledger.json")), "the first sample")
        with downloading("photo-backup", 12 * MEGABYTES, 2 * MEGABYTES) as download:
            def is_listed():
                return download.is_frozen() and suspended()
            guard.wait_for(is_listed, "a frozen download")
            first = suspended()[0]["at"]
            guard.press("r")
            guard.wait_for(lambda: is_listed() and suspended()[0]["at"] != first, "the same, frozen again")
            guard.press("z")
            seen = download.finish()
            guard.wait_for(lambda: suspended() == [], "an empty list of what is frozen")
            guard.press("q")
            return seen | {"guard": guard.process.wait(30), "left": suspended()}


def ends_with(folder: str, action: str, ignoring: bool) -> dict:
    save_settings(enforcementAction=action)
    ignore = (lambda: signal.signal(signal.SIGTERM, signal.SIG_IGN)) if ignoring else None
    with Guard(folder) as guard:
        guard.baseline()
        with downloading("updater", 100 * MEGABYTES, 2 * MEGABYTES, preexec_fn=ignore) as download:
            guard.wait_for_text("updater used")
            acted = time.monotonic()
            guard.wait_for(lambda: download.process.poll() is not None, "the program's end")
            ended = time.monotonic()
        guard.wait_for_text("[")
        return {"status": download.process.returncode, "after": ended - acted, "lines": guard.lines(),
                "notice": guard.notice("updater was stopped"), "guard": guard.end(), "left": suspended()}


def terminate(folder: str) -> dict:
    return ends_with(folder, "terminate", ignoring=False)


def terminate_ignored(folder: str) -> dict:
    return ends_with(folder, "terminate", ignoring=True)


def kill(folder: str) -> dict:
    return ends_with(folder, "kill", ignoring=False)


def loop(folder: str) -> dict:
    """A supervisor starts the program again whenever it ends."""
    save_settings(enforcementAction="kill")
    statuses = []
    runs = []
    is_over = threading.Event()

    def supervise():
        while not is_over.is_set():
            runs.append(Download("updater", 30 * MEGABYTES, 2 * MEGABYTES))
            statuses.append(runs[-1].process.wait())

    with Guard(folder) as guard:
        guard.baseline()
        supervisor = threading.Thread(target=supervise)
        supervisor.start()
        try:
            guard.wait_for(lambda: runs and runs[-1].is_frozen(), "a frozen program", 120)
            guard.wait_for_text("keeps coming back")
            guard.wait_for_text("[Resume")
            seen = {"ended": list(statuses), "runs": len(runs), "notice": guard.notice("keeps coming back")}
            is_over.set()
            seen["guard"] = guard.end()
            seen["thawed"] = not runs[-1].is_frozen()
        finally:
            is_over.set()
            runs[-1].process.kill()
            supervisor.join()
        return seen | {"lines": guard.lines()}


def always_blocked(folder: str) -> dict:
    """An application that is always blocked is asked about, and left alone."""
    save_settings(threshold=10**12, appPolicies={"mail": "always"})
    with Guard(folder) as guard:
        guard.baseline()
        with downloading("mail", 2 * MEGABYTES, 400_000) as download:
            states = set()
            guard.wait_for(lambda: download.received() >= 262144, "256 KiB of mail")
            printed = len(guard.output)

            def is_asked():
                states.add(state(download.pid))
                return "reached for the hotspot" in guard.output
            guard.wait_for(is_asked, "an ask")
            # The tables of the rounds in between, and the round that asks.
            rounds = guard.output[printed:].partition("reached for the hotspot")[0].count("Guarding · ") + 1
            seen = download.finish()
            guard.wait_for_text("[")
            return seen | {"rounds": rounds, "states": sorted(states), "lines": guard.lines(),
                           "notice": guard.notice("mail is reaching"), "guard": guard.end(), "left": suspended()}


# Three that download for long, and one more, forked by the first, as fast as it goes until something is frozen.
FAMILY = """
import os, sys, time, urllib.request

def load(size, rate):
    urllib.request.urlopen(f"http://{os.environ['LAB_INTERNET']}/bytes/{size}/{rate}").read()

def fork(work):
    process = os.fork()
    if process == 0:
        try:
            work()
        finally:
            os._exit(0)
    print(process, flush=True)
    return process

def stopped(process):
    with open(f"/proc/{process}/stat") as file:
        return file.read().rpartition(")")[2].split()[0] == "T"

loading = [fork(lambda: load(60_000_000, 1_000_000)) for _ in range(3)]
while not all(stopped(process) for process in loading):
    fork(lambda: load(20_000_000, 500_000))
    time.sleep(0.1)
print("done", flush=True)
sys.stdin.read()
"""


def family(folder: str) -> dict:
    """An application of many processes, which goes on forking while it is being frozen."""
    save_settings()
    python = acting.program_from(sys.executable, "synchronizer")
    with Guard(folder, "--auto-resume", "60") as guard:
        guard.baseline()
        process = subprocess.Popen([python, "-c", FAMILY], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                   env=os.environ | {"PYTHONHOME": sys.base_prefix})
        children = []
        for line in process.stdout:
            if line == "done\n":
                break
            children.append(int(line))

        def all_stopped():
            return all(is_frozen(child) for child in children)
        try:
            guard.wait_for(all_stopped, "all of them frozen", 90)
            lines = guard.lines()
            seen = {"children": len(children), "parent": state(process.pid), "guard": guard.end()}
            seen["states"] = {child: state(child) for child in children}
        finally:
            for child in children:
                os.kill(child, signal.SIGKILL)
            process.kill()
            process.wait()
        return seen | {"lines": lines}


def protected(folder: str) -> dict:
    """In the group of a shell that leads it, called ssh, and set to never be limited: none of them is touched."""
    save_settings(appPolicies={"radio": "never"})
    size, rate = 6 * MEGABYTES, MEGABYTES
    with Guard(folder) as guard:
        guard.baseline()
        path = os.path.join(acting.TEMPORARY, "in-session")
        shell = subprocess.Popen(["bash", "-c", f"{program('archive')} -sf -o {path} {url(size, rate)}; exit $?"],
                                 start_new_session=True)
        with downloading("ssh", size, rate) as ssh, downloading("radio", size, rate) as radio:
            frozen = set()

            def is_over():
                frozen.update(acting.all_frozen())
                return all(each.poll() is not None for each in (shell, ssh.process, radio.process))
            guard.wait_for(is_over, "the end of the downloads")
            seen = {"frozen": sorted(frozen), "ssh": ssh.finish(), "radio": radio.finish(), "shell": shell.wait(),
                    "archive": os.path.getsize(path)}
        return seen | {"lines": guard.lines(), "guard": guard.end(), "left": suspended()}


if __name__ == "__main__":
    acting.play([freeze, resume_by_key, terminate, terminate_ignored, kill, loop, always_blocked, family, protected])
