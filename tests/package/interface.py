#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the binary interface with the agreed lists: exported symbols, and size and virtual slots of public classes.

    interface.py check LIBRARY CXX SOURCE GENERATED    shows what was added or is missing, and fails then
    interface.py renew LIBRARY CXX SOURCE GENERATED    writes the agreed lists again

A missing or changed line breaks programs that were built before and needs a new major version. An added line needs a new
minor version. The lists are beside this file, symbols.txt and classes.txt, and hold for g++ on x86-64.
"""

import os
import re
import subprocess
import sys
import tempfile

FOLDER = os.path.dirname(os.path.abspath(__file__))
WEAK = "VWuA"  # emitted wherever the compiler likes: inline functions, templates, type information


def symbols(library):
    """The library's own exported functions and data, without those of inline code."""
    output = subprocess.run(["nm", "-DC", "--without-symbol-versions", "--defined-only", library], capture_output=True, text=True, check=True).stdout
    rows = (line.split(" ", 2) for line in output.splitlines())
    return sorted({name for _, kind, name in rows if kind not in WEAK})


def slots_of(table):
    """The functions of a virtual table; a second base's begin with its offset, and an abstract destructor is a 0."""
    entries = re.findall(r"^\d+ +(?:\(int \(\*\)\(\.\.\.\)\))?(.*)$", table, re.M)[1:]
    entries = [entry for entry in entries if not entry.startswith("(& _ZTI")]
    return [re.sub(r"^(?:nx\w+(?:<.*>)?::)?", "", entry) for entry in entries]


def classes(compiler, source, generated):
    """A line for each public class: name, size, alignment and the functions in its virtual slots, in their order."""
    with tempfile.TemporaryDirectory() as folder:
        dump = os.path.join(folder, "classes")
        subprocess.run([compiler, "-std=c++20", f"-I{source}", f"-I{generated}", "-fsyntax-only", f"-fdump-lang-class={dump}",
                        "-x", "c++", os.path.join(source, "core/nxCore.h")], check=True)
        with open(dump, encoding="utf-8") as file:
            text = file.read()
    slots = {name: slots_of(body) for name, body in re.findall(r"^Vtable for (nx\w+)\n(.*?)\n\n", text, re.M | re.S)}
    lines = []
    for name, size, alignment in re.findall(r"^Class (nx\w+)\n +size=(\d+) align=(\d+)", text, re.M):
        virtual = f": {' '.join(slots[name])}" if name in slots else ""
        lines.append(f"{name} {size}/{alignment}{virtual}")
    return sorted(lines)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read().splitlines()


def main():
    action, library, compiler, source, generated = sys.argv[1:6]
    faults = 0
    for name, found in (("symbols.txt", symbols(library)), ("classes.txt", classes(compiler, source, generated))):
        path = os.path.join(FOLDER, name)
        if action == "renew":
            with open(path, "w", encoding="utf-8") as file:
                file.write("\n".join(found) + "\n")
            continue
        agreed = read(path)
        for title, lines in (("missing", sorted(set(agreed) - set(found))), ("added", sorted(set(found) - set(agreed)))):
            faults += len(lines)
            for line in lines:
                print(f"{name}: {title}: {line}")
    if faults:
        print("If that is meant, run: cmake --build --preset release --target renew_interface")
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) != 6 or sys.argv[1] not in ("check", "renew"):
        sys.exit(__doc__)
    sys.exit(main())
