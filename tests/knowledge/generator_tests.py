#!/usr/bin/env python3
"""The knowledge packs' generator: what it writes, what it refuses, and that the build has run it on the documents.

    generator_tests.py ROOT MADE

MADE is the folder of the build that holds the generated sources.
"""

import hashlib
import json
import os
import subprocess
import sys
import tempfile
import unittest

ROOT, MADE = sys.argv[1:3]
GENERATOR = os.path.join(ROOT, "cmake", "knowledge_pack.py")
PACKS = (("knowledge-pack.json", "KnowledgePack"), ("knowledge-pack-linux.json", "LinuxKnowledgePack"))

ROW = {
    "whatItIs": 'A "radio" \\ player — für alle.',
    "whyTraffic": "Streams 1 MB per minute.",
    "category": "cloud-sync",
    "vendor": "Makers",
    "limitAdvice": "avoid",
    "limitNote": "The music stops.",
    "confidence": "reviewed",
}
GOOD = {"generatedAt": "2024-02-29", "rows": {"radio": ROW}}


def content(path: str) -> bytes:
    with open(path, "rb") as file:
        return file.read()


def generate(document: bytes):
    """Exit status, complaint and output (None: none was made) of the generator."""
    with tempfile.TemporaryDirectory() as folder:
        source, output = os.path.join(folder, "pack.json"), os.path.join(folder, "Pack.cpp")
        with open(source, "wb") as file:
            file.write(document)
        done = subprocess.run([sys.executable, GENERATOR, source, "KnowledgePack", output], capture_output=True,
                              text=True, check=False)
        return done.returncode, done.stderr, content(output).decode() if os.path.exists(output) else None


def encoded(document) -> bytes:
    return json.dumps(document, ensure_ascii=False).encode()


def with_row(**changes):
    """The good document with other fields in its row; None takes one out."""
    row = {key: value for key, value in (ROW | changes).items() if value is not None}
    return GOOD | {"rows": {"radio": row}}


class Output(unittest.TestCase):
    def test_row(self):
        status, complaint, output = generate(encoded(GOOD))
        self.assertEqual((status, complaint), (0, ""))
        self.assertIn('    {"radio", "A \\"radio\\" \\\\ player — für alle.", "Streams 1 MB per minute.", '
                      'Category::cloudSync, "Makers", LimitAdvice::avoid, "The music stops.", Confidence::reviewed},\n',
                      output)

    def test_row_without_optional_fields(self):
        output = generate(encoded(with_row(vendor=None, limitNote=None)))[2]
        self.assertIn('Category::cloudSync, "", LimitAdvice::avoid, "", Confidence::reviewed},\n', output)

    def test_provenance(self):
        document = encoded(GOOD)
        output = generate(document)[2]
        self.assertIn(f'KnowledgePack::sourceSHA256 = "{hashlib.sha256(document).hexdigest()}";\n', output)
        self.assertIn('KnowledgePack::generatedAt = "2024-02-29";\n', output)

    def test_same_document_gives_same_bytes(self):
        self.assertEqual(generate(encoded(GOOD)), generate(encoded(GOOD)))

    def test_order_is_the_documents(self):
        rows = {key: ROW for key in ("b", "a", "C")}
        output = generate(encoded(GOOD | {"rows": rows}))[2]
        self.assertEqual([line[6] for line in output.splitlines() if line.startswith('    {"')], ["b", "a", "C"])


class Refusals(unittest.TestCase):
    def test_documents(self):
        twice = encoded(GOOD).replace(b'"rows": {', b'"rows": {"radio": ' + encoded(ROW) + b", ")
        field_twice = encoded(GOOD).replace(b'"vendor"', b'"vendor": "Others", "vendor"')
        cases = (
            ("empty file", b"", "Expecting value"),
            ("not UTF-8", b'{"generatedAt": "\xff"}', "utf-8"),
            ("no object", b"[]", "must be an object"),
            ("no rows", encoded({"generatedAt": "2024-02-29"}), "must be an object"),
            ("something else beside", encoded(GOOD | {"version": 1}), "must be an object"),
            ("rows are an array", encoded(GOOD | {"rows": [ROW]}), '"rows" must be an object'),
            ("rows are empty", encoded(GOOD | {"rows": {}}), '"rows" must be an object'),
            ("a day that is none", encoded(GOOD | {"generatedAt": "2023-02-29"}), "no day"),
            ("a day in short", encoded(GOOD | {"generatedAt": "20240229"}), "no day"),
            ("a number for a day", encoded(GOOD | {"generatedAt": 20240229}), "no day"),
            ("a key twice", twice, '"radio" stands twice'),
            ("a field twice", field_twice, '"vendor" stands twice'),
            ("an empty key", encoded(GOOD | {"rows": {"": ROW}}), "a key must be one line"),
            ("a row that is a text", encoded(GOOD | {"rows": {"radio": "x"}}), "is no object"),
            ("a field is missing", encoded(with_row(whyTraffic=None)), 'row "radio" lacks "whyTraffic"'),
            ("an unknown field", encoded(with_row(note="x")), 'row "radio" has the unknown field "note"'),
            ("the source is not the document's", encoded(with_row(source="pack")), 'unknown field "source"'),
            ("an empty text", encoded(with_row(limitNote="")), '"limitNote" must be one line'),
            ("two lines", encoded(with_row(whatItIs="A\nB.")), '"whatItIs" must be one line'),
            ("a number for a text", encoded(with_row(vendor=1)), '"vendor" must be one line'),
            ("code for a category", encoded(with_row(category="ai}, {")), "no raw value of Category"),
            ("a case's name for its raw value", encoded(with_row(category="cloudSync")), "no raw value of Category"),
        )
        for name, document, complaint in cases:
            with self.subTest(name):
                status, said, output = generate(document)
                self.assertEqual((status, output), (1, None))
                self.assertIn("pack.json: ", said)
                self.assertIn(complaint, said)
                self.assertNotIn("Traceback", said)


class Build(unittest.TestCase):
    def test_sources_are_those_of_the_documents(self):
        for document, namespace in PACKS:
            with self.subTest(document):
                path = os.path.join(ROOT, "data", document)
                made = content(os.path.join(MADE, namespace + ".cpp")).decode()
                digest = hashlib.sha256(content(path)).hexdigest()
                self.assertIn(f'{namespace}::sourceSHA256 = "{digest}";\n', made)
                self.assertIn(f'{namespace}::generatedAt = "{json.loads(content(path))["generatedAt"]}";\n', made)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
