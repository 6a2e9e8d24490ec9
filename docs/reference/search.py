#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Lets the search of the reference find the tick tables, which are headings: search.py HTML_FOLDER"""

import os
import re
import sys


def main():
    folder = sys.argv[1]
    page = "page_tick_tables.html"
    with open(os.path.join(folder, page), encoding="utf-8") as file:
        tables = sorted(set(re.findall(r'id="page_tick_tables_(vtt_\w+)"', file.read())))
    with open(os.path.join(folder, "search", "searchdata.js"), encoding="utf-8") as file:
        letters = re.search(r'0: "([^"]*)"', file.read()).group(1)
    # One file for each first letter that names of the reference have.
    path = os.path.join(folder, "search", f"all_{letters.index('v'):x}.js")
    with open(path, encoding="utf-8") as file:
        entries = file.read()
    count = entries.count("\n  [")
    added = [f"  ['{table.replace('_', '_5f')}_{count + at}',['{table.upper()}',['../{page}#page_tick_tables_{table}',1,'Tick tables']]]"
             for at, table in enumerate(tables)]
    with open(path, "w", encoding="utf-8") as file:
        file.write(entries.rstrip().removesuffix("];").rstrip() + ",\n" + ",\n".join(added) + "\n];\n")


if __name__ == "__main__":
    main()
