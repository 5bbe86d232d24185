"""A clean system in a folder: what a package depends on, and nothing else.

It is made of the files of this system's own packages, so it needs no network and takes seconds: dpkg's essential
packages, and those that follow from the package's dependencies. What the package forgets to name is not there.
"""

import glob
import os
import re
import shutil
import subprocess
from dataclasses import dataclass, field

STATUS = "/var/lib/dpkg"
FIELD = re.compile(r"^([\w-]+): (.*(?:\n .*)*)", re.MULTILINE)
# One user for whom nothing is special.
USER = 65534


class RootError(Exception):
    """The root can't be made; the text says why."""


@dataclass
class Installed:
    """A package of this system."""

    name: str
    stanza: str
    fields: dict
    provided: set = field(default_factory=set)


def names_in(text: str) -> list:
    """The names in a field of relations: a list of alternatives for each."""
    return [[re.match(r"\s*([\w.+-]+)", each).group(1) for each in group.split("|")]
            for group in text.split(",") if group.strip()]


def installed_packages() -> dict:
    """This system's packages by name."""
    result = {}
    with open(os.path.join(STATUS, "status"), encoding="utf-8") as file:
        for stanza in file.read().split("\n\n"):
            fields = dict(FIELD.findall(stanza))
            if fields.get("Status", "").endswith(" installed"):
                package = Installed(fields["Package"], stanza, fields)
                package.provided = {names[0] for names in names_in(fields.get("Provides", ""))}
                result.setdefault(package.name, package)
    return result


def closure(relations: str) -> list:
    """The essential packages and all that follows from `relations`, this system's choice among alternatives."""
    packages = installed_packages()
    providers = {}
    for package in packages.values():
        for name in package.provided:
            providers.setdefault(name, package)
    chosen = {}
    wanted = [[name] for name, package in packages.items() if package.fields.get("Essential") == "yes"]
    wanted += names_in(relations)
    while wanted:
        alternatives = wanted.pop()
        found = [packages.get(name) or providers.get(name) for name in alternatives]
        package = next((each for each in found if each), None)
        if package is None:
            raise RootError(f"nothing here is {' or '.join(alternatives)}: install the package's dependencies first")
        if package.name not in chosen:
            chosen[package.name] = package
            wanted += names_in(package.fields.get("Pre-Depends", "")) + names_in(package.fields.get("Depends", ""))
    return list(chosen.values())


def info_files(package: Installed) -> list:
    names = (package.name, f"{package.name}:{package.fields['Architecture']}")
    return [file for name in names for file in glob.glob(os.path.join(STATUS, "info", glob.escape(name) + ".*"))]


def copy_files(root: str, packages: list):
    """The files of the packages, and the links that choose among alternatives."""
    paths = {"/etc/alternatives", "/etc/passwd", "/etc/group"}
    for package in packages:
        for file in info_files(package):
            if file.endswith(".list"):
                with open(file, encoding="utf-8") as lines:
                    paths |= set(lines.read().splitlines())
    # What is listed below /bin is below /usr/bin by now.
    real = set()
    for path in paths - {"/."}:
        folder, name = os.path.split(path)
        where = os.path.join(os.path.realpath(folder), name)
        if os.path.lexists(where):
            real.add(where)
    names = "\0".join(path.lstrip("/") for path in sorted(real)) + "\0"
    reader = subprocess.Popen(["tar", "-C", "/", "-c", "--null", "--no-recursion", "-T", "-"],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    writer = subprocess.Popen(["tar", "-C", root, "-x", "-p"], stdin=reader.stdout)
    reader.stdout.close()
    reader.stdin.write(names.encode())
    reader.stdin.close()
    if reader.wait() or writer.wait():
        raise RootError("the files can't be copied")


def make(root: str, relations: str):
    """A new root in which a package with these dependencies can be installed."""
    shutil.rmtree(root, ignore_errors=True)
    os.makedirs(root)
    packages = closure(relations)
    for link in ("bin", "sbin", "lib", "lib64"):
        if os.path.islink("/" + link):
            os.makedirs(os.path.join(root, "usr", link), exist_ok=True)
            os.symlink(os.readlink("/" + link), os.path.join(root, link))
    copy_files(root, packages)
    info = os.path.join(root, STATUS.lstrip("/"), "info")
    for folder in (info, os.path.join(root, STATUS.lstrip("/"), "updates")):
        os.makedirs(folder, exist_ok=True)
    # Without it, dpkg would take every package for one of its early days and have all of them look for changes.
    triggers = os.path.join(root, STATUS.lstrip("/"), "triggers")
    os.makedirs(triggers)
    with open(os.path.join(triggers, "Unincorp"), "w", encoding="utf-8"):
        pass
    for package in packages:
        for file in info_files(package):
            shutil.copy(file, info)
    with open(os.path.join(root, STATUS.lstrip("/"), "status"), "w", encoding="utf-8") as file:
        file.write("\n\n".join(package.stanza for package in packages) + "\n")
    for folder in ("dev", "proc", "run", "tmp", "var/log", "var/tmp", "root"):
        os.makedirs(os.path.join(root, folder), exist_ok=True)
    subprocess.run(["chroot", root, "ldconfig"], check=True, env={"PATH": "/usr/sbin:/usr/bin:/sbin:/bin"})


def enter(root: str):
    """Mounts what a running system has. For a process in a mount namespace of its own."""
    def mount(*words: str):
        subprocess.run(["mount", *words], check=True)
    mount("--make-rprivate", "/")
    mount("-t", "proc", "proc", os.path.join(root, "proc"))
    mount("--rbind", "/dev", os.path.join(root, "dev"))
    mount("-t", "tmpfs", "-o", "mode=1777", "tmpfs", os.path.join(root, "tmp"))
