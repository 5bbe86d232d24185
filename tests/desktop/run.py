#!/usr/bin/python3
"""Runs tests on a desktop in the lab, or without it where there can be none.

    run.py [--home] SCRIPT CLASS PROGRAM PICTURES

In the lab, an unprivileged user has the desktop, on a laptop behind a phone's hotspot, or with --home in an ordinary
network, and nothing outlasts it, whatever happens. Without the lab the tests that need traffic are skipped; exit status
77 says so. A missing package is a failure.
"""

import importlib.util
import os
import shutil
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
LAB = os.path.join(os.path.dirname(os.path.dirname(HERE)), "tools", "lab", "lab")

# What has to be there, any one of each, and the package that has it.
TOOLS = {
    "Xvfb": "xvfb", "openbox": "openbox", "xfce4-panel": "xfce4-panel", "xdotool": "xdotool", "import": "imagemagick",
    "dbus-daemon": "dbus"}
FILES = {
    ("/usr/share/dbus-1/services/org.xfce.Xfconf.service",): "xfconf",
    ("/usr/share/dbus-1/services/org.a11y.Bus.service",): "at-spi2-core",
    ("/usr/lib/notification-daemon/notification-daemon", "/usr/libexec/notification-daemon"): "notification-daemon"}


def missing() -> list:
    """The packages that are not installed."""
    found = [package for tool, package in TOOLS.items() if not shutil.which(tool)]
    found += [package for files, package in FILES.items() if not any(os.path.exists(file) for file in files)]
    if not importlib.util.find_spec("gi"):
        return [*found, "python3-gi"]
    import gi
    try:
        gi.require_version("Atspi", "2.0")
    except ValueError:
        found.append("gir1.2-atspi-2.0")
    return found


def command(options: list, script: str, chosen: str, program: str, pictures: str) -> list:
    """The command line of the tests, in the lab where there can be one."""
    tests = [os.path.join(HERE, script), chosen, program, pictures]
    trial = subprocess.run([LAB, "check"], capture_output=True, text=True, check=False)
    if trial.returncode != 0:
        print(trial.stdout.strip() or trial.stderr.strip())
        return tests
    return [LAB, *options, "--reach", os.path.dirname(program), "--reach", pictures, *tests]


def main():
    options, (script, chosen, program, pictures) = sys.argv[1:-4], sys.argv[-4:]
    if packages := missing():
        sys.exit(f"not installed: {', '.join(packages)}")
    os.makedirs(pictures, exist_ok=True)
    os.chmod(pictures, 0o1777)
    line = command(options, script, chosen, program, pictures)
    os.execv(line[0], line)


if __name__ == "__main__":
    main()
