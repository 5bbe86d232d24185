#!/usr/bin/env python3
"""Shows that scenario.py notices each way in which a script can differ from its expectation.

    scenario_tests.py PROGRAM
"""

import os
import subprocess
import sys
import tempfile

RUNNER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "scenario.py")
SCRIPT = '{"launch": {"autoStart": false}}\n{"call": "snooze", "app": "A", "minutes": 1}\n'


def main() -> int:
    program = sys.argv[1]
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        script = os.path.join(folder, "a.jsonl")
        expectation = os.path.join(folder, "a.expected")
        with open(script, "w", encoding="utf-8") as file:
            file.write(SCRIPT)

        def run(*options):
            return subprocess.run([sys.executable, RUNNER, program, *options, script], capture_output=True, text=True,
                                  check=False)

        def expect(name, status, needle):
            result = run()
            if result.returncode != status or needle not in result.stdout:
                failures.append(f"{name}: status {result.returncode}, {result.stdout!r}")

        expect("no expectation", 1, "is missing")
        run("--write")
        expect("as written", 0, "")
        with open(expectation, encoding="utf-8") as file:
            good = file.read()
        if "A snoozed for 1min" not in good:
            failures.append(f"what was written: {good!r}")
        for name, text in (
                ("one character", good.replace("1min", "2min")),
                ("a line less", good.split("\n", 1)[1]),
                ("a line more", good + "{}\n"),
                ("no last line end", good[:-1]),
                ("a status", good + "# exit status 2\n"),
                ("nothing", "")):
            with open(expectation, "w", encoding="utf-8") as file:
                file.write(text)
            expect(name, 1, "a.expected")
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
