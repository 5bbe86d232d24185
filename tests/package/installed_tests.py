#!/usr/bin/python3
"""The package in a clean system: installing, running, upgrading while it guards, removing.

    installed_tests.py PACKAGE ROOT

For root, in namespaces of its own for mounts and processes. Ends with a system in ROOT from which the package is
removed.
"""

import glob
import json
import os
import re
import signal
import subprocess
import sys
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "bench"))

import StartCost  # noqa: E402
import clean_root  # noqa: E402
from clean_root import USER  # noqa: E402

PACKAGE, ROOT = (os.path.abspath(each) for each in sys.argv[1:3])
CHROOT = "/usr/sbin/chroot"
HOME = "/tmp/home"
STATE = f"{HOME}/.local/share/Quellon"
PATIENCE = 30.0
RULE = {"id": "0B0E5A52-7D3C-4E0C-9E57-3A2B6C1D4F01", "windowSeconds": 60, "thresholdBytes": 1_000_000,
        "level": "enforce", "enabled": True}
SETTINGS = {"onboarded": True, "updateCheckConsent": "denied", "sampleInterval": 0.1, "rules": [RULE]}
# Answers as the helper would on a hotspot on which one process moves more and more.
HELPER = """#!/bin/sh
total=0
answer() { printf '%s\\n%s' "${#1}" "$1"; }
while read -r role argument; do
    case $role in
    nettop) total=$((total + 10000000)); answer "time,,interface,bytes_in,bytes_out,
12:00:00.000001,first.PID,,$total,0,
12:00:00.000001,tcp4 172.20.10.4:50000<->203.0.113.9:443,wlan0,$total,0,
" ;;
    ps) answer "PID 1000 PID /opt/tests/first
" ;;
    route) answer "    gateway: 172.20.10.1
  interface: wlan0
" ;;
    *) printf '0\\n' ;;
    esac
done
"""


def inside(path: str) -> str:
    return os.path.join(ROOT, path.lstrip("/"))


def write(path: str, text: str, mode: int = 0o644):
    os.makedirs(os.path.dirname(inside(path)), exist_ok=True)
    with open(inside(path), "w", encoding="utf-8") as file:
        file.write(text)
    os.chmod(inside(path), mode)


def read(path: str) -> str:
    with open(inside(path), encoding="utf-8") as file:
        return file.read()


def run(*command: str, **options) -> subprocess.CompletedProcess:
    """As root, in the clean system."""
    return subprocess.run([CHROOT, ROOT, *command], capture_output=True, text=True, timeout=120, check=False,
                          env={"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "DEBIAN_FRONTEND": "noninteractive",
                               "LC_ALL": "C.UTF-8"}, **options)


def as_user(*command: str) -> list:
    return [CHROOT, f"--userspec={USER}:{USER}", ROOT, *command]


def environment(**more: str) -> dict:
    return {"HOME": HOME, "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "TZ": "UTC",
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent", **more}


def user_run(*command: str, **more: str) -> subprocess.CompletedProcess:
    return subprocess.run(as_user(*command), capture_output=True, text=True, timeout=120, check=False,
                          env=environment(**more))


def wait_until(holds, what: str):
    end = time.monotonic() + PATIENCE
    while not holds():
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.02)


def state_of(process: int) -> str:
    with open(f"/proc/{process}/stat", encoding="utf-8") as file:
        return file.read().rpartition(")")[2].split()[0]


def executable(process: int) -> str:
    return os.readlink(f"/proc/{process}/exe").removeprefix(ROOT)


def new_home():
    subprocess.run(["rm", "-rf", inside(HOME)], check=True)
    StartCost.prepare(inside(HOME))
    write(f"{STATE}/settings.json", json.dumps(SETTINGS))
    subprocess.run(["chown", "-R", f"{USER}:{USER}", inside(HOME)], check=True)


