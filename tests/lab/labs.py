"""What the tests around the lab share: starting labs, watching them go, and being skipped where there can be none."""

import json
import os
import subprocess
import sys
import time
import unittest

REPOSITORY = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
TOOLS = os.path.join(REPOSITORY, "tools", "lab")
LAB = os.path.join(TOOLS, "lab")
NOBODY = 65534
SKIPPED = 77

sys.path.insert(0, TOOLS)
import phone_server  # noqa: E402,F401


def run(command: list, **options) -> subprocess.CompletedProcess:
    """Runs `command` to its end and keeps what it said; a minute at most."""
    return subprocess.run(command, capture_output=True, text=options.pop("text", True), check=False,
                          timeout=options.pop("timeout", 60), **options)


def why_not(lab: list) -> str:
    """Why this lab can't run here; empty where it can."""
    checked = run([*lab, "check"])
    return "" if checked.returncode == 0 else checked.stdout.strip() or checked.stderr.strip()


class SceneCase(unittest.TestCase):
    """Tests of what is seen in the lab: `script` plays a scene there, and the tests judge."""

    script = "scene.py"

    @classmethod
    def setUpClass(cls):
        reason = why_not([LAB])
        if reason:
            raise unittest.SkipTest(reason)

    @classmethod
    def play(cls, scene: str, timeout: int = 200) -> dict:
        """What the scene saw of the programs under test, in so many seconds at most."""
        folder = os.path.dirname(os.environ["QUELLON"])
        script = os.path.join(REPOSITORY, "tests", "lab", cls.script)
        done = run([LAB, "--reach", folder, script, scene, folder], timeout=timeout)
        if done.returncode != 0:
            raise AssertionError(done.stderr)
        return json.loads(done.stdout)


def wait_until(condition, what: str, seconds: float = 20.0):
    """Returns what `condition` gives as soon as that is true; fails when it takes too long."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds:g} seconds: {what}")
        time.sleep(0.02)


def processes() -> dict:
    """Each process id and its parent's."""
    found = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                    found[int(name)] = int(file.read().rpartition(")")[2].split()[1])
            except OSError:
                pass
    return found


def family(root: int) -> set:
    """The process and all that descend from it."""
    parents = processes()
    members = {root} & parents.keys()
    while True:
        more = {process for process, parent in parents.items() if parent in members} - members
        if not more:
            return members
        members |= more


def namespaces(process: int) -> set:
    """The namespaces that the process is in, as far as one may see them."""
    found = set()
    for kind in ("net", "pid", "mnt", "ipc", "user"):
        try:
            found.add(os.readlink(f"/proc/{process}/ns/{kind}"))
        except OSError:
            pass
    return found


def mounts() -> str:
    with open("/proc/self/mountinfo", encoding="utf-8") as file:
        return file.read()


def main():
    """Runs the tests named on the command line. Exit status 77: some of them could not run here."""
    program = unittest.main(module="__main__", exit=False, verbosity=2)
    result = program.result
    if not result.wasSuccessful():
        sys.exit(1)
    if result.skipped:
        for _, reason in result.skipped:
            print(f"skipped: {reason}")
        sys.exit(SKIPPED)
    sys.exit(0 if result.testsRun > 0 else 1)
