#!/usr/bin/env python3
"""Makes the C++ source of a knowledge pack from its document.

    knowledge_pack.py DOCUMENT NAMESPACE OUTPUT

DOCUMENT is the JSON that docs/knowledge-pack.md describes, NAMESPACE the one that declares the table. The same document
gives the same bytes. Says what is wrong with the document, and exits with 1, when it has another shape; what the texts
should be like, the tests judge.
"""

import datetime
import hashlib
import json
import os
import re
import sys

FIELDS = ("whatItIs", "whyTraffic", "category", "vendor", "limitAdvice", "limitNote", "confidence")
OPTIONAL = {"vendor", "limitNote"}


class Mistake(Exception):
    pass


def distinct(pairs):
    """The pairs of an object as a dictionary: JSON would let the last of equal keys win."""
    result = {}
    for key, value in pairs:
        if key in result:
            raise Mistake(f'"{key}" stands twice')
        result[key] = value
    return result


def read(content: bytes):
    """The day of the document and its rows by their keys."""
    try:
        document = json.loads(content.decode("utf-8"), object_pairs_hook=distinct)
    except ValueError as error:
        raise Mistake(str(error)) from error
    if not isinstance(document, dict) or set(document) != {"generatedAt", "rows"}:
        raise Mistake('must be an object with "generatedAt" and "rows"')
    day, rows = document["generatedAt"], document["rows"]
    try:
        if not re.fullmatch(r"\d{4}-\d\d-\d\d", str(day)):
            raise ValueError
        datetime.date.fromisoformat(day)
    except ValueError:
        raise Mistake(f'"generatedAt" is no day like 2026-02-28: {day}') from None
    if not isinstance(rows, dict) or not rows:
        raise Mistake('"rows" must be an object that is not empty')
    for key, row in rows.items():
        check_row(key, row)
    return day, rows


def check_row(key: str, row):
    if not isinstance(row, dict):
        raise Mistake(f'row "{key}" is no object')
    for field in FIELDS:
        if field not in row and field not in OPTIONAL:
            raise Mistake(f'row "{key}" lacks "{field}"')
    for field, text in row.items():
        if field not in FIELDS:
            raise Mistake(f'row "{key}" has the unknown field "{field}"')
        if not isinstance(text, str) or not text or not text.isprintable():
            raise Mistake(f'row "{key}": "{field}" must be one line of text')
    if not key or not key.isprintable():
        raise Mistake(f"a key must be one line of text: {key!r}")


def literal(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def enumerator(kind: str, raw: str) -> str:
    """A raw value as the case of the enumeration: the compiler refuses one that is unknown."""
    if not re.fullmatch(r"[a-z]+(-[a-z]+)*", raw):
        raise Mistake(f"no raw value of {kind}: {raw}")
    return kind + "::" + re.sub(r"-([a-z])", lambda match: match.group(1).upper(), raw)


def source(name: str, content: bytes, namespace: str) -> str:
    day, rows = read(content)
    lines = [
        f"// Made from {name} by the build. Changes belong there.",
        f'#include "QuellonCore/Knowledge/{namespace}.h"',
        '#include "QuellonCore/Knowledge/KnowledgeRow.h"',
        "",
        "namespace quellon {",
        "",
        "namespace {",
        "",
        "using Category = AppExplanation::Category;",
        "using LimitAdvice = AppExplanation::LimitAdvice;",
        "using Confidence = AppExplanation::Confidence;",
        "",
        "constexpr KnowledgeRow rows[] = {",
    ]
    for key, row in rows.items():
        values = (
            literal(key),
            literal(row["whatItIs"]),
            literal(row["whyTraffic"]),
            enumerator("Category", row["category"]),
            literal(row.get("vendor", "")),
            enumerator("LimitAdvice", row["limitAdvice"]),
            literal(row.get("limitNote", "")),
            enumerator("Confidence", row["confidence"]),
        )
        lines.append("    {" + ", ".join(values) + "},")
    lines += [
        "};",
        "",
        "} // namespace",
        "",
        f"const std::string_view {namespace}::sourceSHA256 = {literal(hashlib.sha256(content).hexdigest())};",
        f"const std::string_view {namespace}::generatedAt = {literal(day)};",
        "",
        f"const ExplanationMap& {namespace}::entries()",
        "{",
        "    static const ExplanationMap table = explanations(rows);",
        "    return table;",
        "}",
        "",
        "} // namespace quellon",
        "",
    ]
    return "\n".join(lines)


def main() -> int:
    document, namespace, output = sys.argv[1:]
    with open(document, "rb") as file:
        content = file.read()
    try:
        text = source(os.path.basename(document), content, namespace)
    except Mistake as mistake:
        print(f"{document}: {mistake}", file=sys.stderr)
        return 1
    with open(output, "w", encoding="utf-8", newline="\n") as file:
        file.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main())
