#!/usr/bin/env python3
"""The lab by itself: its network, its user, its exit statuses, and that nothing outlasts it."""

import hashlib
import http.server
import os
import shutil
import signal
import stat
import subprocess
import tempfile
import threading
import time
import unittest

import labs
from labs import LAB, NOBODY, phone_server, run, wait_until


class LabCase(unittest.TestCase):
    """Tests that hold for the lab of root and for the lab in a user namespace alike."""

    lab = [LAB]
    uid = NOBODY if os.geteuid() == 0 else os.geteuid()

    @classmethod
    def setUpClass(cls):
        reason = labs.why_not(cls.lab)
        if reason:
            raise unittest.SkipTest(reason)

    def inside(self, script: str, *options: str, **more):
        return run([*self.lab, *options, "bash", "-c", script], **more)

    def output(self, script: str, *options: str) -> str:
        done = self.inside(script, *options)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def start(self, script: str) -> subprocess.Popen:
        """A lab that runs `script`; returns once the script has printed its first line, "ready"."""
        started = subprocess.Popen([*self.lab, "bash", "-c", script], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   text=True)
        self.addCleanup(started.stdout.close)
        self.addCleanup(started.stdin.close)
        self.addCleanup(started.wait)
        self.addCleanup(started.kill)
        self.assertEqual(started.stdout.readline(), "ready\n")
        return started

    def assert_gone(self, members: set, seen: set):
        """No process of the lab is left, and nobody is in one of its namespaces."""
        def is_gone():
            return not any(labs.namespaces(process) & seen for process in labs.processes()) and not any(
                process in members for process in labs.processes())
        wait_until(is_gone, "the end of the lab's processes and namespaces")


class Network(LabCase):
    def test_laptop(self):
        self.assertIn("inet 172.20.10.2/28", self.output("ip -4 address show dev wlan0"))
        self.assertEqual(self.output("ip route show default").split(),
                         "default via 172.20.10.1 dev wlan0 metric 600".split())
        self.assertIn("src 172.20.10.2", self.output("ip route get 1.1.1.1"))
        self.assertEqual(self.output("ls /sys/class/net").split(), ["lo", "wlan0"])

    def test_home_network(self):
        self.assertIn("via 192.168.1.1 dev wlan0", self.output("ip route get 1.1.1.1", "--home"))
        self.assertEqual(self.output("curl -sf http://$LAB_GATEWAY/bytes/5 | wc -c", "--home").strip(), "5")

    def test_internet_phone_and_content(self):
        for address in ("LAB_INTERNET", "LAB_GATEWAY", *(["LAB_INTERNET6"] if os.path.isdir("/proc/sys/net/ipv6")
                                                         else [])):
            with self.subTest(address):
                expected = hashlib.sha256(phone_server.content(0, 3_000_000)).hexdigest()
                self.assertEqual(self.output(f"curl -gsf http://${address}/bytes/3000000 | sha256sum").split()[0],
                                 expected)

    def test_rate(self):
        begun = time.monotonic()
        received = self.output("curl -sf http://$LAB_INTERNET/bytes/200000/100000 | wc -c")
        self.assertEqual(received.strip(), "200000")
        # 200 kB at 100 kB/s; the last piece need not be waited for.
        self.assertGreater(time.monotonic() - begun, 1.8)

    def test_ranges_and_errors(self):
        cases = (
            ("whole", "", "200 10"), ("from", "-r 4-", "206 6"), ("between", "-r 2-3", "206 2"),
            ("last", "-r -3", "206 3"), ("beyond the end", "-r 8-99", "206 2"), ("outside", "-r 10-12", "416 0"),
            ("head", "-I", "200 0"),
        )
        for name, options, expected in cases:
            with self.subTest(name):
                self.assertEqual(self.output(f"curl -s -o /dev/null -w '%{{http_code}} %{{size_download}}' {options} "
                                             "http://$LAB_INTERNET/bytes/10"), expected)
        for path in ("/", "/bytes/", "/bytes/x", "/bytes/10/0", "/bytes/-1"):
            with self.subTest(path):
                self.assertEqual(self.output(f"curl -s -o /dev/null -w '%{{http_code}}' http://$LAB_INTERNET{path}"),
                                 "404")
        sent = "head -c 1234567 /dev/zero | curl -sf --data-binary @- http://$LAB_INTERNET/upload"
        self.assertEqual(self.output(sent), "1234567\n")

    def test_kept_alive(self):
        self.assertEqual(self.output("curl -s -o /dev/null -o /dev/null -w '%{num_connects} ' "
                                     "http://$LAB_INTERNET/bytes/10 http://$LAB_INTERNET/bytes/20").split(), ["1", "0"])

    def test_no_way_out(self):
        server = http.server.HTTPServer(("127.0.0.1", 0), http.server.SimpleHTTPRequestHandler)
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        try:
            port = server.server_address[1]
            self.assertEqual(self.inside(f"curl -s http://127.0.0.1:{port}/").returncode, 7)
        finally:
            server.shutdown()
            thread.join()
            server.server_close()
        self.assertEqual(self.output("ls /run").split(), ["lab"])


