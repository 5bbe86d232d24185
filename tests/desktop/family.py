"""The processes of a desktop: started with a log each, ended in order, and none of them left behind."""

import contextlib
import ctypes
import os
import signal
import subprocess

from waiting import wait_until

LIBRARY = ctypes.CDLL(None, use_errno=True)
SET_PARENT_DEATH_SIGNAL = 1
SET_CHILD_SUBREAPER = 36
GRACE = 5.0


def control(option: int, value: int):
    """prctl"""
    if LIBRARY.prctl(option, value, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


def end_with_parent():
    """Before a child becomes another program: whatever ends this process ends the child."""
    control(SET_PARENT_DEATH_SIGNAL, signal.SIGTERM)


def parents() -> dict:
    """Each process id, its parent's and the letter of its state."""
    found = {}
    for name in os.listdir("/proc"):
        with contextlib.suppress(OSError):
            if name.isdigit():
                with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                    state, parent = file.read().rpartition(")")[2].split()[:2]
                found[int(name)] = (int(parent), state)
    return found


class Family:
    """All that descends from this process; what loses its parent becomes its child."""

    def __init__(self, folder: str):
        self.folder = folder
        self.processes = {}
        self.environment = {}
        # Daemons cut themselves loose from whoever started them; this keeps them within reach.
        control(SET_CHILD_SUBREAPER, 1)

    def log(self, name: str) -> str:
        """What the process of this name has printed."""
        try:
            with open(os.path.join(self.folder, f"{name}.log"), encoding="utf-8", errors="replace") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def logs(self) -> str:
        """What all of them have printed, under the name of each."""
        names = sorted(file[:-4] for file in os.listdir(self.folder) if file.endswith(".log"))
        return "\n".join(f"--- {name}\n{self.log(name).strip()}" for name in names)

    def start(self, name: str, command: list, **options) -> subprocess.Popen:
        """Starts a process in the desktop's environment. What it prints goes to its log, behind what is there."""
        environment = self.environment | options.pop("environment", {})
        with open(os.path.join(self.folder, f"{name}.log"), "ab") as log:
            self.processes[name] = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log,
                                                    stderr=subprocess.STDOUT, env=environment,
                                                    preexec_fn=end_with_parent, **options)
        return self.processes[name]

    def end(self, name: str, number: int = signal.SIGTERM) -> int:
        """Ends the process of this name with the signal, by force when that takes too long; its exit status."""
        process = self.processes.pop(name)
        process.send_signal(number)
        process.send_signal(signal.SIGCONT)  # whoever was stopped takes a signal only once it goes on
        try:
            return process.wait(GRACE)
        except subprocess.TimeoutExpired:
            process.kill()
            return process.wait()

    def descendants(self) -> set:
        """The ids of all processes that descend from this one; the dead that nobody has waited for left out."""
        known = parents()
        members = {os.getpid()}
        while True:
            more = {process for process, (parent, _) in known.items() if parent in members} - members
            if not more:
                return {process for process in members - {os.getpid()} if known[process][1] != "Z"}
            members |= more

    def signal_all(self, number: int):
        for process in self.descendants():
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, number)

    def is_alone(self) -> bool:
        """Whether nothing is left, after the dead were waited for."""
        with contextlib.suppress(ChildProcessError):
            while os.waitpid(-1, os.WNOHANG)[0] != 0:
                pass
        return not self.descendants()

    def end_all(self):
        """Ends everything: the latest first, then whatever is left, in the end by force."""
        for name in reversed(list(self.processes)):
            self.end(name)
        for number in (signal.SIGTERM, signal.SIGKILL):
            self.signal_all(number)
            self.signal_all(signal.SIGCONT)
            with contextlib.suppress(AssertionError):
                wait_until(self.is_alone, "the end of all processes", GRACE)
                return
