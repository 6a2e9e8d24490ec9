#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes what Doxygen reads, a copy of public headers and documents: input.py FOLDER

A public header goes into the group of its folder. Constants that macros make of the library's lists become declarations
that Doxygen can document and find. Links of documents to files that are no pages become plain text.
"""

import os
import re
import sys

import lists

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
# Members with an underscore that classes of applications call or override.
DERIVING = {"_Register", "_RegisterAll", "_RegisterFlags", "_AddRange", "_AddRanges", "_AddTopRange", "_CheckConstraints", "_SetCache"}
NO_PAGES = re.compile(r"(?<!!)\[([^\]]*)\]\((?!https?:|#|@ref)(?![^)#]*\.(?:md)(?:#[^)]*)?\))[^)]*\)")


def enumerators():
    """The body of nxEnumValue: all constants of the small enumerations and all error codes."""
    lines = []
    for name, rows in lists.enumerations(ROOT):
        owner = name or "every enumeration class"
        lines += [f'    {constant} = {value},  ///< Value of {owner}: "{identifier}", "{wording}".'
                  for constant, value, identifier, wording in rows]
    for group in lists.error_codes(ROOT):
        lines += [f'    {identifier} = {value},  ///< Error code: "{wording}".' for value, identifier, wording in group]
    return "\n".join(lines)


def flags(name):
    """The public part of a bit mask class whose flags are a list."""
    rows = "\n".join(f'        {constant} = {word},  ///< "{identifier}", "{wording}".'
                     for constant, word, _, identifier, wording in lists.masks(ROOT)[name])
    return (f"public:\n    /// The flags of {name}, with their short and long descriptions.\n    enum Flag : Word\n"
            f"    {{\n{rows}\n    }};\n    std::string GetClassName() const override;")


def keys():
    """The constants of the configuration keys."""
    readers = lists.key_readers(ROOT)
    return "\n".join(f'inline constexpr char {key}[] = "{key}";  '
                     f'///< Configuration key; {"read by " + readers[key] if key in readers else "read by applications"}.'
                     for _, group in lists.keys(ROOT) for key in group)


def group_of(path):
    """The folder's group. The concrete bit masks have one of their own, because they would hide the other enumerations."""
    folder, stem = os.path.basename(os.path.dirname(path)), os.path.splitext(os.path.basename(path))[0]
    if "BitMask" in stem and stem not in ("nxBitMask", "nxBitMask64", "nxTypedBitMask"):
        return "bitmasks"
    return "library" if folder == "core" else folder


def end_of_declaration(lines, at):
    """The last line of the declaration of a member that begins at a line."""
    while not re.search(r"(;|{.*})\s*(//.*)?$", lines[at]):
        if lines[at] == "    {":
            return next(end for end in range(at, len(lines)) if lines[end].rstrip(";") == "    }")
        at += 1
    return at


def without_own_members(text):
    """Hides members that begin with an underscore, which are for the library's own classes."""
    lines, hidden = text.split("\n"), []
    for at, line in enumerate(lines):
        name = re.match(r"    (?:[^\s/#][^({=/]*\b(?=_\w*\()|struct )(_[A-Z]\w*)", line)
        in_macro = line.endswith("\\") or lines[at - 1].endswith("\\")
        if name and name.group(1) not in DERIVING and not in_macro:
            first = at
            while re.match(r"    (///(?! @[{}])|template|requires)", lines[first - 1]):
                first -= 1
            hidden.append((first, end_of_declaration(lines, at)))
    for first, last in hidden:
        lines[first] = "/// @cond\n" + lines[first]
        lines[last] += "\n/// @endcond"
    return "\n".join(lines)


def with_linked_errors(text):
    """Makes links of the error codes that comments name, outside blocks of code."""
    codes = {identifier for group in lists.error_codes(ROOT) for _, identifier, _ in group}
    lines, is_code = text.split("\n"), False
    for at, line in enumerate(lines):
        is_code = "@code" in line or (is_code and "@endcode" not in line)
        code, slashes, comment = line.partition("///")
        if not is_code:
            lines[at] = code + slashes + re.sub(r"(?<![\w#`])NX_ERR_\w+",
                                                lambda name: ("#" if name[0] in codes else "") + name[0], comment)
    return "\n".join(lines)


def header(path, text):
    if path.endswith("/nxEnumValue.h"):
        text = re.sub(r"#define NX_ENUM_VALUE.*#undef NX_ERROR_CODE", lambda _: enumerators(), text, flags=re.S)
    elif path.endswith("/nxConfigurationKeys.h"):
        text = text.replace('#include "core/process/inline/nxConfigurationKeys.h"', keys())
    text = re.sub(r"    NX_BIT_MASK\((\w+)\);", lambda match: flags(match.group(1)), text)
    text = re.sub(r"^    friend (class|struct) \w+;.*\n", "", text, flags=re.M)
    # Where a sentence goes on with @return, the brief ends before it.
    text = re.sub(r"; (@return)", r". \1", text)
    # Else a brief would end with the first dot.
    text = re.sub(r"(///.*\be\.g\.) ", r"\1\\ ", text)
    text = with_linked_errors(without_own_members(text))
    begin, end = f"\n/** @addtogroup {group_of(path)}\n@{{ */\n", "\n/** @} */\n#endif"
    text = re.sub(r"(#define CORE_\w+_H)\n", lambda match: match.group(1) + begin, text, count=1)
    return end.join(text.rsplit("\n#endif", 1))


def place(page, heading):
    """The label of a heading: that of its page, then the heading as code hosts name it."""
    return page + "_" + re.sub(r"[^\w-]", "", heading.lower().replace(" ", "-")).replace("-", "_")


def document(path, text):
    page = lists.page_label(path)
    parts = re.split(r"(^```.*?^```$)", text, flags=re.M | re.S)  # between blocks of code
    for at in range(0, len(parts), 2):
        if path != "README.md":
            parts[at] = re.sub(r"^# .*$", lambda match: f"{match[0]} {{#{page}}}", parts[at], flags=re.M)
        parts[at] = re.sub(r"^##+ (.*)$", lambda match: f"{match[0]} {{#{place(page, match[1])}}}", parts[at], flags=re.M)
        parts[at] = re.sub(r"\]\(([\w./-]*\.md)?#([\w-]+)\)", lambda match: "](@ref " + place(
            lists.page_label(os.path.join(os.path.dirname(path), match[1])) if match[1] else page, match[2]) + ")", parts[at])
        parts[at] = NO_PAGES.sub(r"\1", parts[at])
    return "".join(parts)


def public_headers():
    """Paths below the root, with those of other folders than internal/, inline/ and the two that applications do not see."""
    for folder, folders, files in os.walk(os.path.join(ROOT, "core")):
        folders[:] = [name for name in folders if name not in ("internal", "inline", "platform", "process")]
        yield from (os.path.relpath(os.path.join(folder, file), ROOT) for file in files if file.endswith(".h"))


def documents():
    yield "README.md"
    for folder in ("", "docs", "docs/guide"):
        yield from lists.linked_documents(ROOT, folder)


def main():
    for path, convert in [(path, header) for path in public_headers()] + [(path, document) for path in documents()]:
        with open(os.path.join(ROOT, path), encoding="utf-8") as file:
            text = convert(path, file.read())
        copy = os.path.join(sys.argv[1], path)
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        with open(copy, "w", encoding="utf-8") as file:
            file.write(text)


if __name__ == "__main__":
    main()
