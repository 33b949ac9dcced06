#!/usr/bin/env python3
"""run_pages.py SOURCE_DIR SCRIPTS: what README.md and the pages of docs/ show is what happens.

Works in the current folder, in which the demo has run. Of each page, in order:

- a block behind `<!-- file: PATH -->` is written to that file;
- a command is an indented line that has the program's path, or begins with the path of a package's
  folder; it ends with 0 (with SCRIPTS "no", those of packages are left out);
- a block of C++ compiles against the public headers;
- each line of a block without a language was printed by a command since the last heading. Runs of
  blanks count as one, as the pages show some rows of a table; lines of dashes don't count.
"""

import pathlib
import re
import subprocess
import sys

COMMAND = re.compile(r"^ {4}(\S*PATH=build.*|.*build/release/bin/hbs .*)$")


def squeezed(line):
    return " ".join(line.split())


def run(command):
    print("==", command, flush=True)
    done = subprocess.run(
        ["sh", "-c", command],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        check=False,
    )
    # Some places are told with the whole path.
    printed = done.stdout.decode(errors="replace").replace(f"{pathlib.Path.cwd()}/", "")
    print(printed)
    return done.returncode, {squeezed(line) for line in printed.splitlines()}


def compile_cpp(source, lines):
    """What the compiler says; empty for code that compiles."""
    folders = [source, source / "platform/common", source / "platform/iostreams"]
    command = ["c++", "-std=c++20", "-fsyntax-only", "-x", "c++", "-"]
    command += [f"-I{folder}" for folder in [*folders, "build/release/generated"]]
    text = "\n".join(lines) + "\n"
    done = subprocess.run(command, input=text, capture_output=True, text=True, check=False)
    return done.stderr if done.returncode else ""


class Page:
    def __init__(self, source, path, has_scripts):
        self.source = source
        self.path = path
        self.has_scripts = has_scripts
        self.faults = []
        self.printed = set()
        self.is_complete = True  # whether all commands since the heading were run

    def fault(self, number, what):
        self.faults.append(f"{self.path}:{number}: {what}")

    def run_command(self, number, command):
        if "PATH=build" in command and not self.has_scripts:
            self.is_complete = False
            return
        status, printed = run(command)
        self.printed |= printed
        if status != 0:
            self.fault(number, f"ends with {status}: {command}")

    def take_block(self, number, language, target, lines):
        if target:
            path = pathlib.Path(target)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("\n".join(lines) + "\n")
        elif language == "cpp":
            if said := compile_cpp(self.source, lines):
                self.fault(number, said)
        elif not language and self.is_complete:
            for offset, line in enumerate(lines, 1):
                if line.strip(" -") and squeezed(line) not in self.printed:
                    self.fault(number + offset, f"isn't printed: {line}")

    def check(self):
        target, block, start, language = None, None, 0, ""
        for number, line in enumerate(self.path.read_text().splitlines(), 1):
            if line.startswith("```"):
                if block is None:
                    block, start, language = [], number, line[3:]
                else:
                    self.take_block(start, language, target, block)
                    target, block = None, None
            elif block is not None:
                block.append(line)
            elif line.startswith("#"):
                self.printed, self.is_complete = set(), True
            elif found := re.fullmatch(r"<!-- file: (\S+) -->", line):
                target = found[1]
            elif found := COMMAND.match(line):
                self.run_command(number, found[1])
        return self.faults


def main():
    source = pathlib.Path(sys.argv[1])
    pages = [source / "README.md", *sorted((source / "docs").rglob("*.md"))]
    faults = [fault for page in pages for fault in Page(source, page, sys.argv[2] != "no").check()]
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


main()
