#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks which uses of the headers do not compile, which compile without a message, and which bring a warning.

    refused.py COMPILER FOLDER INCLUDE_FOLDER...    exit code 77: there is no such compiler

Each FOLDER/TOPIC.cases begins with the includes and declarations that its cases share. A line with one of the marks then
begins a case, which ends at the next mark and is compiled as the body of a function:

    // accepted: TITLE    compiles without a warning
    // warned: TITLE      compiles with a warning
    // refused: TITLE     does not compile
    // says: TEXT         the compiler's message about the case above has this text and few lines
"""

import os
import re
import shutil
import subprocess
import sys

MARK = re.compile(r"// (accepted|warned|refused): (.+)")
SAYS = re.compile(r"// says: (.+)")
FEW_LINES = 10
LOCATION = re.compile(r"([^\s:][^:]*):(\d+):(?:\d+:)?\s+(.*)")
# GCC names the place that asked for a template before the fault in it, clang after it.
BEFORE = re.compile(r"required (from|by)|[Ii]n (instantiation|substitution|.constexpr. expansion)")
AFTER = re.compile(r"note: .*(requested here|in expansion of macro|required from here)")
FLAGS = ["-std=gnu++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wconversion", "-Wno-unused", "-Wunused-result",
         "-ftemplate-backtrace-limit=0"]


class Case:
    def __init__(self, kind, title, line):
        self.kind, self.title, self.line, self.text, self.lines, self.says = kind, title, line, "", {line}, None

    def add(self, number, text):
        self.text += text
        self.lines.add(number)


def read(path):
    """The text that the cases of a file share, and the cases."""
    shared, cases = "", []
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            if mark := MARK.match(line):
                cases.append(Case(mark[1], mark[2].strip(), number))
            elif cases and (says := SAYS.match(line)):
                cases[-1].says = says[1].strip()
            elif cases:
                cases[-1].add(number, line)
            else:
                shared += line
    return shared, cases


class Compiler:
    def __init__(self, command, folders):
        isClang = "clang" in subprocess.run([command, "--version"], capture_output=True, text=True, check=True).stdout
        limit = "-ferror-limit=0" if isClang else "-fmax-errors=0"
        self.command = [command, *FLAGS, limit, *(f"-I{folder}" for folder in folders), "-x", "c++", "-"]

    def diagnose(self, path, shared, cases):
        """{"error": lines of the file, "warning": lines}, and the compiler's whole output."""
        name = os.path.basename(path)
        program = f'#line 1 "{name}"\n{shared}'
        for case in cases:
            program += f'void Case{case.line}();\nvoid Case{case.line}()\n{{\n#line {case.line + 1} "{name}"\n{case.text}}}\n'
        said = subprocess.run(self.command, input=program, capture_output=True, text=True, env={**os.environ, "LC_ALL": "C"}, check=False).stderr
        found, waiting, severity = {"error": set(), "warning": set()}, set(), "error"
        for match in filter(None, map(LOCATION.match, said.splitlines())):
            file, line, rest = match[1], int(match[2]), match[3]
            here = {line} if file == name else set()
            if kind := re.match(r"(?:fatal )?(error|warning):", rest):
                severity = kind[1]
                found[severity] |= here | waiting
                waiting = set()
            elif AFTER.search(rest):
                found[severity] |= here
            elif BEFORE.search(rest):
                waiting |= here
        return found, said


def check(compiler, path):
    """The faults of one file."""
    shared, cases = read(path)
    compiling = [case for case in cases if case.kind != "refused"]
    found, said = compiler.diagnose(path, shared, compiling)
    faults = []
    for case in compiling:
        if case.lines & found["error"]:
            faults.append((case, "does not compile"))
        elif bool(case.lines & found["warning"]) != (case.kind == "warned"):
            faults.append((case, "is not warned of" if case.kind == "warned" else "is warned of"))
    if found["error"] - set().union(*(case.lines for case in compiling)):
        faults = [(Case("shared", "what the cases share", 1), "does not compile")]
    if faults:
        print(said)
        return tell(path, faults), len(cases)
    found, _ = compiler.diagnose(path, shared, cases)
    for case in cases:
        # A template that several cases use is reported once. The cases without a report are compiled alone.
        if case.kind == "refused" and not case.lines & found["error"] \
                and not compiler.diagnose(path, shared, [case])[0]["error"]:
            faults.append((case, "compiles"))
        elif case.says:
            alone = compiler.diagnose(path, shared, [case])[1]
            if case.says not in alone or len(alone.splitlines()) > FEW_LINES:
                print(alone)
                faults.append((case, f"is not explained in {FEW_LINES} lines"))
    return tell(path, faults), len(cases)


def tell(path, faults):
    return [f"{path}:{case.line}: {case.kind}: {case.title}: {fault}" for case, fault in faults]


def main():
    command, folder, *folders = sys.argv[1:]
    if not shutil.which(command):
        print(f"skipped: there is no {command}")
        return 77
    compiler = Compiler(command, folders)
    paths = sorted(os.path.join(folder, name) for name in os.listdir(folder) if name.endswith(".cases"))
    results = [check(compiler, path) for path in paths]
    faults = [fault for found, _ in results for fault in found]
    print("\n".join(faults + [f"{sum(count for _, count in results)} cases in {len(paths)} files, {len(faults)} faults"]))
    return 1 if faults or not paths else 0


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    sys.exit(main())
