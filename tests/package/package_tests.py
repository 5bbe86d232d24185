#!/usr/bin/env python3
"""Tests of what is installed beside the programs.

    package_tests.py [CLASS]

The programs are named by QUELLON and QUELLON_PROBE, the folder with what the build has made of data/ by MADE.
"""

import datetime
import email.utils
import glob
import gzip
import os
import plistlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DATA = os.path.join(ROOT, "data")
OPTION = re.compile(r"(?<![\w-])--?[a-z][a-z-]*")


def read(*path: str) -> str:
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def run(*command: str, **options) -> subprocess.CompletedProcess:
    return subprocess.run(command, capture_output=True, text=True, timeout=30, check=False, **options)


def help_of(program: str) -> str:
    answer = run(os.environ[program], "--help")
    assert answer.returncode == 0, answer
    return answer.stdout


def options_of(text: str) -> dict:
    """The options that a help explains, each with the word for its value, or with nothing."""
    result = {}
    for line in text.splitlines():
        head = re.match(r"  (-.*?)(?:  |$)", line)
        if head:
            words = head.group(1).replace(",", "").split()
            value = words[-1] if not words[-1].startswith("-") else ""
            result |= {word: value for word in words if word.startswith("-")}
    return result


def needs(test: unittest.TestCase, program: str, package: str):
    if not shutil.which(program):
        test.fail(f"{program} is missing: package {package}")


class Manuals(unittest.TestCase):
    """Each command's manual, as `man` shows it."""

    def shown(self, page: str) -> str:
        needs(self, "man", "man-db")
        answer = run("man", "--warnings", "--local-file", os.path.join(DATA, "man", page),
                     env=os.environ | {"LC_ALL": "C.UTF-8", "MANWIDTH": "100", "MANPAGER": "cat", "MAN_KEEP_FORMATTING": ""})
        self.assertEqual((answer.returncode, answer.stderr), (0, ""))
        return re.sub(r".\x08", "", answer.stdout)

    def test_every_option_is_in_the_manual_with_its_value(self):
        text = self.shown("quellon.1")
        for option, value in options_of(help_of("QUELLON")).items():
            with self.subTest(option):
                if option == "--autostart":
                    value = "on | off | status"
                self.assertIn(f"{option} {value}".strip(), text)

    def test_the_manual_knows_no_other_option(self):
        listed = re.findall(r"^ {5}(-.*)$", self.shown("quellon.1"), re.MULTILINE)
        self.assertEqual(set(OPTION.findall("\n".join(listed))), set(options_of(help_of("QUELLON"))))

    def test_exit_statuses(self):
        helped = re.search(r"Exit status: (.*)", help_of("QUELLON"), re.DOTALL).group(1)
        known = re.findall(r"(?:^|;\s|, )(\d+) ", helped)
        section = read(DATA, "man", "quellon.1").split(".Sh EXIT STATUS")[1].split(".Sh ")[0]
        self.assertGreaterEqual(len(known), 4, helped)
        self.assertEqual(re.findall(r"^\.It (\d+)$", section, re.MULTILINE), known)

    def test_every_role_of_the_probe(self):
        roles = re.findall(r"^  ([a-z]+(?: [A-Z]+)?)  ", help_of("QUELLON_PROBE"), re.MULTILINE)
        self.assertEqual(len(roles), 8)
        text = self.shown("quellon-probe.1")
        for role in roles:
            self.assertRegex(text, rf"(?m)^ +{role}\b")

    def test_every_command_has_one(self):
        pages = {os.path.basename(page) for page in glob.glob(os.path.join(os.environ["MADE"], "man", "*"))}
        self.assertEqual(pages, {"quellon.1.gz", "Quellon.1.gz", "quellon-probe.1.gz"})


