#!/usr/bin/env python3
"""Runs replay scripts and compares what they print with what is expected.

    scenario.py PROGRAM [--write] SCRIPT.jsonl...

NAME.expected beside NAME.jsonl holds standard output to the byte, then, where there is any, what went to standard
error and an exit status other than 0, each behind a "# ". Each script is run twice and must print the same. Shows the
differences; exit status 1 when there is one. With --write the expectations are written anew instead: read them before
you keep them.
"""

import difflib
import os
import subprocess
import sys


def play(program: str, script: str) -> str:
    # From a folder and with an environment that tell the program nothing but how a sanitizer is to behave.
    environment = {key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")}
    with open(script, "rb") as file:
        run = subprocess.run([os.path.abspath(program), "-"], stdin=file, capture_output=True, cwd="/", env=environment,
                             check=False)
    result = run.stdout.decode()
    result += "".join(f"# {line}\n" for line in run.stderr.decode().splitlines())
    if run.returncode != 0:
        result += f"# exit status {run.returncode}\n"
    return result


def check(program: str, script: str) -> bool:
    expectation = os.path.splitext(script)[0] + ".expected"
    if not os.path.exists(expectation):
        print(f"{expectation} is missing")
        return False
    with open(expectation, encoding="utf-8") as file:
        expected = file.read()
    printed = play(program, script)
    difference = list(difflib.unified_diff(expected.splitlines(), printed.splitlines(), expectation, "printed",
                                           lineterm="", n=1))
    for line in difference:
        print(line)
    if not difference and expected != printed:
        print(f"{expectation}: differs in the ends of its lines")
    if play(program, script) != printed:
        print(f"{script}: two runs print different things")
        return False
    return expected == printed


def main() -> int:
    arguments = sys.argv[1:]
    writes = "--write" in arguments
    program, *scripts = [each for each in arguments if each != "--write"]
    if writes:
        for script in scripts:
            with open(os.path.splitext(script)[0] + ".expected", "w", encoding="utf-8") as file:
                file.write(play(program, script))
        return 0
    return 0 if scripts and all([check(program, script) for script in scripts]) else 1


if __name__ == "__main__":
    sys.exit(main())
