#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the pages of the reference that list constants: pages.py FOLDER

They are made whenever the reference is, so that what the library's lists say is nowhere said twice.
"""

import os
import sys

import lists

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def table(head, rows):
    return "\n".join(["| " + " | ".join(head) + " |", "|" + "---|" * len(head)] +
                     ["| " + " | ".join(cell.replace("|", "&#124;") for cell in row) + " |" for row in rows]) + "\n"


def common_prefix(identifiers):
    """What the identifiers of a group begin with, up to an underscore: NX_ERR_DB_."""
    prefix = os.path.commonprefix(identifiers)
    return prefix[:prefix.rfind("_") + 1]


def error_codes():
    groups = lists.error_codes(ROOT)
    count = sum(len(group) for group in groups)
    parts = [f"# Error codes {{#error_codes}}\n\nThe {count} codes of #nxErrorEnum, in the groups of their list. 0 is success. "
             "The name is also the short description, which `SetFromString` reads; the wording is the long description. Neither "
             "is ever changed, odd spellings included, because users' files and support desks know them. [Errors](@ref page_guide_errors) "
             "explains how to return and test them.\n"]
    for group in groups:
        prefix = common_prefix([identifier for _, identifier, _ in group])
        title = f"{group[0][0]} to {group[-1][0]}" if len(group) > 1 else group[0][0]
        title += f": {prefix}..." if prefix not in ("", "NX_ERR_") and len(group) > 1 else ""
        parts.append(f"## {title} {{#errors_{group[0][0]}}}\n\n" +
                     table(("Value", "Name", "Wording"),
                           [(value, f"@ref {identifier}", wording) for value, identifier, wording in group]))
    return "\n".join(parts)


def enumerations():
    parts = ["# Enumerations {#enumerations}\n\nThe constants of the small enumeration classes. The identifier is the short "
             "description, which `SetFromString` reads; the wording is the long description. Classes own disjoint intervals "
             "of one numbering. [Error codes](@ref error_codes) has the constants of #nxErrorEnum.\n"]
    for name, rows in lists.enumerations(ROOT):
        title = f"{name} {{#values_{name}}}\n\n#{name}:" if name else "Shared by every class {#values_shared}"
        parts.append(f"## {title}\n\n" + table(("Constant", "Value", "Identifier", "Wording"),
                                               [(f"@ref {constant}", value, f"`{identifier}`", wording)
                                                for constant, value, identifier, wording in rows]))
    return "\n".join(parts)


def bit_masks():
    masks = lists.masks(ROOT)
    parts = [f"# Flags of the bit masks {{#bit_masks}}\n\nThe flags of the {len(masks)} mask classes. The identifier is the short "
             "description, the wording the long one. @ref bitmasks lists the classes, and nxBitMask explains null and \"no "
             "change\".\n"]
    for name, rows in masks.items():
        parts.append(f"## {name} {{#flags_{name}}}\n\n#{name}:\n\n" +
                     table(("Constant", "Bit", "Value", "Identifier", "Wording"),
                           [(f"@ref {name}::{constant} \"{constant}\"", bit_text(value), f"{value:#x}", f"`{identifier}`", wording)
                            for constant, _, value, identifier, wording in rows]))
    return "\n".join(parts)


def bit_text(value):
    return str(value.bit_length() - 1) if value & (value - 1) == 0 and value else "several" if value else "none"


def configuration_keys():
    groups, readers, meanings = lists.keys(ROOT), lists.key_readers(ROOT), lists.key_meanings(ROOT)
    count = sum(len(group) for _, group in groups)
    parts = [f"# Configuration keys {{#configuration_keys}}\n\nThe names of the {count} environment settings of the applications, "
             "each a constant of core/app/nxConfigurationKeys.h. They are all here so that applications share one spelling and a "
             f"mistyped key does not compile. The library itself reads the {len(readers)} keys of the first table; for the others "
             "the application that reads a key decides on its meaning and its default. [Options](@ref page_guide_options) shows how to "
             "read them.\n\n## Read by the library {#keys_of_the_library}\n\n" +
             table(("Key", "Read by", "Meaning"),
                   [(f"@ref {key}", f"#{readers[key]}", meanings.get(key, "")) for key in sorted(readers)])]
    for name, group in groups:
        title = "Other keys" if name == "Others" else f"QRX_{name}..."
        rest = [key for key in group if key not in readers]
        if rest:
            parts.append(f"## {title} {{#keys_{name}}}\n\n" + "\n".join(f"- @ref {key}" for key in rest) + "\n")
    return "\n".join(parts)


def contents(title, label, text, labels):
    return f"# {title} {{#{label}}}\n\n{text}\n\n" + "".join(f"- @subpage {page}\n" for page in labels)


def guide():
    return contents("Guide", "guide", "What the library offers, by subject, in reading order. The C++ blocks are compiled and run "
                    "by the tests.", [lists.page_label(path) for path in lists.linked_documents(ROOT, "docs/guide")])


def constants():
    return contents("Constants", "constants", "Every name that the library defines as data. The search finds each of them.",
                    ["error_codes", "enumerations", "bit_masks", "configuration_keys", "page_tick_tables", "page_tick_tables_today"])


def project():
    documents = lists.linked_documents(ROOT, "docs") + lists.linked_documents(ROOT, "")
    return contents("Project", "project", "How the library is built, measured and maintained.",
                    [lists.page_label(path) for path in documents if not path.endswith(("/tick-tables.md", "/tick-tables-today.md"))])


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    for name, make in (("error-codes", error_codes), ("enumerations", enumerations), ("bit-masks", bit_masks),
                       ("configuration-keys", configuration_keys), ("guide", guide), ("constants", constants), ("project", project)):
        with open(os.path.join(folder, name + ".md"), "w", encoding="utf-8") as file:
            file.write(make())


if __name__ == "__main__":
    main()
