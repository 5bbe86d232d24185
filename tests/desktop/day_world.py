#!/usr/bin/python3
"""The world for a day with the program: a hotspot to join and to leave, and the program's own hosts.

    day_world.py SCRIPT CLASS PROGRAM PICTURES

runs the tests in the lab as run.py does, and beside it keeps what an unprivileged user can't: a certificate authority
that all programs of the lab trust, and a switch for the laptop's radio. DAY_PICTURES in the environment names a folder
for a picture of each step. Exit status 77: there can be no lab here.
"""

import ctypes
import os
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import threading

import run
from day_server import HOSTS
from family import end_with_parent

BUNDLE = "/etc/ssl/certs/ca-certificates.crt"
PACKAGES = {"openssl": "openssl", "unshare": "util-linux", "nsenter": "util-linux", "ip": "iproute2"}
INSIDE = "--inside"
CREDENTIALS = struct.Struct("3i")
SKIPPED = 77


def must(*command: str, lines: str = "") -> str:
    """What a tool prints that has to succeed."""
    done = subprocess.run(command, input=lines, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)}: {done.stderr.strip()}")
    return done.stdout


# --- who is trusted --------------------------------------------------------------------------------------------------

def make_certificates(folder: str):
    """An authority, and what it has signed for the program's hosts, as day_server expects it."""
    def path(name: str) -> str:
        return os.path.join(folder, name)

    def request(name: str, *words: str):
        must("openssl", "req", *words, "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-keyout",
             path(f"{name}.key"), "-subj", f"/CN={name}")
    request("authority", "-x509", "-days", "2", "-out", path("authority.pem"))
    names = ",".join(f"DNS:{host}" for host in HOSTS)
    request("hosts", "-addext", f"subjectAltName={names}", "-out", path("hosts.csr"))
    must("openssl", "x509", "-req", "-in", path("hosts.csr"), "-CA", path("authority.pem"), "-CAkey",
         path("authority.key"), "-CAcreateserial", "-days", "2", "-copy_extensions", "copy", "-out", path("hosts.pem"))
    os.chmod(path("hosts.key"), 0o644)  # for the lab's user, who is another


def trust(authority: str):
    """All that is started from here trusts this authority and no other; nothing outside of it does."""
    must("mount", "-n", "--bind", authority, BUNDLE)


# --- the radio -------------------------------------------------------------------------------------------------------

class Radio:
    """Switches the radio of whoever asks: "off" leaves the hotspot, "on" joins it again. Asked over a socket."""

    def __init__(self, path: str):
        self.routes = ""
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(path)
        os.chmod(path, 0o666)
        self.listener.listen()
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            link, _ = self.listener.accept()
            with link:
                asking = CREDENTIALS.unpack(link.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, CREDENTIALS.size))[0]
                try:
                    self.switch(asking, link.recv(16).decode())
                    link.sendall(b"done")
                except RuntimeError as error:
                    link.sendall(str(error).encode())

    def switch(self, asking: int, how: str):
        """In the network of the process that asks."""
        there = ["nsenter", "--net", "-t", str(asking), "ip"]
        if how == "off":
            # The kernel forgets the way out along with the link.
            self.routes = must(*there, "route", "show", "default")
            must(*there, "link", "set", "wlan0", "down")
        else:
            routes = (f"route add {route}" for route in self.routes.splitlines())
            must(*there, "-batch", "-", lines="\n".join(["link set wlan0 up", *routes]) + "\n")


# --- command line ----------------------------------------------------------------------------------------------------

def enter(arguments: list):
    """Begins again where mounts are this process's own business."""
    if missing := [*run.missing(), *(package for tool, package in PACKAGES.items() if not shutil.which(tool))]:
        sys.exit(f"not installed: {', '.join(missing)}")
    trial = subprocess.run([run.LAB, "check"], capture_output=True, text=True, check=False)
    if trial.returncode != 0:
        print(trial.stdout.strip() or trial.stderr.strip())
        sys.exit(SKIPPED)
    namespaces = ["--mount"] + ([] if os.geteuid() == 0 else ["--user", "--map-current-user", "--keep-caps"])
    os.execvp("unshare", ["unshare", *namespaces, "--", sys.executable, os.path.abspath(__file__), INSIDE, *arguments])


def play(script: str, chosen: str, program: str, pictures: str) -> int:
    """The tests in their world; their exit status."""
    shown = os.environ.get("DAY_PICTURES", "")
    for folder in filter(None, (pictures, shown)):
        os.makedirs(folder, exist_ok=True)
        os.chmod(folder, 0o1777)
    with tempfile.TemporaryDirectory(prefix="day-") as folder:
        os.chmod(folder, 0o755)
        make_certificates(folder)
        trust(os.path.join(folder, "authority.pem"))
        radio = Radio(os.path.join(folder, "radio"))
        reached = [os.path.dirname(program), pictures, folder, *filter(None, [shown])]
        command = [run.LAB, *(word for each in reached for word in ("--reach", each)),
                   os.path.join(run.HERE, script), chosen, program, pictures, folder, shown]
        status = subprocess.run(command, check=False, preexec_fn=end_with_parent).returncode
        radio.listener.close()
        return status


def main():
    if sys.argv[1] != INSIDE:
        enter(sys.argv[1:])
    sys.exit(play(*sys.argv[2:]))


if __name__ == "__main__":
    main()
