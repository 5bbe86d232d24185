#!/usr/bin/python3
"""What the program costs until it stands: processor time, its helper included.

    StartCost.py PROGRAM

Each figure is the median of several starts with the settings of a user who has been through the first start, from the
start of the process to its end half a second later. This measures; it passes no judgement.
"""

import json
import os
import pty
import statistics
import subprocess
import sys
import tempfile
from dataclasses import dataclass

RUNS = 7
SECONDS = "0.5"


@dataclass(frozen=True)
class View:
    name: str
    options: tuple
    environment: dict
    limit: int


VIEWS = (
    View("lines", ("--plain",), {}, 150),
    View("terminal view", ("--terminal",), {"TERM": "xterm-256color"}, 150),
    View("desktop, without a display", (), {"DISPLAY": ":none", "QT_QPA_PLATFORM": "offscreen"}, 400),
)


def prepare(home: str):
    """The home of a user whose guard has been set up."""
    state = os.path.join(home, ".local", "share", "Quellon")
    os.makedirs(state)
    with open(os.path.join(state, "settings.json"), "w", encoding="utf-8") as file:
        json.dump({"onboarded": True, "updateCheckConsent": "denied"}, file)


def start(command: list, view: View, home: str) -> float:
    """The processor time of one start, in milliseconds."""
    environment = {"HOME": home, "TMPDIR": home, "PATH": "/usr/bin:/bin", "LANG": "C.UTF-8",
                   "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent", **view.environment}
    screen, terminal = pty.openpty()
    process = subprocess.Popen([*command, *view.options, "--duration", SECONDS], env=environment, cwd="/",
                               stdin=terminal, stdout=terminal, stderr=terminal)
    os.close(terminal)
    try:
        while os.read(screen, 65536):
            pass
    except OSError:
        pass  # how a terminal tells that nobody has it open any more
    _, status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    os.close(screen)
    if process.returncode != 0:
        raise RuntimeError(f"{view.name}: ended with {process.returncode}")
    return (used.ru_utime + used.ru_stime) * 1000


def measure(command: list, home: str) -> dict:
    """The median for each view by its name; `home` as the program sees it, prepared."""
    return {view.name: statistics.median(start(command, view, home) for _ in range(RUNS)) for view in VIEWS}


def tell(costs: dict):
    print("Processor time of a start, in ms")
    for view in VIEWS:
        print(f"  {view.name:42} {costs[view.name]:6.0f}  limit {view.limit}", flush=True)


def main():
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as home:
        prepare(home)
        tell(measure([program], home))


if __name__ == "__main__":
    main()
