# SPDX-License-Identifier: Apache-2.0
"""Reads the lists of the library: error codes, enumeration values, flags and configuration keys.

Every function takes the root of the source tree. A row that is not understood ends the program, so that none is lost.
"""

import os
import re
import sys

STRING = r'"((?:[^"\\]|\\.)*)"'


def _read(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as file:
        return file.read()


def _rows(text, macro, pattern, path):
    rows = re.findall(macro + r"\(\s*" + pattern + r"\s*\)", text)
    if len(rows) != len(re.findall(r"\b" + macro + r"\(\s*\w+\s*,", text)):
        sys.exit(f"{path}: a row of {macro} is not understood")
    return rows


def error_codes(root):
    """[[(value, identifier, wording)]]: the groups of the list, which blank lines separate there."""
    path = "core/enum/nxErrorCodes.inc"
    text = _read(root, path).replace('"\n', '" \n')
    text = re.sub(r'"\s*\n\s+"', "", text)  # a wording of several lines
    groups = [_rows(part, "NX_ERROR_CODE", r"(\d+),\s*(\w+),\s*" + STRING, path) for part in text.split("\n\n")]
    return [group for group in groups if group]


def enumerations(root):
    """[(class or None for the shared values, [(constant, value, identifier, wording)])] in the order of the list."""
    path = "core/enum/nxEnumValues.inc"
    found = []
    for part in _read(root, path).split("\n\n"):
        rows = _rows(part, "NX_ENUM_VALUE", r"(\w+),\s*(\d+),\s*" + STRING + r",\s*" + STRING, path)
        if rows:
            name = re.search(r"^// (nx\w+)$", part, re.M)
            found.append((name.group(1) if name else None, rows))
    return found


def masks(root):
    """{class: [(constant, word as the source has it, value, identifier, wording)]}, by class name."""
    path = "core/enum/inline/nxBitMaskFlags.h"
    found = {}
    for part in _read(root, path).replace("\\\n", "\n").split("#define NX_FLAGS_")[1:]:
        name = re.match(r"\w+", part).group()
        pattern = r"(\w+),\s*(Bit\(\d+\)|\w+),\s*" + STRING + r",\s*" + STRING
        found[name] = [(constant, word, _word_value(word), identifier, wording)
                       for constant, word, identifier, wording in _rows(part, "FLAG", pattern, path)]
    return dict(sorted(found.items()))


def _word_value(word):
    bit = re.fullmatch(r"Bit\((\d+)\)", word)
    return 1 << int(bit.group(1)) if bit else int(word, 0)


def keys(root):
    """[(group, [key])] in the order of the list."""
    found = []
    for line in _read(root, "core/process/inline/nxConfigurationKeys.inc").splitlines():
        if group := re.fullmatch(r"// (\w+)", line):
            found.append((group.group(1), []))
        elif key := re.match(r"NX_CONFIGURATION_KEY\((\w+)\)", line):
            found[-1][1].append(key.group(1))
    return found


def key_readers(root):
    """{key: class}: the keys that a source of the library names, with the first public class whose source does."""
    names = {key for _, group in keys(root) for key in group}
    found = {}
    for folder, _, files in sorted(os.walk(os.path.join(root, "core"))):
        for file in sorted(files):
            stem, extension = os.path.splitext(file)
            if extension == ".cpp" and os.path.exists(os.path.join(folder, stem + ".h")) and "internal" not in folder:
                for key in set(re.findall(r"\bQRX_\w+", _read(folder, file))) & names:
                    found.setdefault(key, stem)
    return found


def key_meanings(root):
    """{key: meaning}: the first sentence of comments that begin with a key and a colon, in the headers of the log."""
    found = {}
    for folder in ("app", "log"):
        for file in sorted(os.listdir(os.path.join(root, "core", folder))):
            if file.endswith(".h"):
                text = re.sub(r"\n *///", "", _read(root, f"core/{folder}/{file}"))
                for key, meaning in re.findall(r"\b(QRX_\w+): ([^;.\n]*)", text):
                    found.setdefault(key, meaning[0].upper() + meaning[1:])
    return found


def page_label(path):
    """By which the reference links to the page of a document: page_getting_started, page_guide_tick_tables."""
    folder = "guide_" if os.path.basename(os.path.dirname(path)) == "guide" else ""
    return "page_" + folder + re.sub(r"\W", "_", os.path.splitext(os.path.basename(path))[0].lower())


def linked_documents(root, folder):
    """The documents of a folder in the order in which the README links them, then those that it does not link."""
    linked = [link for link in dict.fromkeys(re.findall(r"\]\(([\w./-]+\.md)", _read(root, "README.md")))
              if os.path.dirname(link) == folder]
    every = sorted(os.path.join(folder, file) for file in os.listdir(os.path.join(root, folder)) if file.endswith(".md"))
    return linked + [path for path in every if path not in linked and os.path.basename(path) != "README.md"]
