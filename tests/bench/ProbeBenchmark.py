#!/usr/bin/env python3
"""What an answer of quellon-probe costs, beside the tools that one would use without it, under the same load.

Usage: ProbeBenchmark.py PATH_OF_QUELLON_PROBE [RUNS]

The load: 400 processes of one user with 60 descriptors each, five of which are TCP connections over a veth pair to
another network namespace; 2,000 sockets in all. Everything runs in namespaces of its own and ends with this program.
As root the load and all that is measured run as "nobody", as another user as that user in a user namespace.

Figures are CPU time (user and system) in milliseconds. This measures; it passes no judgement.
"""
import ctypes
import os
import pwd
import signal
import socket
import statistics
import subprocess
import sys
import time
import traceback

PROCESSES, DESCRIPTORS, CONNECTIONS = 400, 60, 5
SERVER, CLIENT, PORT = "198.18.0.1", "198.18.0.2", 8080
CLONE_NEWNET = 0x40000000
FAILED = b"!"


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def end_with_parent():
    ctypes.CDLL(None).prctl(1, signal.SIGKILL, 0, 0, 0)  # PR_SET_PDEATHSIG


def serve(ready):
    """The other end: accepts everything and keeps it."""
    end_with_parent()
    if ctypes.CDLL(None, use_errno=True).unshare(CLONE_NEWNET) != 0:
        sys.exit("unshare failed")
    os.write(ready[1], b"u")
    while subprocess.run(["ip", "link", "show", "bench1"], capture_output=True).returncode != 0:
        time.sleep(0.01)
    run("ip", "addr", "add", SERVER + "/24", "dev", "bench1")
    run("ip", "link", "set", "bench1", "up")
    listener = socket.create_server((SERVER, PORT), backlog=4096)
    os.write(ready[1], b"l")
    kept = []
    while True:
        kept.append(listener.accept()[0])
        kept[-1].send(b"x" * 1000)


def connect():
    while True:
        connection = socket.socket()
        try:
            connection.connect((SERVER, PORT))
            return connection
        except OSError:
            connection.close()
            time.sleep(0.01)


def hold(ready, user):
    """One process of the load. A signal makes it open ten connections more."""
    end_with_parent()
    if user is not None:
        os.setgroups([])
        os.setresgid(user.pw_gid, user.pw_gid, user.pw_gid)
        os.setresuid(user.pw_uid, user.pw_uid, user.pw_uid)
        ctypes.CDLL(None).prctl(4, 1, 0, 0, 0)  # PR_SET_DUMPABLE: changing the user has cleared it
        end_with_parent()
    kept = [connect() for _ in range(CONNECTIONS)]
    while len(os.listdir("/proc/self/fd")) - 1 < DESCRIPTORS:
        kept.append(open("/dev/null"))
    signal.pthread_sigmask(signal.SIG_BLOCK, [signal.SIGUSR1])
    os.write(ready[1], b"h")
    while True:
        signal.sigwait([signal.SIGUSR1])
        kept += [connect() for _ in range(10)]
        os.write(ready[1], b"m")


def fork(work, *arguments):
    pid = os.fork()
    if pid == 0:
        try:
            work(*arguments)
        except BaseException:
            traceback.print_exc()
            os.write(arguments[0][1], FAILED)
        os._exit(1)
    return pid


def await_bytes(ready, count):
    while count > 0:
        received = os.read(ready[0], count)
        if FAILED in received:
            sys.exit("the load could not be made")
        count -= len(received)


def make_load(user):
    ready = os.pipe()
    server = fork(serve, ready)
    await_bytes(ready, 1)
    run("ip", "link", "add", "bench0", "type", "veth", "peer", "name", "bench1", "netns", str(server))
    run("ip", "addr", "add", CLIENT + "/24", "dev", "bench0")
    run("ip", "link", "set", "bench0", "up")
    await_bytes(ready, 1)
    holders = []
    for _ in range(PROCESSES):
        holders.append(fork(hold, ready, user))
        await_bytes(ready, 1)
    return server, holders, ready


class Costs:
    def __init__(self, user):
        self.identity = {} if user is None else {"user": user.pw_uid, "group": user.pw_gid, "extra_groups": []}
        self.all = {}

    def note(self, name, milliseconds):
        self.all.setdefault(name, []).append(milliseconds)

    def command(self, name, *command):
        child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **self.identity)
        usage = os.wait4(child.pid, 0)[2]
        child.returncode = 0
        self.note(name, (usage.ru_utime + usage.ru_stime) * 1000)

    def median(self, name):
        return statistics.median(self.all[name])