class Completions(unittest.TestCase):
    """What shells offer, asked of the shells themselves."""

    def setUp(self):
        self.options = set(options_of(help_of("QUELLON")))
        self.long = {option for option in self.options if option.startswith("--")}

    def bash(self, *words: str) -> set:
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  '$(complete -p quellon | sed "s/.*-F \\([^ ]*\\) .*/\\1/"); printf "%s\\n" "${COMPREPLY[@]}"')
        answer = run("bash", "-c", script, "bash", os.path.join(DATA, "completions", "quellon"), *words)
        self.assertEqual(answer.stderr, "")
        return set(answer.stdout.split())

    def test_bash(self):
        self.assertEqual(self.bash("quellon", "--"), self.long)
        self.assertEqual(self.bash("quellon", "--auto"), {"--auto-resume", "--autostart"})
        self.assertEqual(self.bash("quellon", "--autostart", ""), {"on", "off", "status"})
        self.assertEqual(self.bash("quellon", "--plain", "--autostart", "o"), {"on", "off"})
        self.assertEqual(self.bash("quellon", "--duration", ""), set())
        both = run("bash", "-c", 'source "$1"; complete -p quellon Quellon', "bash",
                   os.path.join(DATA, "completions", "quellon"))
        self.assertEqual(both.returncode, 0)

    def test_fish(self):
        needs(self, "fish", "fish")
        file = os.path.join(DATA, "completions", "quellon.fish")
        with tempfile.TemporaryDirectory() as home:
            def fish(line: str) -> set:
                answer = run("fish", "--no-config", "-c", f"source {file}; complete -C '{line}'",
                             env=os.environ | {"HOME": home})
                self.assertEqual(answer.stderr, "")
                return {each.split("\t")[0] for each in answer.stdout.splitlines()}
            for name in ("quellon", "Quellon"):
                self.assertEqual(fish(f"{name} --"), self.long)
                self.assertEqual(fish(f"{name} --autostart "), {"on", "off", "status"})

    def test_zsh(self):
        needs(self, "zsh", "zsh")
        file = os.path.join(DATA, "completions", "_quellon")
        answer = run("zsh", "-f", "-c", "_arguments() { print -l -- $@ }; source $1", "zsh", file)
        self.assertEqual((answer.returncode, answer.stderr), (0, ""))
        found = set()
        for line in answer.stdout.splitlines():
            found.add(re.match(r"(?:\([^)]*\))?(--?[a-z-]+)", line).group(1))
        self.assertEqual(found, self.options)
        self.assertEqual(read(file).splitlines()[0], "#compdef quellon Quellon")


class Desktop(unittest.TestCase):
    """The desktop entry, the metainfo, the icons, the papers."""

    def test_entry(self):
        needs(self, "desktop-file-validate", "desktop-file-utils")
        answer = run("desktop-file-validate", os.path.join(DATA, "desktop", "org.quellon.Quellon.desktop"))
        self.assertEqual((answer.returncode, answer.stdout), (0, ""))

    def test_the_autostart_entry_is_one_too(self):
        needs(self, "desktop-file-validate", "desktop-file-utils")
        with tempfile.TemporaryDirectory() as home:
            # A folder of which every letter needs care.
            folder = os.path.join(home, "a $b `c` \"d\" \\ 100% 文")
            os.mkdir(folder)
            program = os.path.join(folder, "Quellon")
            try:
                os.link(os.environ["QUELLON"], program)
            except OSError:
                shutil.copy(os.environ["QUELLON"], program)
            environment = os.environ | {"HOME": home, "XDG_CONFIG_HOME": home}
            self.assertEqual(run(program, "--autostart", "on", env=environment).returncode, 0)
            entry = os.path.join(home, "autostart", "org.quellon.Quellon.desktop")
            answer = run("desktop-file-validate", entry)
            self.assertEqual((answer.returncode, answer.stdout), (0, ""))
            # As the desktops read it: GLib takes the command apart.
            command, = re.findall(r"^Exec=(.*)$", read(entry), re.MULTILINE)
            unescaped = re.sub(r"\\(.)", r"\1", command)
            inner = re.fullmatch(r'"(.*)"', unescaped).group(1)
            self.assertEqual(re.sub(r"\\(.)", r"\1", inner).replace("%%", "%"), program)

    def test_metainfo(self):
        needs(self, "appstreamcli", "appstream")
        file = os.path.join(os.environ["MADE"], "desktop", "org.quellon.Quellon.metainfo.xml")
        answer = run("appstreamcli", "validate", "--no-net", "--no-color", "--explain", file)
        self.assertEqual(answer.returncode, 0, answer.stdout)
        self.assertNotRegex(answer.stdout, r"(?m)^[EW]:")

    def test_one_version_and_one_day_everywhere(self):
        version = run(os.environ["QUELLON"], "--version").stdout.split()[1]
        release = xml.etree.ElementTree.parse(
            os.path.join(os.environ["MADE"], "desktop", "org.quellon.Quellon.metainfo.xml")).find("releases/release")
        changes = read(os.environ["MADE"], "debian", "changelog")
        changed = email.utils.parsedate_to_datetime(re.search(r"^ -- .*?>  (.*)$", changes, re.MULTILINE).group(1))
        self.assertEqual(release.get("version"), version)
        self.assertTrue(changes.startswith(f"quellon ({version}) "))
        self.assertEqual(datetime.date.fromisoformat(release.get("date")), changed.date())

    def test_icons(self):
        for size in (16, 22, 24, 32, 48, 64, 128, 256, 512):
            with open(os.path.join(os.environ["MADE"], "icons", f"{size}.png"), "rb") as file:
                head = file.read(24)
            self.assertEqual(head[:8], b"\x89PNG\r\n\x1a\n")
            self.assertEqual([int.from_bytes(head[at:at + 4], "big") for at in (16, 20)], [size, size])

    def test_papers(self):
        licence = read(ROOT, "LICENSE")
        self.assertTrue(licence.startswith("MIT License\n\nCopyright (c) 2026 the Quellon authors\n"))
        permission = "".join(licence.split("\n\n", 2)[2].split())
        self.assertIn(permission, "".join(re.sub(r"(?m)^ \.?", "", read(DATA, "debian", "copyright")).split()))
        with gzip.open(os.path.join(os.environ["MADE"], "debian", "changelog.gz"), "rt", encoding="utf-8") as file:
            self.assertEqual(file.read(), read(os.environ["MADE"], "debian", "changelog"))


