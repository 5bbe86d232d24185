#!/usr/bin/python3
"""What happens on the lab's laptop while the guard or its probe is watched.

    scene.py NAME FOLDER

plays the scene NAME with the programs of FOLDER and prints what was seen as one JSON object. The tests judge.
"""

import contextlib
import fcntl
import json
import os
import shutil
import signal
import struct
import subprocess
import sys
import termios
import time

INTERNET = os.environ["LAB_INTERNET"]
STATE = os.environ["QUELLON_STATE_DIR"]
LEDGER = os.path.join(STATE, "ledger.json")
GUARD_OUTPUT = os.path.join(os.environ["TMPDIR"], "guard.out")


def wait_until(condition, what: str, seconds: float = 60.0):
    """What `condition` gives as soon as that is true."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            sys.exit(f"not within {seconds:g} seconds: {what}\n{guard_output()}")
        time.sleep(0.05)


def guard_output() -> str:
    try:
        with open(GUARD_OUTPUT, encoding="utf-8") as file:
            return file.read()
    except OSError:
        return ""


def buckets() -> list:
    try:
        with open(LEDGER, encoding="utf-8") as file:
            return json.load(file)["buckets"]
    except OSError:
        return []


def usage() -> dict:
    """Bytes of each application in the saved ledger."""
    sums = {}
    for bucket in buckets():
        for app, count in bucket["usage"].items():
            sums[app] = sums.get(app, 0) + count
    return sums


def program(name: str) -> str:
    """A downloading program of this name: a copy of curl."""
    path = os.path.join(os.environ["HOME"], name)
    if not os.path.exists(path):
        shutil.copy(shutil.which("curl"), path)
    return path


def url(size: int, rate: int, host: str = INTERNET) -> str:
    return f"http://{host}/bytes/{size}/{rate}"


@contextlib.contextmanager
def downloading(command: list):
    """A program that downloads while the body runs, and may go on until its end."""
    process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
    try:
        yield process
    finally:
        process.kill()
        process.wait()
        process.stdin.close()


def curl(size: int, rate: int):
    """curl with a download, after which it stays, on the same connection, for next to nothing."""
    return downloading([program("curl"), "-sf", "-o", "/dev/null", url(size, rate),
                        "-o", "/dev/null", url(1_000_000, 100)])


@contextlib.contextmanager
def guard(folder: str):
    """The guard, from its first answer on; it has to take SIGTERM for an end."""
    with open(GUARD_OUTPUT, "w", encoding="utf-8") as output:
        process = subprocess.Popen([os.path.join(folder, "Quellon"), "--plain", "--duration", "200"], stdout=output,
                                   stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL)
    try:
        wait_until(lambda: "wlan0" in guard_output() or process.poll() is not None, "the guard's first verdict")
        yield process
        process.terminate()
        if process.wait(20) != 0:
            sys.exit(f"the guard ended with {process.returncode}\n{guard_output()}")
    finally:
        process.kill()
        process.wait()


def baseline():
    """Waits for the first sample, which charges nobody: the ledger is saved after it for the first time."""
    wait_until(lambda: len(buckets()) == 1, "the first sample")


def second_save():
    """Waits for the next time that the ledger is saved, half a minute later."""
    wait_until(lambda: len(buckets()) > 1, "the ledger's second save")


def rounds_told() -> int:
    """How many rounds the guard has printed a table for."""
    return guard_output().count("Guarding · ")


def probe_of(process: subprocess.Popen, unlike: int = 0) -> int:
    """The process id of the guard's resident helper; 0: there is none other than `unlike`."""
    with open(f"/proc/{process.pid}/task/{process.pid}/children", encoding="ascii") as file:
        children = [int(child) for child in file.read().split()]
    # The helper may be the child of any of the guard's threads.
    for task in os.listdir(f"/proc/{process.pid}/task"):
        with contextlib.suppress(OSError), open(f"/proc/{process.pid}/task/{task}/children", encoding="ascii") as file:
            children += [int(child) for child in file.read().split()]
    for child in children:
        with contextlib.suppress(OSError):
            if child != unlike and os.path.basename(os.readlink(f"/proc/{child}/exe")) == "quellon-probe":
                return child
    return 0


def unread(process: int) -> int:
    """How many bytes wait on the process's standard input."""
    try:
        pipe = os.open(f"/proc/{process}/fd/0", os.O_RDONLY | os.O_NONBLOCK)
    except OSError:
        return 0
    try:
        return struct.unpack("i", fcntl.ioctl(pipe, termios.FIONREAD, b"\0\0\0\0"))[0]
    finally:
        os.close(pipe)


# --- scenes ----------------------------------------------------------------------------------------------------------

PYTHON = """
import sys, urllib.request
urllib.request.urlopen(sys.argv[1]).read()
sys.stdin.read()
"""