def package_with_version(version: str) -> str:
    """The same package as another version, as the clean system sees its path."""
    folder = inside("/tmp/unpacked")
    subprocess.run(["dpkg-deb", "-R", PACKAGE, folder], check=True)
    control = os.path.join(folder, "DEBIAN", "control")
    with open(control, encoding="utf-8") as file:
        text = re.sub(r"(?m)^Version: .*$", f"Version: {version}", file.read())
    with open(control, "w", encoding="utf-8") as file:
        file.write(text)
    subprocess.run(["dpkg-deb", "-Z", "none", "-b", folder, inside(f"/tmp/{version}.deb")], check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(["rm", "-rf", folder], check=True)
    return f"/tmp/{version}.deb"


class Guard:
    """A guard of the user's that has frozen a process of the user's."""

    def __init__(self, program: str = "/usr/bin/quellon"):
        new_home()
        self.victim = subprocess.Popen(as_user("/bin/sleep", "1000"), env=environment())
        write("/usr/bin/quellon-probe", HELPER.replace("PID", str(self.victim.pid)), 0o755)
        with open(inside("/tmp/guard.log"), "w", encoding="utf-8") as log:
            self.process = subprocess.Popen(as_user(program, "--plain", "--auto-resume", "600"), env=environment(),
                                            stdout=log, stderr=log)

    def wait_for_freeze(self):
        record = f"{STATE}/suspended.json"
        wait_until(lambda: self.is_frozen() and os.path.exists(inside(record)) and str(self.victim.pid) in read(record),
                   "a freeze on record")

    def is_frozen(self) -> bool:
        return state_of(self.victim.pid) == "T"

    def tables(self) -> int:
        return read("/tmp/guard.log").count("Guarding")

    def wait_for_tables(self):
        seen = self.tables()
        wait_until(lambda: self.tables() >= seen + 3, "a guard that goes on")

    def close(self):
        os.remove(inside("/usr/bin/quellon-probe"))
        for each in (self.process, self.victim):
            if each.poll() is None:
                each.kill()
            each.wait()


class Installed(unittest.TestCase):
    maxDiff = None

    def install(self, package: str = "/tmp/quellon.deb"):
        answer = run("dpkg", "--install", package)
        self.assertEqual(answer.returncode, 0, answer.stdout + answer.stderr)

    def setUp(self):
        subprocess.run(["cp", PACKAGE, inside("/tmp/quellon.deb")], check=True)
        self.install()

    def guard(self) -> Guard:
        guard = Guard()
        self.addCleanup(guard.close)
        guard.wait_for_freeze()
        return guard

    def test_everything_is_in_its_place(self):
        self.assertEqual(run("dpkg", "--audit").stdout, "")
        self.assertEqual(run("dpkg", "--verify", "quellon").stdout, "")
        for program in ("/usr/bin/Quellon", "/usr/libexec/quellon/quellon-probe"):
            self.assertNotIn("not found", run("ldd", program).stdout)
        self.assertEqual(os.readlink(inside("/usr/bin/quellon")), "Quellon")
        # It is opened by name, so nothing but the dependency brings it along.
        self.assertIn("libcurl.so.4 ", run("ldconfig", "-p").stdout)
        files = run("dpkg", "--listfiles", "quellon").stdout.splitlines()
        for expected in ("applications/org.quellon.Quellon.desktop", "metainfo/org.quellon.Quellon.metainfo.xml",
                         "icons/hicolor/scalable/apps/org.quellon.Quellon.svg",
                         "icons/hicolor/16x16/apps/org.quellon.Quellon.png",
                         "icons/hicolor/512x512/apps/org.quellon.Quellon.png",
                         "icons/hicolor/symbolic/apps/org.quellon.Quellon-symbolic.svg",
                         "man/man1/quellon.1.gz", "man/man1/Quellon.1.gz", "man/man1/quellon-probe.1.gz",
                         "bash-completion/completions/quellon", "bash-completion/completions/Quellon",
                         "zsh/vendor-completions/_quellon", "fish/vendor_completions.d/quellon.fish",
                         "doc/quellon/copyright", "doc/quellon/changelog.gz"):
            self.assertIn("/usr/share/" + expected, files)
        self.assertIn("/usr/lib/systemd/user/quellon.service", files)

    def test_it_says_its_version(self):
        version = re.match(r"\d+\.\d+\.\d+", run("dpkg-query", "-W", "-f", "${Version}", "quellon").stdout).group(0)
        for command in ("Quellon", "quellon"):
            self.assertEqual(user_run(command, "--version").stdout, f"Quellon {version}\n")
        self.assertEqual(user_run("/usr/libexec/quellon/quellon-probe", "--version").stdout, f"quellon-probe {version}\n")

    def test_the_probe_answers(self):
        route = user_run("/usr/libexec/quellon/quellon-probe", "route")
        self.assertEqual((route.returncode, route.stderr), (0, ""))
        processes = user_run("/usr/libexec/quellon/quellon-probe", "ps")
        self.assertRegex(processes.stdout, r"/quellon-probe\n")

    def test_five_seconds_of_lines(self):
        new_home()
        process = subprocess.Popen(as_user("quellon", "--plain", "--duration", "5"), env=environment(),
                                   stdout=subprocess.PIPE, text=True)

        def helpers() -> list:
            with open(f"/proc/{process.pid}/task/{process.pid}/children", encoding="utf-8") as file:
                children = file.read().split()
            for folder in glob.glob(f"/proc/{process.pid}/task/*/children"):
                with open(folder, encoding="utf-8") as file:
                    children += file.read().split()
            return [executable(int(child)) for child in children]
        wait_until(lambda: "/usr/libexec/quellon/quellon-probe" in helpers(), "the helper")
        lines, _ = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 0)
        self.assertIn("Quellon Pro started", lines)
        self.assertRegex(lines, r"(Idle|Guarding)")
        self.assertEqual(json.loads(read(f"{STATE}/suspended.json")), [])
        self.assertEqual([each for each in os.listdir(inside("/tmp")) if "Transient" in each], [])

    def test_the_desktop_program_starts(self):
        new_home()
        answer = user_run("Quellon", "--duration", "1", DISPLAY=":none", QT_QPA_PLATFORM="offscreen")
        self.assertEqual(answer.returncode, 0, answer.stderr)
        self.assertNotIn("qt.qpa.plugin", answer.stderr)

    def test_autostart(self):
        new_home()
        self.assertEqual(user_run("quellon", "--autostart", "on").returncode, 0)
        self.assertIn('\nExec="/usr/bin/Quellon"\n',
                      read(f"{HOME}/.config/autostart/org.quellon.Quellon.desktop"))
        self.assertEqual(user_run("quellon", "--autostart", "status").stdout, "on\n")

    def test_an_upgrade_and_back_over_a_guard_that_has_frozen_something(self):
        guard = self.guard()
        before = read(f"{STATE}/settings.json")
        newer = package_with_version("99.0")
        for package, version in ((newer, "99.0"), ("/tmp/quellon.deb", None)):
            self.install(package)
            if version:
                self.assertEqual(run("dpkg-query", "-W", "-f", "${Version}", "quellon").stdout, version)
            self.assertEqual(executable(guard.process.pid), "/usr/bin/Quellon (deleted)")
            guard.wait_for_tables()
            self.assertTrue(guard.is_frozen())
        guard.process.send_signal(signal.SIGTERM)
        self.assertEqual(guard.process.wait(PATIENCE), 0)
        self.assertFalse(guard.is_frozen())
        self.assertEqual(read(f"{STATE}/suspended.json"), "[]")
        self.assertEqual(read(f"{STATE}/settings.json"), before)

    def test_what_a_guard_froze_that_an_upgrade_outlived_the_new_one_thaws(self):
        guard = self.guard()
        self.install(package_with_version("99.0"))
        guard.process.kill()
        guard.process.wait()
        self.assertTrue(guard.is_frozen())
        answer = user_run("quellon", "--plain", "--duration", "1")
        self.assertIn("Recovered from an unclean shutdown", answer.stdout)
        self.assertFalse(guard.is_frozen())

    def test_removal_thaws_and_keeps_the_state(self):
        guard = self.guard()
        self.install(package_with_version("99.0"))  # so that the guard's own file is gone already
        bystander = subprocess.Popen(as_user("/bin/sleep", "1000"), env=environment())
        self.addCleanup(lambda: (bystander.kill(), bystander.wait()))
        files = run("dpkg", "--listfiles", "quellon").stdout.splitlines()
        before = read(f"{STATE}/settings.json")
        answer = run("dpkg", "--remove", "quellon")
        self.assertEqual((answer.returncode, answer.stderr), (0, ""))
        self.assertEqual(guard.process.wait(PATIENCE), 0)
        self.assertFalse(guard.is_frozen())
        self.assertIsNone(guard.victim.poll())
        self.assertIsNone(bystander.poll())
        self.assertEqual(read(f"{STATE}/settings.json"), before)
        self.assertEqual([each for each in files if not os.path.isdir(inside(each)) and os.path.lexists(inside(each))], [])

    def test_removal_asks_a_guard_that_is_stopped_itself(self):
        guard = self.guard()
        guard.process.send_signal(signal.SIGSTOP)
        wait_until(lambda: state_of(guard.process.pid) == "T", "a guard that is stopped")
        self.assertEqual(run("dpkg", "--remove", "quellon").returncode, 0)
        self.assertEqual(guard.process.wait(PATIENCE), 0)
        self.assertFalse(guard.is_frozen())

    def test_a_guard_of_another_system_is_let_be(self):
        # The same path, but below another root: as from a container.
        other = inside("/tmp/other")
        os.makedirs(other)
        os.mkdir(os.path.join(other, "usr"))
        subprocess.run(["mount", "--bind", inside("/usr"), os.path.join(other, "usr")], check=True)
        self.addCleanup(subprocess.run, ["umount", os.path.join(other, "usr")], check=True)
        for link in ("bin", "lib", "lib64"):
            os.symlink(f"usr/{link}", os.path.join(other, link))
        stranger = subprocess.Popen([CHROOT, other, "/usr/bin/Quellon", "--plain", "--duration", "60"],
                                    env=environment(HOME="/nonexistent"), stdout=subprocess.PIPE, text=True)
        self.addCleanup(lambda: (stranger.kill(), stranger.wait(), stranger.stdout.close()))
        self.assertIn("Quellon Pro started", stranger.stdout.readline())
        self.assertEqual(run("dpkg", "--remove", "quellon").returncode, 0)
        self.assertIsNone(stranger.poll())


def main() -> int:
    relations = subprocess.run(["dpkg-deb", "--field", PACKAGE, "Depends"], capture_output=True, text=True,
                               check=True).stdout.strip()
    print(f"Depends: {relations}", flush=True)
    begin = time.monotonic()
    clean_root.make(ROOT, relations)
    clean_root.enter(ROOT)
    print(f"A clean system in {time.monotonic() - begin:.1f} s", flush=True)
    result = unittest.main(verbosity=2, argv=sys.argv[:1], exit=False).result
    run("dpkg", "--install", "/tmp/quellon.deb")
    new_home()
    StartCost.tell(StartCost.measure(as_user("/usr/bin/Quellon"), HOME))
    run("dpkg", "--remove", "quellon")
    return 0 if result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