class Service(unittest.TestCase):
    """The service of the user's session."""

    FILE = os.path.join(DATA, "desktop", "quellon.service")

    def test_the_watchdogs_outlive_it(self):
        self.assertRegex(read(self.FILE), r"(?m)^KillMode=process$")

    def test_the_manager_accepts_it(self):
        needs(self, "systemd-analyze", "systemd")
        with tempfile.TemporaryDirectory() as folder:
            service = os.path.join(folder, "quellon.service")
            with open(service, "w", encoding="utf-8") as file:
                file.write(read(self.FILE).replace("ExecStart=Quellon\n", f"ExecStart={os.environ['QUELLON']}\n"))
            answer = run("systemd-analyze", "--user", "verify", service, env=os.environ | {"XDG_RUNTIME_DIR": folder})
            self.assertEqual((answer.returncode, answer.stderr), (0, ""))


class Scripts(unittest.TestCase):
    """The package's own script, away from any package."""

    SCRIPT = os.path.join(DATA, "debian", "prerm")

    def test_it_does_nothing_on_an_upgrade(self):
        for words in (("upgrade", "0.2.0"), ("failed-upgrade", "0.1.0"), ("deconfigure", "in-favour", "a", "1")):
            answer = run("sh", self.SCRIPT, *words)
            self.assertEqual((answer.returncode, answer.stdout, answer.stderr), (0, "", ""))

    def test_it_is_plain_shell(self):
        self.assertEqual(run("dash", "-n", self.SCRIPT).returncode, 0)
        self.assertTrue(os.access(self.SCRIPT, os.X_OK))


class Bundle(unittest.TestCase):
    """What the bundle for macOS says of itself."""

    def test_information(self):
        text = read(DATA, "macos", "Info.plist.in").replace("@PROJECT_VERSION@", "1.2.3")
        self.assertNotIn("@", text)
        information = plistlib.loads(text.encode())
        self.assertIs(information["LSUIElement"], True, "it has no place in the dock")
        self.assertEqual(information["CFBundleIdentifier"], "org.quellon.Quellon")
        self.assertEqual(information["CFBundleExecutable"], "Quellon", "the name that decides about the state folder")
        for key in ("CFBundleShortVersionString", "CFBundleVersion"):
            self.assertEqual(information[key], "1.2.3")

    def test_entitlements(self):
        entitlements = plistlib.loads(read(DATA, "macos", "Quellon.entitlements").encode())
        self.assertIs(entitlements["com.apple.security.app-sandbox"], False)


if __name__ == "__main__":
    unittest.main(verbosity=2, argv=sys.argv)
