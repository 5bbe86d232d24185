#!/usr/bin/env python3
"""Checks that the views hold no words of their own: what a person reads comes from the models.

    no_wording.py ROOT

Prints every text in the code below ROOT/src/QuellonUI that a person could read, and everything that makes texts of
numbers, dates or bytes there; exit status 1 when there is one. What it can't see is a rule that is written without
words; that the views don't know the engine is checked by layers.py.
"""

import os
import re
import sys

FOLDER = "src/QuellonUI"
# Talk with the desktop over D-Bus in names that are capitalised words.
PROTOCOL_FOLDERS = (f"{FOLDER}/Tray", f"{FOLDER}/Desktop", f"{FOLDER}/Notifications")
# Names of fonts.
KNOWN = {"Noto Sans CJK SC", "Noto Color Emoji", "Fusion"}

COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/', re.DOTALL)
RAW = re.compile(r'R"([^()\\ ]{0,16})\((.*?)\)\1"', re.DOTALL)
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"|\'(?:[^\'\\\n]|\\.)+\'')
TWO_WORDS = re.compile(r"[^\W\d_]{2,}[,.;:!?]? +[^\W\d_]{2,}")
CAPITALISED = re.compile(r"[A-Z][a-z]+(…|\.\.\.)?")
STYLE_SHEET = re.compile(r"[{;].*:|:.*[;}]|^\s*[a-z-]+:", re.DOTALL)
MAKES_TEXT = re.compile(r"\b(fmt::|QLocale|QDateTime|QDate\b|QTime\b|QString::number|std::to_string|asprintf|"
                        r"MenuPresentation::format|BudgetPresentation::row)")


def without_comments(text: str) -> str:
    """Comments become blanks, so that lines keep their numbers; texts with slashes in them stay."""
    kept = re.compile(f"{RAW.pattern}|{LITERAL.pattern}|(?P<comment>{COMMENT.pattern})", re.DOTALL)

    def blank(match):
        return re.sub(r"[^\n]", " ", match.group(0)) if match.group("comment") else match.group(0)

    return kept.sub(blank, text)


def is_wording(path: str, text: str) -> bool:
    if text in KNOWN or STYLE_SHEET.search(text):
        return False
    if TWO_WORDS.search(text) or not text.isascii():
        return True
    return not path.startswith(PROTOCOL_FOLDERS) and CAPITALISED.fullmatch(text) is not None


def problems_in(path: str, text: str):
    text = re.sub(r"^[ \t]*#[ \t]*include.*$", "", without_comments(text), flags=re.MULTILINE)

    def at(match):
        return f"{path}:{text.count(chr(10), 0, match.start()) + 1}"

    for match in RAW.finditer(text):
        if is_wording(path, match.group(2)):
            yield f"{at(match)}: words in a view: {match.group(0)}"
    for match in LITERAL.finditer(RAW.sub(lambda raw: re.sub(r"[^\n]", " ", raw.group(0)), text)):
        if match.group(1) and is_wording(path, match.group(1)):
            yield f"{at(match)}: words in a view: {match.group(0)}"
    for match in MAKES_TEXT.finditer(text):
        yield f"{at(match)}: makes a text in a view: {match.group(0)}"


def main() -> int:
    root = sys.argv[1]
    found = []
    count = 0
    for folder, folders, names in os.walk(os.path.join(root, FOLDER)):
        folders.sort()
        for name in sorted(names):
            if not name.endswith((".h", ".cpp")):
                continue
            count += 1
            path = os.path.relpath(os.path.join(folder, name), root)
            with open(os.path.join(root, path), encoding="utf-8") as file:
                found += problems_in(path, file.read())
    for problem in found:
        print(problem)
    if count == 0:
        print(f"no sources below {FOLDER}")
        return 1
    print(f"{count} files, {len(found)} problems")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
