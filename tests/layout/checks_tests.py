#!/usr/bin/env python3
"""The checks of this folder find what they are for: each is shown a small project with one planted mistake."""

import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)

import documents  # noqa: E402
import links_no_qt  # noqa: E402

CLEAN = {
    "src/QuellonCore/Support/Time.h": "#pragma once\n#include <chrono>\n",
    "src/QuellonCore/Engine/GuardEngine.h": "#pragma once\n",
    "src/QuellonCore/Rules/GuardRule.h": "#pragma once\n",
    "src/QuellonCore/Support/Time.cpp": '#include "QuellonCore/Support/Time.h"\n#include <fmt/format.h>\n',
    "src/QuellonHost/Posix/Pipe.h": "#pragma once\n#include <unistd.h>\n",
    "src/QuellonHost/Linux/Journal.cpp": '#include "QuellonHost/Posix/Pipe.h"\n#include <systemd/sd-journal.h>\n',
    "src/QuellonUI/Row.h": '#pragma once\n#include "QuellonCore/Support/Time.h"\n#include <QWidget>\n',
    "src/QuellonUI/Row.cpp": '#include "QuellonUI/Row.h"\n#include "Row.moc"\n',
    "src/QuellonProbe/Text.h": "#pragma once\n#include <linux/netlink.h>\n",
    "tools/replay/ScriptedHost.h": '#pragma once\n#include "QuellonCore/Support/Time.h"\n',
    "tests/QuellonCore/TimeTests.cpp": '#include "ScriptedHost.h"\n#include <gtest/gtest.h>\n',
}


