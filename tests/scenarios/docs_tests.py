#!/usr/bin/env python3
"""Checks that the example of the documentation is the scenario that is tested, and prints what it says.

    docs_tests.py ROOT
"""

import os
import re
import sys

LEFT_OUT = ("run", "log", "save")


def block(text: str, kind: str) -> str:
    found = re.findall(rf"^```{kind}\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
    if len(found) != 1:
        sys.exit(f"docs/replay.md has {len(found)} blocks of {kind}")
    return found[0]


def read(*path: str) -> str:
    with open(os.path.join(sys.argv[1], *path), encoding="utf-8") as file:
        return file.read()


def main() -> int:
    text = read("docs", "replay.md")
    is_left_out = re.compile(r'\{"t":[0-9.]+,"(%s)":' % "|".join(LEFT_OUT)).match
    printed = read("tests", "scenarios", "reported-problem.expected").splitlines(keepends=True)
    shown = "".join(line for line in printed if not is_left_out(line))
    status = 0
    for kind, expected in (("jsonl", read("tests", "scenarios", "reported-problem.jsonl")), ("output", shown)):
        if not expected or block(text, kind) != expected:
            print(f"the block of {kind} in docs/replay.md differs from tests/scenarios/reported-problem")
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
