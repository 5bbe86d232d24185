#!/usr/bin/env python3
"""Checks what the documents say against the project.

    documents.py ROOT [PROGRAM...]

Every *.md of ROOT, but what is built and what other people wrote. Prints, and ends with exit status 1 for, each
 - link or picture below ROOT that isn't there, and each heading that a link names and its document doesn't have;
 - document below docs that nobody can get to from README.md;
 - option behind one of our commands that the command doesn't know: PROGRAMs are asked for their --help, of scripts below
   tools the text is read. Options that stand alone are Quellon's;
 - command that is neither ours nor known to be somebody else's;
 - `make` target that the Makefile doesn't have;
 - source file or folder named in a document that isn't there;
 - folder of src that the diagram in docs/architecture.md doesn't have, and the other way round;
 - version at the top of CHANGELOG.md other than what Quellon prints.
"""

import os
import re
import shlex
import subprocess
import sys

# Programs of other people; nobody checks their options.
OTHERS = {"journalctl", "ctest", "cmake", "nmcli", "snap", "apt", "apt-get", "git", "kill", "jq", "gh", "ss", "ps", "ls",
          "tail", "cat", "mkdir", "rm", "sudo", "systemctl", "busctl", "gdbus", "make", "python3", "nethogs", "vnstat",
          "tc", "nft", "iptables", "dpkg", "dpkg-deb", "nettop", "route", "ifconfig", "netstat", "networksetup", "top",
          "pgrep", "gsettings", "loginctl", "bash", "sh", "ninja", "notify-send", "cp", "curl", "du", "CoreBenchmark"}
SKIPPED = {".git", ".ccache", "data"}
FENCE = re.compile(r"^(```+)([^\n]*)\n(.*?)^\1[ \t]*$", re.MULTILINE | re.DOTALL)
SPAN = re.compile(r"(`+)(.+?)\1", re.DOTALL)
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)|\bsrc=\"([^\"]+)\"|\bhref=\"([^\"]+)\"")
OPTION = re.compile(r"--?[A-Za-z][\w-]*")
SOURCE = re.compile(r"(?<![\w./~-])(?:src|tests|tools|docs|data|cmake)/[\w./*+-]*[\w*+]")
SHELL = {"", "sh", "bash", "console"}


def documents(root: str):
    for folder, folders, names in os.walk(root):
        folders[:] = sorted(each for each in folders if each not in SKIPPED and not each.startswith("build"))
        for name in sorted(names):
            if name.endswith(".md"):
                yield os.path.relpath(os.path.join(folder, name), root)


def slug(heading: str) -> str:
    """The name of a heading in links: small, words joined by hyphens, what is neither left out."""
    text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "")
    return re.sub(r"[^\w\- ]", "", text.strip().lower()).replace(" ", "-")


class Document:
    def __init__(self, root: str, path: str):
        self.path = path
        with open(os.path.join(root, path), encoding="utf-8") as file:
            self.text = file.read()
        self.fences = [(match.group(2).split(" ")[0], match.group(3)) for match in FENCE.finditer(self.text)]
        self.prose = FENCE.sub("", self.text)
        self.spans = [re.sub(r"\s+", " ", match.group(2)).strip() for match in SPAN.finditer(self.prose)]
        self.headings = {slug(line.lstrip("#")) for line in self.prose.splitlines() if re.match(r"#+ ", line)}
        without_code = SPAN.sub("", self.prose)
        self.links = [next(group for group in match.groups() if group) for match in LINK.finditer(without_code)]

    def commands(self):
        """Each line that is a command, and each code in the text that is one or an option."""
        for kind, text in self.fences:
            if kind in SHELL:
                for line in text.replace("\\\n", " ").splitlines():
                    line = re.split(r"  +#|  +[a-z]", line.strip())[0]
                    if re.match(r"(Quellon|quellon|quellon-\w+|make|tools/\S+|build/\S+|[A-Z_]+=\S+) ?", line):
                        yield line
        for line in re.findall(r"^ {4}(\S.*)$", self.prose, re.MULTILINE):
            if re.match(r"(Quellon|quellon-\w+|tools/\S+|build/\S+)( |$)", line):
                yield re.split(r"  +#", line)[0]
        for span in self.spans:
            if OPTION.match(span) or " -" in span or span.startswith(("make ", "tools/", "build/")):
                yield span


def words(command: str):
    try:
        return shlex.split(command.split("|")[0], comments=True)
    except ValueError:
        return command.split()


class Programs:
    """What our commands know."""

    def __init__(self, root: str, binaries):
        self.root = root
        self.help = {}
        for binary in binaries:
            environment = os.environ | {"QT_QPA_PLATFORM": "offscreen"}
            done = subprocess.run([binary, "--help"], capture_output=True, text=True, timeout=30, env=environment,
                                  stdin=subprocess.DEVNULL, check=False)
            self.help[os.path.basename(binary)] = done.stdout + done.stderr
        if "Quellon" in self.help:
            self.help["quellon"] = self.help["Quellon"]

    def known(self, name: str):
        """The text that has the options of a command; None when nothing is known of it."""
        base = os.path.basename(name)
        if base in self.help:
            return self.help[base]
        script = os.path.join(self.root, name if name.startswith(("tools/", "tests/")) else os.path.join("tools", name))
        if os.path.isfile(script):
            with open(script, encoding="utf-8") as file:
                return file.read()
        return None


