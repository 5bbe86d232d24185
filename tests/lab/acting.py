"""What the scenes share in which the guard acts: its settings, the guard, the programs that it acts on."""

import contextlib
import hashlib
import json
import os
import pty
import re
import shutil
import signal
import subprocess
import sys
import threading
import time

import labs
from labs import phone_server
from scene import program, url

STATE = os.environ["QUELLON_STATE_DIR"]
TEMPORARY = os.environ["TMPDIR"]
RULE = {"id": "0B0E5A52-7D3C-4E0C-9E57-3A2B6C1D4F01", "windowSeconds": 60, "thresholdBytes": 1_000_000,
        "level": "enforce", "enabled": True}

# A download, and a threshold of which it is frozen once and not again: what still comes in is less than that.
ONCE_THRESHOLD = 4_000_000
ONCE = ("photo-backup", 7_900_000, 1_000_000)


def save_settings(folder: str = STATE, threshold: int = RULE["thresholdBytes"], **values):
    """Settings with one rule that is quickly crossed."""
    settings = {"rules": [RULE | {"thresholdBytes": threshold}], "sampleInterval": 1, "meteredOnly": True,
                "onboarded": True} | values
    os.makedirs(folder, 0o700, exist_ok=True)
    with open(os.path.join(folder, "settings.json"), "w", encoding="utf-8") as file:
        json.dump(settings, file)


def suspended(folder: str = STATE) -> list:
    """The list of what is frozen as it is saved; None where there is no such file."""
    try:
        with open(os.path.join(folder, "suspended.json"), encoding="utf-8") as file:
            return json.load(file)
    except FileNotFoundError:
        return None


# --- processes -------------------------------------------------------------------------------------------------------

def stat_of(process: int) -> list:
    """The fields of /proc/PID/stat from the state on; empty once the process is gone."""
    try:
        with open(f"/proc/{process}/stat", encoding="utf-8", errors="replace") as file:
            return file.read().rpartition(")")[2].split()
    except (FileNotFoundError, ProcessLookupError):
        return []


def state(process: int) -> str:
    """The letter of the process's state: T is stopped. Empty once the process is gone."""
    return (stat_of(process) or [""])[0]


def is_frozen(process: int) -> bool:
    return state(process) == "T"


def all_frozen() -> list:
    """The ids of all stopped processes of the lab."""
    return sorted(process for process in labs.processes() if is_frozen(process))


def thawing_shells(process: int) -> dict:
    """The shells that will thaw the process, the script of each by its id."""
    found = {}
    for candidate in labs.processes():
        try:
            with open(f"/proc/{candidate}/cmdline", encoding="utf-8", errors="replace") as file:
                words = file.read().split("\0")
        except OSError:
            continue
        if words[:2] == ["/bin/sh", "-c"] and re.search(rf"kill -CONT( \d+)* {process} ", words[2]):
            found[candidate] = words[2]
    return found


def program_from(executable: str, name: str) -> str:
    """A copy of another program under this name."""
    path = os.path.join(os.environ["HOME"], name)
    shutil.copy(os.path.realpath(executable), path)
    return path


class Download:
    """A program that downloads `size` bytes into a file and ends."""

    def __init__(self, name: str, size: int, rate: int, prefix: tuple = (), **options):
        self.name, self.size = name, size
        self.path = os.path.join(TEMPORARY, f"{name}-{time.monotonic_ns()}")
        self.process = subprocess.Popen(
            [*prefix, program(name), "-sf", "-o", self.path, url(size, rate)], stdin=subprocess.DEVNULL, **options)
        self.pid = self.process.pid

    def received(self) -> int:
        return os.path.getsize(self.path) if os.path.exists(self.path) else 0

    def is_frozen(self) -> bool:
        return is_frozen(self.pid)

    def finish(self) -> dict:
        """Waits for the end: its exit status, and whether every byte arrived."""
        status = self.process.wait(90)
        with open(self.path, "rb") as file:
            digest = hashlib.sha256(file.read()).hexdigest()
        expected = hashlib.sha256(phone_server.content(0, self.size)).hexdigest()
        return {"status": status, "intact": digest == expected}

    def end(self):
        self.process.kill()
        self.process.wait()