def run_check(script: str, files: dict):
    """Exit status and output of the check over a project with these files."""
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            full = os.path.join(root, path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            with open(full, "w", encoding="utf-8") as file:
                file.write(text.replace("ROOT", os.path.realpath(root)))
        done = subprocess.run([sys.executable, os.path.join(HERE, script), root], capture_output=True, text=True,
                              check=False)
        return done.returncode, done.stdout + done.stderr


class Layers(unittest.TestCase):
    def test_clean_project(self):
        status, output = run_check("layers.py", CLEAN)
        self.assertEqual((status, output), (0, f"{len(CLEAN)} files, 0 problems\n"))

    def test_empty_project(self):
        self.assertEqual(run_check("layers.py", {})[0], 1)

    def test_planted(self):
        cases = (
            ("core includes the host", "src/QuellonCore/A.cpp", '#include "QuellonHost/Posix/Pipe.h"'),
            ("core includes Qt", "src/QuellonCore/A.cpp", "#include <QString>"),
            ("core includes a Qt module", "src/QuellonCore/A.cpp", "#include <QtCore/QString>"),
            ("core includes the system", "src/QuellonCore/A.cpp", "#include <unistd.h>"),
            ("core includes curses", "src/QuellonCore/A.cpp", "#include <curses.h>"),
            ("blanks in the directive", "src/QuellonCore/A.cpp", "  #  include  <QString>"),
            ("portable host includes Linux", "src/QuellonHost/Posix/A.cpp", "#include <sys/epoll.h>"),
            ("portable host includes the Linux host", "src/QuellonHost/Posix/A.cpp",
             '#include "QuellonHost/Linux/Journal.h"'),
            ("the host includes the terminal", "src/QuellonHost/Linux/A.cpp", '#include "QuellonTerminal/View.h"'),
            ("the probe includes core", "src/QuellonProbe/A.cpp", '#include "QuellonCore/Support/Time.h"'),
            ("a view includes the host", "src/QuellonUI/A.cpp", '#include "QuellonHost/Posix/Pipe.h"'),
            ("a view includes the engine", "src/QuellonUI/A.cpp", '#include "QuellonCore/Engine/GuardEngine.h"'),
            ("a view includes the rules", "src/QuellonUI/A.cpp", '#include "QuellonCore/Rules/GuardRule.h"'),
            ("a view formats", "src/QuellonUI/A.cpp", "#include <fmt/format.h>"),
            ("a view includes the system", "src/QuellonUI/A.cpp", "#include <unistd.h>"),
            ("the terminal includes Qt", "src/QuellonTerminal/A.cpp", "#include <QObject>"),
            ("the terminal includes the desktop", "src/QuellonTerminal/A.cpp", '#include "QuellonUI/Row.h"'),
            ("the application includes the probe", "src/Quellon/main.cpp", '#include "QuellonProbe/Text.h"'),
            ("a core test includes Qt", "tests/QuellonCore/A.cpp", "#include <QString>"),
            ("a core test includes a view", "tests/QuellonCore/A.cpp", '#include "QuellonUI/Row.h"'),
            ("the scripted world includes the host", "tools/replay/A.cpp", '#include "QuellonHost/Posix/Pipe.h"'),
            ("ours by bare name", "src/QuellonCore/Support/A.cpp", '#include "Time.h"'),
            ("a file that is not there", "src/QuellonCore/A.cpp", '#include "QuellonCore/Nothing.h"'),
        )
        for name, path, line in cases:
            with self.subTest(name):
                status, output = run_check("layers.py", CLEAN | {path: f"// first line\n{line}\n"})
                self.assertEqual(status, 1, output)
                self.assertIn(f"{path}:2: ", output)

    def test_header_without_guard(self):
        status, output = run_check("layers.py", CLEAN | {"src/QuellonCore/A.h": "struct A {};\n"})
        self.assertEqual(status, 1)
        self.assertIn("src/QuellonCore/A.h:1: no #pragma once", output)


class OwnWords(unittest.TestCase):
    def test_clean_project(self):
        fine = "// /run/lab/home, ~/work/, build/root/\n"
        status, output = run_check("own_words.py", CLEAN | {"src/QuellonCore/A.cpp": fine})
        self.assertEqual((status, output), (0, f"{len(CLEAN) + 1} files, 0 problems\n"))

    def test_planted(self):
        cases = (
            ("folder of a build machine", "/wo" "rk/main/src"),
            ("root's own files", "see /ro" "ot/.cache/x"),
            ("the project's own folder", "cd ROOT && make"),
            ("work for later", "// TO" "DO: think"),
        )
        for name, text in cases:
            for path in ("src/QuellonCore/A.cpp", "README.md", "tests/QuellonCore/A.cpp", ".ci/run"):
                with self.subTest(name, path=path):
                    status, output = run_check("own_words.py", CLEAN | {path: f"first line\n{text}\n"})
                    self.assertEqual(status, 1, output)
                    self.assertIn(f"{path}:2: ", output)


class NoWording(unittest.TestCase):
    PATH = "src/QuellonUI/A.cpp"

    def test_clean_project(self):
        fine = ('// Two words, "Two words" and QLocale in a comment\n'
                'setStyleSheet("padding: 1px 2px; border: 0"); setObjectName("row"); load(":/symbols/%1.svg");\n'
                "/* \"Dismiss\" */ const char separator = '\"'; setText(model.title);\n")
        status, output = run_check("no_wording.py", CLEAN | {self.PATH: fine})
        self.assertEqual((status, output), (0, "3 files, 0 problems\n"))

    def test_names_of_a_protocol(self):
        files = CLEAN | {"src/QuellonUI/Tray/A.cpp": 'send("NewIcon");\n'}
        self.assertEqual(run_check("no_wording.py", files)[0], 0)
        files = CLEAN | {"src/QuellonUI/Tray/A.cpp": 'send("Resume all");\n'}
        self.assertEqual(run_check("no_wording.py", files)[0], 1)

    def test_nothing_to_check(self):
        self.assertEqual(run_check("no_wording.py", {})[0], 1)

    def test_planted(self):
        cases = (
            ("a sentence", 'setText(QStringLiteral("No traffic yet"));'),
            ("a button", 'setText(QStringLiteral("Resume"));'),
            ("a button that asks further", 'setText(QStringLiteral("Settings…"));'),
            ("a sign", 'setText(u"· ");'),
            ("another script", 'setText(u"暂停");'),
            ("a raw text", 'setText(R"(Two words)");'),
            ("behind a text with slashes", 'open("a://b"); setText("Two words");'),
            ("a number's text", "setText(QString::number(bytes));"),
            ("a date's text", "setText(QLocale{}.toString(date));"),
            ("a formatted text", 'setText(fmt::format("{}", bytes));'),
        )
        for name, line in cases:
            with self.subTest(name):
                status, output = run_check("no_wording.py", CLEAN | {self.PATH: f"// first line\n{line}\n"})
                self.assertEqual(status, 1, output)
                self.assertIn(f"{self.PATH}:2: ", output)


class Documents(unittest.TestCase):
    """Scripts stand for the programs."""

    QUELLON = "#!/bin/sh\n[ \"$1\" = --version ] && echo 'Quellon 0.1.0' || echo '  --plain  lines; --redact FILE'\n"
    FINE = CLEAN | {
        "Makefile": "run:\n\t@true\ntest check:\n\t@true\n",
        "tools/shapes": "# shapes [--round]\n",
        "docs/pictures/panel.png": "",
        "README.md": "# Top\n[a](docs/architecture.md#one-tick) [b](CHANGELOG.md) [c](#top) [d](https://example.com/x)\n"
                     '<img src="docs/pictures/panel.png">\n`--plain`, `make check`, `journalctl --user`,\n'
                     "`src/QuellonCore/Rules`\n\n```\nbuild/release/bin/Quellon --redact x\ntools/shapes --round\n```\n",
        "CHANGELOG.md": "# Changes\n\n## 0.1.0\n",
        "docs/architecture.md": "# Cut\n\n## One `tick`\n\n```diagram\nQuellonCore/ Engine/ Rules/ Support/\n"
                                "QuellonHost/ Posix/ Linux/\nQuellonUI/ QuellonProbe/\n```\n",
    }

    def check(self, files: dict):
        with tempfile.TemporaryDirectory() as root:
            for path, text in files.items():
                os.makedirs(os.path.dirname(os.path.join(root, path)) or root, exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                    file.write(text)
            program = os.path.join(root, "build", "Quellon")
            os.makedirs(os.path.dirname(program))
            with open(program, "w", encoding="utf-8") as file:
                file.write(self.QUELLON)
            os.chmod(program, 0o755)
            return list(documents.problems(root, [program]))

    def test_clean_project(self):
        self.assertEqual(self.check(self.FINE), [])

    def test_nothing_to_check(self):
        self.assertEqual(len(self.check({})), 1)

    def test_planted(self):
        readme = self.FINE["README.md"]
        cases = (
            ("a link", {"README.md": readme + "[x](docs/none.md)\n"}, "there is no docs/none.md"),
            ("a picture", {"README.md": readme + "![x](docs/pictures/none.png)\n"}, "there is no docs/pictures/none.png"),
            ("a heading", {"README.md": readme + "[x](docs/architecture.md#two)\n"}, "has no heading two"),
            ("a heading here", {"README.md": readme + "[x](#two)\n"}, "has no heading two"),
            ("a document that nobody finds", {"docs/hidden.md": "# Hidden\n"}, "leads nowhere to docs/hidden.md"),
            ("an option alone", {"README.md": readme + "`--plane`\n"}, "Quellon knows no --plane"),
            ("the beginning of an option", {"README.md": readme + "`--pla`\n"}, "Quellon knows no --pla"),
            ("an option in a block", {"README.md": readme + "```\nQuellon --plane\n```\n"}, "knows no --plane"),
            ("an option of a script", {"README.md": readme + "```\ntools/shapes --square\n```\n"}, "knows no --square"),
            ("a command", {"README.md": readme + "`frob --nicate`\n"}, "what is frob"),
            ("a target", {"README.md": readme + "`make tea`\n"}, "no target tea"),
            ("a source file", {"README.md": readme + "`src/QuellonCore/Tea.cpp`\n"}, "there is no src/QuellonCore/Tea.cpp"),
            ("a new folder", {"src/QuellonUI/Kit/A.h": ""}, "QuellonUI/Kit is only in src"),
            ("a folder that is gone",
             {"docs/architecture.md": self.FINE["docs/architecture.md"].replace("QuellonUI/", "QuellonUI/ Tray/")},
             "QuellonUI/Tray is only in the diagram"),
            ("a second diagram", {"docs/architecture.md": self.FINE["docs/architecture.md"] + "```diagram\n```\n"},
             "2 diagrams"),
            ("a version", {"CHANGELOG.md": "## 0.2.0\n"}, "the version is 0.2.0"),
        )
        for name, files, message in cases:
            with self.subTest(name):
                found = self.check(self.FINE | files)
                self.assertEqual(len(found), 1, found)
                self.assertIn(message, found[0])


class LinksNoQt(unittest.TestCase):
    def test_listing(self):
        self.assertEqual(links_no_qt.qt_libraries("\tlibc.so.6 => /lib/libc.so.6 (0x1)\n"), [])
        self.assertEqual(links_no_qt.qt_libraries("\tlibQt6Core.so.6 => /lib/libQt6Core.so.6 (0x1)\n"),
                         ["libQt6Core.so.6", "libQt6Core.so.6"])


if __name__ == "__main__":
    unittest.main()
