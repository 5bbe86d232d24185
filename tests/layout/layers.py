#!/usr/bin/env python3
"""Checks which folder includes what.

    layers.py ROOT

Prints every include below ROOT that the table does not allow, and every header without #pragma once; exit status 1
when there is one.
"""

import os
import re
import sys
from dataclasses import dataclass, field

STANDARD = r"[a-z_]+"
FMT = r"fmt/.+"
JSON = r"nlohmann/.+"
DATE = r"date/.+"
UTF8PROC = r"utf8proc\.h"
CURL = r"curl/.+"
QT = r"Q[A-Z]\w+|Qt[A-Z]\w*/.+"
XCB = r"xcb/xcb\.h"
CURSES = r"(ncursesw/)?(n?curses|term)\.h"
POSIX = (r"(dirent|dlfcn|errno|fcntl|fnmatch|grp|ifaddrs|langinfo|limits|locale|net/if|netdb|poll|pthread|pwd|sched|semaphore"
         r"|signal|spawn|stdint|stdio|stdlib|string|strings|syslog|termios|time|unistd|wchar|wordexp|arpa/inet"
         r"|netinet/(in|tcp)|sys/(file|ioctl|ipc|mman|resource|select|socket|stat|statvfs|time|types|uio|un|utsname|wait)"
         r")\.h")
LINUX = r"(linux|asm|systemd)/.+|net/if_arp\.h|sys/(epoll|eventfd|inotify|prctl|random|signalfd|syscall|sysinfo|timerfd|vfs)\.h"
ANYTHING = r".+"


@dataclass(frozen=True)
class Layer:
    """What the files below a folder may include: `ours` are path prefixes below src, `others` patterns of <...>."""

    ours: tuple
    others: tuple
    # Further folders that paths in quotes may begin from.
    beside: tuple = field(default=())


CORE_OTHERS = (STANDARD, FMT, JSON, DATE, UTF8PROC)
# The longest folder that holds a file decides.
LAYERS = {
    "src/QuellonCore": Layer(("QuellonCore/",), CORE_OTHERS),
    "src/QuellonHost": Layer(("QuellonCore/", "QuellonHost/"), (STANDARD, FMT)),
    "src/QuellonHost/Posix": Layer(("QuellonCore/", "QuellonHost/Posix/"), (STANDARD, FMT, POSIX, CURL)),
    "src/QuellonHost/Linux": Layer(("QuellonCore/", "QuellonHost/", "QuellonProbe/IdentityRole.h"),
                                   (STANDARD, FMT, POSIX, LINUX)),
    "src/QuellonHost/MacOS": Layer(("QuellonCore/", "QuellonHost/"), (ANYTHING,)),
    "src/QuellonProbe": Layer(("QuellonProbe/",), (STANDARD, POSIX, LINUX)),
    # Views draw models: they know no engine, no rule and no budget, and format nothing.
    "src/QuellonUI": Layer(("QuellonCore/Presentation/", "QuellonCore/Support/", "QuellonUI/"),
                           (STANDARD, QT, XCB)),
    # Not a view, but the desktop's notification service.
    "src/QuellonUI/Notifications": Layer(("QuellonCore/Notifications/", "QuellonUI/Notifications/"), (STANDARD, QT)),
    "src/QuellonTerminal": Layer(("QuellonCore/", "QuellonTerminal/"), (STANDARD, FMT, POSIX, CURSES)),
    "src/Quellon": Layer(("Quellon/", "QuellonCore/", "QuellonHost/", "QuellonTerminal/", "QuellonUI/"),
                         (STANDARD, FMT, POSIX, QT)),
    "tools/replay": Layer(("QuellonCore/",), CORE_OTHERS),
    "tests/QuellonCore": Layer(("QuellonCore/",), (*CORE_OTHERS, r"g(test|mock)/.+"), ("tools/replay", "tests")),
    "tests/QuellonReplay": Layer(("QuellonCore/",), (*CORE_OTHERS, r"g(test|mock)/.+"), ("tools/replay", "tests")),
    "tests/QuellonEndurance": Layer(("QuellonCore/",), (*CORE_OTHERS, POSIX, r"g(test|mock)/.+", r"malloc\.h"),
                                    ("tools/replay", "tests")),
}
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.MULTILINE)


def layer_of(path: str):
    """The folder of the table that holds `path`; None when the table says nothing about it."""
    holders = [folder for folder in LAYERS if path.startswith(folder + "/")]
    return max(holders, key=len, default=None)


def is_allowed(root: str, path: str, layer: Layer, bracket: str, name: str) -> bool:
    if bracket == "<":
        return any(re.fullmatch(pattern, name) for pattern in layer.others)
    if name.startswith("Quellon"):
        folders = ("src", *layer.beside)
        return name.startswith(layer.ours) and any(os.path.isfile(os.path.join(root, top, name)) for top in folders)
    if path.startswith("src/"):
        # Ours are written from src; what remains is Qt's generated code beside its source.
        return name == os.path.splitext(os.path.basename(path))[0] + ".moc"
    folders = (os.path.dirname(path), *layer.beside)
    return any(os.path.isfile(os.path.join(root, folder, name)) for folder in folders)


def problems_in(root: str, path: str):
    folder = layer_of(path)
    if folder is None:
        return
    with open(os.path.join(root, path), encoding="utf-8") as file:
        text = file.read()
    for match in INCLUDE.finditer(text):
        bracket, name = match.groups()
        if not is_allowed(root, path, LAYERS[folder], bracket, name):
            line = text.count("\n", 0, match.start()) + 1
            yield f"{path}:{line}: {folder} may not include {match.group(0).split('include', 1)[1].strip()}"
    if path.endswith(".h") and not re.search(r"^#pragma once$", text, re.MULTILINE):
        yield f"{path}:1: no #pragma once"


def sources(root: str):
    for top in ("src", "tools", "tests"):
        for folder, folders, names in os.walk(os.path.join(root, top)):
            folders.sort()
            for name in sorted(names):
                if name.endswith((".h", ".hpp", ".cpp", ".mm")):
                    yield os.path.relpath(os.path.join(folder, name), root)


def main() -> int:
    root = sys.argv[1]
    count = 0
    found = []
    for path in sources(root):
        count += 1
        found += problems_in(root, path)
    for problem in found:
        print(problem)
    if count == 0:
        print(f"no sources below {root}")
        return 1
    print(f"{count} files, {len(found)} problems")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
