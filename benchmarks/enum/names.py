#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the names that the enumeration benchmark looks up, and the gperf input for each table size.

    names.py ERROR_CODES_INC OUTPUT_FOLDER

The first names are the library's own error codes; the rest are made of the same words, as an application's would be.
names.inc has one NX_BENCHMARK_NAME(index, value, "name") a line; names_<count>.gperf holds the first <count> of them.
"""

import os
import random
import re
import sys

COUNTS = (600, 4000)
FIRST_OWN_VALUE = 5000001


def names(codes):
    words = sorted({word for _, name in codes for word in name.split("_")[2:]})
    source = random.Random(1)
    made = [(int(value), name) for value, name in codes]
    seen = {name for _, name in codes}
    while len(made) < max(COUNTS):
        name = "MY_APP_" + "_".join(source.choice(words) for _ in range(source.randint(2, 5)))
        if len(name) <= 64 and name not in seen:
            seen.add(name)
            made.append((FIRST_OWN_VALUE + len(made), name))
    return made


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        made = names(re.findall(r"NX_ERROR_CODE\(\s*(\d+),\s*(\w+)", file.read()))
    folder = sys.argv[2]
    with open(os.path.join(folder, "names.inc"), "w", encoding="utf-8") as file:
        for index, (value, name) in enumerate(made):
            file.write(f'NX_BENCHMARK_NAME({index}, {value}, "{name}")\n')
    for count in COUNTS:
        with open(os.path.join(folder, f"names_{count}.gperf"), "w", encoding="utf-8") as file:
            file.write("%struct-type\n%language=C++\n%compare-strncmp\n%readonly-tables\n"
                       f"%define class-name Gperf{count}\n%define lookup-function-name Find\n"
                       f"struct GperfName{count} {{ const char* name; unsigned value; }};\n%%\n")
            file.writelines(f"{name}, {value}u\n" for value, name in made[:count])
            file.write("%%\n")


if __name__ == "__main__":
    main()
