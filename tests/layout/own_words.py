#!/usr/bin/env python3
"""Checks that the project stands on its own feet.

    own_words.py ROOT

Prints every place below ROOT that names a folder of a build machine or leaves work for later; exit status 1 when there
is one.
"""

import os
import re
import sys

RULES = (
    ("a path of one machine", re.compile(r"(?<![\w.}~/])/(work|root/\.\w+|builds)/")),
    ("work left for later", re.compile(r"\b(TO" r"DO|FIX" r"ME|XX" r"X)\b")),
)
TOP = ("src", "tools", "tests", "docs", "data", "cmake", ".ci")
SKIPPED_FOLDERS = {"__pycache__"}
# What other people's tools printed is kept as they printed it; this folder names what it looks for.
SKIPPED_PATHS = ("tests/data/", "tests/layout/")


def files(root: str):
    for name in sorted(os.listdir(root)):
        if os.path.isfile(os.path.join(root, name)):
            yield name
    for top in TOP:
        for folder, folders, names in os.walk(os.path.join(root, top)):
            folders[:] = sorted(set(folders) - SKIPPED_FOLDERS)
            for name in sorted(names):
                yield os.path.relpath(os.path.join(folder, name), root)


def problems_in(path: str, text: str, rules: tuple):
    for number, line in enumerate(text.split("\n"), start=1):
        for what, pattern in rules:
            match = pattern.search(line)
            if match:
                yield f"{path}:{number}: {what}: {match.group(0)}"


def main() -> int:
    root = sys.argv[1]
    rules = (*RULES, ("the path of this very folder", re.compile(re.escape(os.path.realpath(root)) + r"\b")))
    count = 0
    found = []
    for path in files(root):
        if path.startswith(SKIPPED_PATHS):
            continue
        with open(os.path.join(root, path), "rb") as file:
            content = file.read()
        if b"\0" in content:
            continue
        count += 1
        found += problems_in(path, content.decode("utf-8", "replace"), rules)
    for problem in found:
        print(problem)
    if count == 0:
        print(f"no files below {root}")
        return 1
    print(f"{count} files, {len(found)} problems")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