def targets(root: str):
    with open(os.path.join(root, "Makefile"), encoding="utf-8") as file:
        return set(re.findall(r"^([a-z][\w-]*(?: [a-z][\w-]*)*):", file.read(), re.MULTILINE))


def link_problems(root: str, all_documents):
    for document in all_documents.values():
        for link in document.links:
            if re.match(r"[a-z]+:", link):
                continue
            target, _, anchor = link.partition("#")
            path = os.path.normpath(os.path.join(os.path.dirname(document.path), target)) if target else document.path
            if not os.path.exists(os.path.join(root, path)):
                yield f"{document.path}: there is no {link}"
            elif anchor and path in all_documents and anchor not in all_documents[path].headings:
                yield f"{document.path}: {path} has no heading {anchor}"


def reachable(all_documents):
    found = set()
    wanted = ["README.md"]
    while wanted:
        path = wanted.pop()
        if path in found or path not in all_documents:
            continue
        found.add(path)
        folder = os.path.dirname(path)
        wanted += [os.path.normpath(os.path.join(folder, link.split("#")[0])) for link in all_documents[path].links]
    return found


def option_problems(document: Document, programs: Programs, make_targets):
    for command in document.commands():
        parts = words(command)
        while parts and re.fullmatch(r"[A-Z_]+=.*", parts[0]):
            parts.pop(0)
        if not parts:
            continue
        name = parts[0]
        if name == "make" and len(parts) > 1 and re.fullmatch(r"[a-z-]+", parts[1]):
            if not any(parts[1] in each.split(" ") for each in make_targets):
                yield f"{document.path}: no target {parts[1]} in the Makefile"
            continue
        if OPTION.match(name):
            name, parts = "Quellon", ["Quellon", *parts]
        known = programs.known(name)
        if known is None:
            if os.path.basename(name) not in OTHERS and any(OPTION.fullmatch(part) for part in parts[1:]):
                yield f"{document.path}: what is {name} in `{command}`?"
            continue
        if os.path.basename(name) == "lab" and len(parts) > 1 and not parts[1].startswith("-"):
            continue  # what it runs has options of its own
        for part in parts[1:]:
            option = OPTION.match(part)
            if option and part.startswith("-") and not re.search(rf"(?<![\w-]){re.escape(option.group(0))}(?![\w-])", known):
                yield f"{document.path}: {name} knows no {option.group(0)}"


def source_problems(root: str, document: Document):
    prose = LINK.sub("", document.prose)  # links have been looked at
    for match in SOURCE.finditer("\n".join([prose, *(text for _, text in document.fences)])):
        path = match.group(0).rstrip(".")
        if re.search(r"[A-Z]{3,}|\*", path.replace("README", "").replace("CMakeLists", "")):
            continue
        if not os.path.exists(os.path.join(root, path)):
            yield f"{document.path}: there is no {path}"


def folders_of_source(root: str):
    source = os.path.join(root, "src")
    return {top: {each for each in os.listdir(os.path.join(source, top)) if os.path.isdir(os.path.join(source, top, each))}
            for top in os.listdir(source) if os.path.isdir(os.path.join(source, top))}


def diagram_problems(root: str, document: Document):
    diagrams = [text for kind, text in document.fences if kind == "diagram"]
    if len(diagrams) != 1:
        yield f"{document.path}: {len(diagrams)} diagrams"
        return
    drawn = {}
    top = None
    for name in re.findall(r"(\w+)/", diagrams[0]):
        if name.startswith("Quellon"):
            top = name
            drawn[top] = set()
        elif top is not None:
            drawn[top].add(name)
    present = folders_of_source(root)
    for name in sorted(present.keys() | drawn.keys()):
        if name not in drawn or name not in present:
            yield f"{document.path}: {name} is only {'in src' if name in present else 'in the diagram'}"
            continue
        for each in sorted(present[name] ^ drawn[name]):
            yield f"{document.path}: {name}/{each} is only {'in src' if each in present[name] else 'in the diagram'}"


def version_problems(document: Document, binaries):
    quellon = next((each for each in binaries if os.path.basename(each) == "Quellon"), None)
    top = re.search(r"^## (\S+)", document.prose, re.MULTILINE)
    if quellon is None or top is None:
        yield f"{document.path}: no version to compare"
        return
    printed = subprocess.run([quellon, "--version"], capture_output=True, text=True, timeout=30, check=False).stdout
    if printed.split()[-1:] != [top.group(1)]:
        yield f"{document.path}: the version is {top.group(1)}, the program says {printed.strip()}"


def problems(root: str, binaries):
    all_documents = {path: Document(root, path) for path in documents(root)}
    if not all_documents:
        yield f"no documents in {root}"
        return
    yield from link_problems(root, all_documents)
    seen = reachable(all_documents)
    for path in sorted(all_documents):
        if path.startswith("docs/") and path not in seen:
            yield f"README.md leads nowhere to {path}"
    programs = Programs(root, binaries)
    make_targets = targets(root)
    for document in all_documents.values():
        yield from option_problems(document, programs, make_targets)
        yield from source_problems(root, document)
    if "docs/architecture.md" in all_documents:
        yield from diagram_problems(root, all_documents["docs/architecture.md"])
    if "CHANGELOG.md" in all_documents:
        yield from version_problems(all_documents["CHANGELOG.md"], binaries)


def main() -> int:
    found = list(problems(sys.argv[1], sys.argv[2:]))
    for problem in found:
        print(problem)
    print(f"{sum(1 for _ in documents(sys.argv[1]))} documents, {len(found)} problems")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