@contextlib.contextmanager
def downloading(*arguments, **options):
    download = Download(*arguments, **options)
    try:
        yield download
    finally:
        download.end()


# --- the guard -------------------------------------------------------------------------------------------------------

class Guard:
    """The guard, printing lines, or in a terminal of its own."""

    def __init__(self, folder: str, *options: str, terminal: bool = False, state_folder: str = STATE):
        self.output = ""
        self.begun = time.monotonic()
        self.terminal = None
        command = [os.path.join(folder, "Quellon"), "--terminal" if terminal else "--plain", *options]
        environment = os.environ | {"TERM": "xterm", "QUELLON_STATE_DIR": state_folder}
        if terminal:
            self.terminal, theirs = pty.openpty()
            self.process = subprocess.Popen(
                ["setsid", "--ctty", *command], stdin=theirs, stdout=theirs, stderr=theirs, env=environment)
            os.close(theirs)
            source = self.terminal
        else:
            source, theirs = os.pipe()
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=theirs, stderr=theirs,
                                            env=environment)
            os.close(theirs)
        self.reader = threading.Thread(target=self._read, args=(source,), daemon=True)
        self.reader.start()

    def _read(self, source: int):
        with contextlib.suppress(OSError):
            while piece := os.read(source, 65536):
                self.output += piece.decode(errors="replace")
        if source != self.terminal:
            os.close(source)

    def rounds(self) -> int:
        """How many rounds the guard has printed a table for."""
        return self.output.count("Guarding · ")

    def wait_for(self, condition, what: str, seconds: float = 60.0):
        """What `condition` gives as soon as that is true, while the guard runs."""
        def is_settled():
            result = condition()
            if not result and self.process.poll() is not None:
                raise AssertionError(f"the guard ended with {self.process.returncode} before: {what}\n{self.output}")
            return result
        try:
            return labs.wait_until(is_settled, what, seconds)
        except AssertionError as error:
            sys.exit(f"{error}\n{self.output}")

    def wait_for_text(self, text: str) -> str:
        """The first line with `text`."""
        self.wait_for(lambda: text in self.output and "\n" in self.output.partition(text)[2], f"the guard's \"{text}\"")
        return next(line for line in self.output.splitlines() if text in line)

    def wait_for_rounds(self, count: int):
        rounds = self.rounds() + count
        self.wait_for(lambda: self.rounds() >= rounds, f"{count} rounds of the guard")

    def baseline(self):
        """Waits for the first sample, which charges nobody. Connections that are made later are charged in full."""
        self.wait_for(lambda: self.rounds() > 0, "the first sample")

    def press(self, keys: str):
        os.write(self.terminal, keys.encode())

    def close_terminal(self):
        os.close(self.terminal)
        self.terminal = None

    def lines(self) -> list:
        """What the guard has printed, without the tables: the activity and the notices."""
        kinds = r"\d\d:\d\d:\d\d (info|warning|enforced|notice) "
        return [line for line in self.output.splitlines() if re.match(kinds, line)]

    def notice(self, title: str) -> list:
        """The notice of this title as it is printed, up to its buttons."""
        lines = self.output.splitlines()
        first = next(i for i, line in enumerate(lines) if re.match(r"\d\d:\d\d:\d\d notice ", line) and title in line)
        end = first + 1
        while end < len(lines) and lines[end].startswith("  ") and not lines[end - 1].lstrip().startswith("["):
            end += 1
        return [lines[first].split(maxsplit=2)[2], *(line.strip() for line in lines[first + 1:end])]

    def end(self, number: int = signal.SIGTERM) -> int:
        """Sends the signal and gives the exit status; negative: ended by a signal."""
        self.process.send_signal(number)
        status = self.process.wait(30)
        self.reader.join(10)
        return status

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        if self.terminal is not None:
            self.close_terminal()


def play(scenes: list):
    """The program of a file of scenes: NAME FOLDER plays one with the programs of FOLDER and prints what it saw."""
    by_name = {scene.__name__: scene for scene in scenes}
    print(json.dumps(by_name[sys.argv[1]](sys.argv[2])))