class Resident:
    """A `quellon-probe serve`."""

    def __init__(self, costs, probe):
        self.costs = costs
        self.child = subprocess.Popen([probe, "serve"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                      **costs.identity)

    def cpu(self):
        """CPU time so far in milliseconds."""
        with open(f"/proc/{self.child.pid}/schedstat") as file:
            return int(file.read().split()[0]) / 1e6

    def memory(self, field="VmRSS"):
        with open(f"/proc/{self.child.pid}/status") as file:
            return next(int(line.split()[1]) for line in file if line.startswith(field + ":"))

    def ask(self, request, name=None):
        before = self.cpu()
        self.child.stdin.write(request.encode() + b"\n")
        self.child.stdin.flush()
        answer = self.child.stdout.read(int(self.child.stdout.readline()))
        time.sleep(0.002)  # until it waits for the next request, so that all of its work is accounted
        if name:
            self.costs.note(name, self.cpu() - before)
        return answer.decode()

    def end(self):
        self.child.stdin.close()
        self.child.wait()


def measure(probe, runs, costs, holders, ready):
    resident = Resident(costs, probe)
    for request in ("nettop", "ps", "route", "ifconfig bench0", "netstat bench0", "networksetup",
                    f"start {holders[0]}", f"parent {holders[0]}"):
        resident.ask(request)
    rows = [line for line in resident.ask("nettop").splitlines() if "<->" in line]
    owners = {line.split(",")[1] for line in resident.ask("nettop").splitlines() if ",," in line}
    print(f"{len(rows)} connections under {len(owners) - 1} owners, {len(resident.ask('ps').splitlines())} processes")
    for number in range(runs):
        costs.command("ss -tinpH", "ss", "-tinpH")
        costs.command("ps exe", "ps", "-axo", "pid=,uid=,pgid=,exe=")
        costs.command("ps comm", "ps", "-axo", "pid=,uid=,pgid=,comm=")
        costs.command("nettop by hand", probe, "nettop")
        costs.command("ps by hand", probe, "ps")
        cold = Resident(costs, probe)
        cold.ask("nettop", "nettop resident, first")
        cold.end()
        resident.ask("nettop", "nettop resident, steady")
        resident.ask("ps", "ps resident, steady")
        resident.ask("route", "route resident")
        os.kill(holders[number % len(holders)], signal.SIGUSR1)
        await_bytes(ready, 1)
        resident.ask("nettop", "nettop resident, 10 new")
    memory = resident.memory(), resident.memory("VmHWM")
    resident.end()
    return memory


def report(costs, memory):
    print(f"{'CPU milliseconds':28}{'min':>9}{'median':>9}")
    for name, values in costs.all.items():
        print(f"{name:28}{min(values):9.2f}{costs.median(name):9.2f}")
    for name, other in (("nettop resident, steady", "ss -tinpH"), ("nettop resident, first", "ss -tinpH"),
                        ("nettop by hand", "ss -tinpH"), ("nettop resident, 10 new", "ss -tinpH"),
                        ("ps resident, steady", "ps exe"), ("ps by hand", "ps exe")):
        ratio = costs.median(name) / costs.median(other)
        print(f"{name:28} : {other:10} = {ratio:.3f} = 1/{1 / ratio:.1f}")
    print(f"resident memory {memory[0]} KiB, at most {memory[1]} KiB")


def inside(probe, runs):
    user = pwd.getpwnam("nobody") if os.environ["BENCHMARK_AS"] == "root" else None
    run("ip", "link", "set", "lo", "up")
    server, holders, ready = make_load(user)
    try:
        costs = Costs(user)
        report(costs, measure(probe, runs, costs, holders, ready))
    finally:
        for pid in [server, *holders]:
            os.kill(pid, signal.SIGKILL)
            os.waitpid(pid, 0)


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    probe, runs = os.path.abspath(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) == 3 else 21
    if "BENCHMARK_AS" in os.environ:
        return inside(probe, runs)
    is_root = os.geteuid() == 0
    os.environ["BENCHMARK_AS"] = "root" if is_root else "user"
    namespaces = ["-n"] if is_root else ["-U", "--map-current-user", "--keep-caps", "-n"]
    os.execvp("unshare", ["unshare", *namespaces, sys.executable, os.path.abspath(__file__), probe, str(runs)])


if __name__ == "__main__":
    main()
