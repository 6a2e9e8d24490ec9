#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Holds the atomic objects of core/ to their orders.

A comment at the declaration of each atomic object, or of the group that it is in, names every memory order that operations use,
and so which operation pairs with which: "release", "acquire", "seq_cst" (also for both halves of one exchange: "acquire and
release"), "relaxed", or "default order" where operations name none. Operations are called by their names, because an
assignment hides its order. Fences and the compiler's own atomic functions have a comment right above.

    orders.py SOURCE
"""

import os
import re
import sys

INSIDE = r"(?:[^<>;]|<(?:[^<>;]|<[^<>;]*>)*>)*"  # of angle brackets, two deep
DECLARED = re.compile(r"std::atomic<" + INSIDE + r">(?:,[^;>]*>)?>*(?P<reference>[&*]?)\s*(?:const\s+)?"
                      r"(?P<scope>\w+::)?(?P<name>\w+)\s*[\[{;=]")
CAST = re.compile(r"auto& (?P<name>\w+) = \*reinterpret_cast<std::atomic<")
ALIAS = re.compile(r"^using (?P<name>\w+) = std::atomic<", re.M)
OPERATION = re.compile(r"(?P<name>\w+)(?:\[[^\[\]]*(?:\[[^\[\]]*\][^\[\]]*)*\])*\)?(?:\.|->)"
                       r"(?:load|store|exchange|compare_exchange_weak|compare_exchange_strong|fetch_\w+)\(")
FENCE = re.compile(r"atomic_(?:thread|signal)_fence\(|__(?:atomic|sync)_\w+\(")
# A line between declarations of one group and their comment.
OF_GROUP = re.compile(r"\s*(?:\{$|struct |class )|.*(?:std::atomic<|\bnxSleepBell )")
NEEDED = {"relaxed": ("relaxed",), "acquire": ("acquire",), "release": ("release",), "acq_rel": ("acquire", "release"),
          "seq_cst": ("seq_cst",), "default": ("default order",)}


def without_comments(text):
    """The text with comments blanked, so that places stay."""
    return re.sub(r"//[^\n]*", lambda match: " " * len(match.group()), text)


def comment_at(lines, number):
    """The comment behind a line, and the one above it or above the declarations of the same group."""
    comments = [lines[number].partition("//")[2]]
    number -= 1
    while number >= 0 and OF_GROUP.match(lines[number].partition("//")[0]):
        number -= 1
    number -= lines[number].startswith("template ")
    while number >= 0 and lines[number].strip().startswith("//"):
        comments.insert(0, lines[number].strip().lstrip("/"))
        number -= 1
    return " ".join(" ".join(comments).split()).lower()


def arguments_of(text, start):
    """The arguments of a call whose opening bracket is right before the start."""
    depth, end = 1, start
    while depth:
        depth += {"(": 1, ")": -1}.get(text[end], 0)
        end += 1
    return text[start:end]


class File:
    def __init__(self, path, text):
        self.path, self.lines, self.code = path, text.split("\n"), without_comments(text)
        self.unit = os.path.splitext(os.path.basename(path))[0]  # a class, wherever its header and source are
        found = [match for match in DECLARED.finditer(self.code) if not match["scope"]]
        # {name: (line number from 0, comment)}; a reference may have a comment, and otherwise its operations name their orders
        self.references = {match["name"]: self._entry(match.start("name")) for match in found + list(CAST.finditer(self.code))
                           if match.groupdict().get("reference", True)}
        self.declared = {match["name"]: self._entry(match.start("name"))
                         for match in found + list(ALIAS.finditer(self.code)) if not match.groupdict().get("reference")}

    def _entry(self, place):
        number = self.line(place)
        return number, comment_at(self.lines, number)

    def line(self, place):
        return self.code.count("\n", 0, place)

    def operations(self):
        """Every (name of the object, line number, orders)."""
        for match in OPERATION.finditer(self.code):
            orders = re.findall(r"memory_order_(\w+)", arguments_of(self.code, match.end()))
            yield match["name"], self.line(match.start()), orders or ["default"]


def faults(files):
    units = {}
    for file in files:
        for name, entry in file.declared.items():
            units.setdefault(name, {}).setdefault(file.unit, entry)
            if not any(word in entry[1] for words in NEEDED.values() for word in words):
                yield f"{file.path}:{entry[0] + 1}: no comment names the orders of {name}"
    for file in files:
        for name, number, orders in file.operations():
            known = units.get(name, {})
            comments = [known[file.unit][1]] if file.unit in known else [comment for _, comment in known.values()]
            for order in orders:
                if name in file.references:
                    comments = [file.references[name][1]] if order == "default" else []
                is_said = any(all(word in comment for word in NEEDED[order]) for comment in comments)
                if (comments or order == "default") and not is_said:
                    yield f"{file.path}:{number + 1}: the comment at {name} does not say why it is {order}"
        for match in FENCE.finditer(file.code):
            number = file.line(match.start())
            if not any("//" in line for line in file.lines[max(0, number - 4):number]):
                yield f"{file.path}:{number + 1}: no comment says what {match.group()[:-1]} orders"
        names = (name for name, known in units.items() if file.unit in known)
        # Another variable of the same name hides the object.
        for name in (name for name in names if not re.search(r"(?:const|[\w>]\*?) " + name + r" =", file.code)):
            bare = r"(?:!|\+\+|--)NAME\b(?![.\[(])|(?<![\w.>*&] )\bNAME\s*(?:[-+|&^]?=(?!=)|\+\+|--|==|!=|&& |\|\| )"
            for match in re.finditer(bare.replace("NAME", name), file.code):
                if "std::atomic" not in file.lines[number := file.line(match.start())]:
                    yield f"{file.path}:{number + 1}: {name} is used without the name of an operation"


def main():
    root = sys.argv[1]
    files = []
    for folder, _, names in sorted(os.walk(os.path.join(root, "core"))):
        for name in sorted(names):
            if name.endswith((".h", ".inc", ".cpp")):
                path = os.path.join(folder, name)
                with open(path, encoding="utf-8") as handle:
                    files.append(File(os.path.relpath(path, root), handle.read()))
    found = list(faults(files))
    for fault in found:
        print(fault)
    print(sum(len(file.declared) for file in files), "atomic objects,", sum(1 for file in files for _ in file.operations()), "operations")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