class User(LabCase):
    def test_identity(self):
        self.assertEqual(self.output("id -u").strip(), str(self.uid))
        lines = self.output("cat /proc/self/status").splitlines()
        capabilities = [line.split()[1] for line in lines if line.startswith(("CapPrm", "CapEff", "CapInh", "CapAmb",
                                                                              "CapBnd"))]
        self.assertEqual(capabilities, ["0" * 16] * 5)

    def test_may_not_touch_the_network(self):
        self.assertNotEqual(self.inside("ip link set wlan0 down").returncode, 0)

    def test_folders(self):
        self.assertEqual(self.output('for f in "$HOME" "$TMPDIR" "$QUELLON_STATE_DIR" "$XDG_RUNTIME_DIR"; do '
                                     'touch "$f/x" && stat -c "%a %u" "$f"; done').splitlines(),
                         [f"700 {self.uid}"] * 4)
        self.assertFalse(os.path.exists("/run/lab"))

    def test_environment(self):
        done = run([*self.lab, "env"], env=os.environ | {"DISPLAY": ":9", "DBUS_SESSION_BUS_ADDRESS": "unix:path=/x",
                                                         "http_proxy": "http://proxy", "ASAN_OPTIONS": "a=b"})
        names = {line.split("=", 1)[0] for line in done.stdout.splitlines()}
        self.assertFalse(names & {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "http_proxy"})
        self.assertIn("ASAN_OPTIONS=a=b", done.stdout.splitlines())

    def test_standard_input_and_folder(self):
        self.assertEqual(run([*self.lab, "cat"], input="text").stdout, "text")
        self.assertEqual(run([*self.lab, "pwd"], cwd="/usr").stdout, "/usr\n")


class Ends(LabCase):
    def test_exit_status(self):
        cases = (("success", "exit 0", 0), ("failure", "exit 1", 1), ("any", "exit 42", 42),
                 ("the lab's own", "exit 125", 125), ("killed", "kill -KILL $$", 137), ("segment", "kill -SEGV $$", 139))
        for name, script, status in cases:
            with self.subTest(name):
                self.assertEqual(self.inside(script).returncode, status)
        self.assertEqual(run([*self.lab, "no-such-program"]).returncode, 127)
        self.assertEqual(run([*self.lab, "/etc/passwd"]).returncode, 126)
        self.assertEqual(run([*self.lab]).returncode, 2)
        self.assertEqual(run([*self.lab, "--nonsense", "true"]).returncode, 2)

    def test_nothing_left(self):
        mounts = labs.mounts()
        waiting = "echo ready; sleep 300 & setsid sleep 300 & wait"
        cases = (
            ("killed", signal.SIGKILL, waiting, -signal.SIGKILL),
            ("asked to end", signal.SIGTERM, "trap 'exit 3' TERM; " + waiting, 3),
            ("interrupted", signal.SIGINT, "trap 'exit 4' INT; " + waiting, 4),
            ("hung up", signal.SIGHUP, "trap 'exit 5' HUP; " + waiting, 5),
            ("asked in vain", signal.SIGTERM, "trap '' TERM; " + waiting, 137),
            ("by itself", None, "echo ready; setsid sleep 300 & read -r _; exit 6", 6),
        )
        for name, number, script, status in cases:
            with self.subTest(name):
                lab = self.start(script)
                members = labs.family(lab.pid)
                # The lab, the one that makes the namespaces, its first process, the phone, the command.
                self.assertGreaterEqual(len(members), 5)
                seen = set().union(*map(labs.namespaces, members)) - labs.namespaces(os.getpid())
                # The laptop's network, the phone's, and the process, mount and IPC namespaces of both.
                self.assertGreaterEqual(len(seen), 5)
                if number is None:
                    lab.stdin.write("go\n")
                    lab.stdin.flush()
                else:
                    lab.send_signal(number)
                self.assertEqual(lab.wait(timeout=20), status)
                self.assert_gone(members, seen)
        self.assertEqual(labs.mounts(), mounts)

    def test_the_one_in_between_is_killed(self):
        lab = self.start("echo ready; sleep 300")
        members = labs.family(lab.pid)
        seen = set().union(*map(labs.namespaces, members)) - labs.namespaces(os.getpid())
        between = [process for process, parent in labs.processes().items() if parent == lab.pid]
        self.assertEqual(len(between), 1)
        os.kill(between[0], signal.SIGKILL)
        self.assertEqual(lab.wait(timeout=20), 137)
        self.assert_gone(members, seen)

    def test_side_by_side(self):
        script = ("echo ready; read -r _; readlink /proc/self/ns/net; curl -sf http://$LAB_INTERNET/bytes/1000000 | sha256sum; "
                  "echo $$ >$HOME/own; cat $HOME/own")
        all_labs = [self.start(script) for _ in range(3)]
        answers = [lab.communicate("go\n", timeout=30)[0].split() for lab in all_labs]
        self.assertEqual([lab.returncode for lab in all_labs], [0, 0, 0])
        expected = hashlib.sha256(phone_server.content(0, 1_000_000)).hexdigest()
        self.assertEqual([answer[1] for answer in answers], [expected] * 3)
        self.assertEqual(len({answer[0] for answer in answers}), 3)