def download(folder: str) -> dict:
    """All at the same time, each longer than a sample: 100 MB by curl, 10 MB by python3, 20 MB by a program that ends
    after it, and 10 MB that come from the phone itself.
    """
    python = [sys.executable, "-c", PYTHON, url(10_000_000, 1_250_000)]
    # The shell sees to it that nothing is left of the program once it has ended.
    brief = ["bash", "-c", f"{program('brief')} -sf -o /dev/null {url(20_000_000, 2_500_000)}; read -r"]
    local = [program("local"), "-sf", "-o", "/dev/null", url(10_000_000, 1_250_000, os.environ["LAB_GATEWAY"])]
    with guard(folder):
        baseline()
        with curl(100_000_000, 12_500_000), downloading(python), downloading(brief), downloading(local):
            second_save()
        return {"usage": usage(), "output": guard_output(), "python": os.path.basename(os.path.realpath(sys.executable))}


def probe_killed(folder: str) -> dict:
    """The helper dies with a request on its table, then between two; downloads go on."""
    with guard(folder) as process:
        baseline()
        with curl(20_000_000, 2_000_000):
            first = wait_until(lambda: probe_of(process), "the helper")
            os.kill(first, signal.SIGSTOP)
            wait_until(lambda: unread(first) > 0, "a request to the stopped helper")
            rounds = rounds_told()
            os.kill(first, signal.SIGKILL)
            # Once the round is over, the new helper has nothing to answer until the next one.
            wait_until(lambda: rounds_told() > rounds, "the end of the round")
            second = wait_until(lambda: probe_of(process, first), "a new helper")
            os.kill(second, signal.SIGKILL)
            third = wait_until(lambda: probe_of(process, second), "another helper")
            second_save()
        return {"helpers": [first, second, third], "usage": usage(), "at": [bucket["at"] for bucket in buckets()],
                "output": guard_output()}


def state_lost(folder: str) -> dict:
    """The state folder can't be written to; later it can."""
    os.chmod(STATE, 0o500)
    with guard(folder), curl(10_000_000, 2_000_000):
        wait_until(lambda: "curl" in guard_output(), "curl in what the guard prints")
        files = os.listdir(STATE)
        os.chmod(STATE, 0o700)
        second_save()
        return {"files": files, "usage": usage()}


def disk_full(folder: str) -> dict:
    """The state folder is on a full disk; later there is room again."""
    filler = os.path.join(STATE, "filler")
    with contextlib.suppress(OSError), open(filler, "wb", buffering=0) as file:
        while file.write(bytes(65536)):
            pass
    with guard(folder), curl(10_000_000, 2_000_000):
        wait_until(lambda: "curl" in guard_output(), "curl in what the guard prints")
        free = os.statvfs(STATE).f_bavail
        has_ledger = os.path.exists(LEDGER) and os.path.getsize(LEDGER) > 0
        os.remove(filler)
        second_save()
        return {"free": free, "hasLedger": has_ledger, "usage": usage()}


CONNECTIONS = """
import http.client, os, sys
for _ in range(1000):
    connection = http.client.HTTPConnection(os.environ["LAB_INTERNET"])
    connection.request("GET", "/bytes/20000")
    assert len(connection.getresponse().read()) == 20000
    connection.close()
print("done", flush=True)
sys.stdin.read()
"""


class Probe:
    """A resident helper, asked once a second; what it has listed, by connection."""

    def __init__(self, folder: str):
        self.process = subprocess.Popen([os.path.join(folder, "quellon-probe"), "serve"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.received = {}
        self.owners = {}

    def ask(self):
        self.process.stdin.write(b"nettop\n")
        self.process.stdin.flush()
        text = self.process.stdout.read(int(self.process.stdout.readline()))
        owner = None
        for row in text.decode().splitlines():
            fields = row.split(",")
            if fields[1] and "<->" not in fields[1]:
                owner = int(fields[1].rpartition(".")[2])
            elif f"<->{INTERNET}" in fields[1]:
                self.received[fields[1]] = max(int(fields[3]), self.received.get(fields[1], 0))
                known = self.owners.setdefault(fields[1], [])
                if known[-1:] != [owner]:
                    known.append(owner)

    def end(self) -> int:
        self.process.stdin.close()
        return self.process.wait(10)


def many_connections(folder: str) -> dict:
    """1,000 connections one after the other, by one program that lives on; asked at the guard's own pace."""
    probe = Probe(folder)
    probe.ask()
    program = subprocess.Popen([sys.executable, "-c", CONNECTIONS], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    os.set_blocking(program.stdout.fileno(), False)
    next_question = time.monotonic() + 5
    while not program.stdout.read():
        if program.poll() is not None:
            sys.exit("the program with the connections broke off")
        if time.monotonic() >= next_question:
            probe.ask()
            next_question += 5
        time.sleep(0.02)
    probe.ask()
    program.stdin.close()
    program.wait()
    probe.ask()
    status = probe.end()
    return {"program": program.pid, "status": status, "received": sum(probe.received.values()),
            "connections": len(probe.received), "owners": sorted(probe.owners.values())}


SCENES = {scene.__name__: scene for scene in (download, probe_killed, state_lost, disk_full, many_connections)}

if __name__ == "__main__":
    print(json.dumps(SCENES[sys.argv[1]](sys.argv[2])))
