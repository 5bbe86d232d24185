#!/usr/bin/env python3
"""Checks that a program does without Qt.

    links_no_qt.py PROGRAM

Exit status 1 when PROGRAM or a library that it loads needs a library of Qt.
"""

import re
import subprocess
import sys


def qt_libraries(listing: str):
    return re.findall(r"\blibQt\d\w*\.so\S*", listing)


def main() -> int:
    listing = subprocess.run(["ldd", sys.argv[1]], capture_output=True, text=True, check=True).stdout
    if "libc.so" not in listing:
        print(f"ldd says nothing about {sys.argv[1]}: {listing}")
        return 1
    found = qt_libraries(listing)
    print("\n".join(found) or "no library of Qt")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