class Folders(LabCase):
    """The repository, and what else is asked for, can be reached below a private folder and below /run."""

    def setUp(self):
        if os.geteuid() != 0:
            self.skipTest("only root can lock the lab's user out")

    def test_private_folder(self):
        for parent in ("/tmp", "/run"):
            with self.subTest(parent), tempfile.TemporaryDirectory(dir=parent) as private:
                self.assertEqual(stat.S_IMODE(os.stat(private).st_mode), 0o700)
                tools = os.path.join(private, "clone", "tools")
                shutil.copytree(labs.TOOLS, os.path.join(tools, "lab"))
                build = os.path.join(private, "build")
                os.mkdir(build, 0o755)
                with open(os.path.join(build, "result"), "w", encoding="utf-8") as file:
                    file.write("built")
                own_lab = os.path.join(tools, "lab", "lab")
                done = run([own_lab, "bash", "-c", f"pwd; ls .; ls {private}"], cwd=tools)
                self.assertEqual(done.stdout.split(), [tools, "lab", "clone"], done.stderr)
                done = run([own_lab, "--reach", build, "cat", f"{build}/result"], cwd=tools)
                self.assertEqual(done.stdout, "built", done.stderr)
                self.assertEqual(run([own_lab, "pwd"], cwd=build).stdout, "/run/lab/home\n")

    def test_closed_folder(self):
        with tempfile.TemporaryDirectory() as closed:
            done = run([LAB, "--reach", closed, "true"])
            self.assertEqual(done.returncode, 125)
            self.assertIn("chmod o+rx", done.stderr)


class Rootless:
    """Mixed into a test class: the same tests in a lab that an ordinary user starts."""

    @classmethod
    def setUpClass(cls):
        if os.geteuid() == 0:
            place = tempfile.mkdtemp()
            cls.addClassCleanup(shutil.rmtree, place)
            os.chmod(place, 0o755)
            shutil.copytree(labs.TOOLS, os.path.join(place, "tools", "lab"))
            cls.lab = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups",
                       os.path.join(place, "tools", "lab", "lab")]
        super().setUpClass()


class RootlessNetwork(Rootless, Network):
    pass


class RootlessUser(Rootless, User):
    pass


class RootlessEnds(Rootless, Ends):
    pass


class Check(unittest.TestCase):
    def test_refused(self):
        """Where namespaces are refused, the lab says so, for a program and for a person."""
        refused = ["setpriv", "--bounding-set=-all", "--inh-caps=-all", "--no-new-privs"]
        if os.geteuid() != 0:
            self.skipTest("only root can take the right to make namespaces away")
        done = run([*refused, LAB, "true"])
        self.assertEqual(done.returncode, 125)
        self.assertIn("CAP_SYS_ADMIN", done.stderr)
        done = run([*refused, LAB, "check"])
        self.assertEqual(done.returncode, 1)
        self.assertIn("the lab can't run here: ", done.stdout)

    def test_help(self):
        done = run([LAB, "--help"])
        self.assertEqual(done.returncode, 0)
        self.assertIn("lab check", done.stdout)


if __name__ == "__main__":
    labs.main()
