#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Counts the orders in the log files that example_server has left: each must be there exactly once.

    records.py DIRECTORY

Reads every file below the directory: plain files, and those that gzip, xz or zstd has compressed. Lines may have any form
that keeps the text of a record in one piece. The exit code is 0 if every feed has told how many orders it has made, and
each of them was found once.
"""

import gzip
import lzma
import os
import re
import subprocess
import sys

HANDLED = re.compile(rb"feed (\d+) order (\d+) handled")
ENDED = re.compile(rb"feed (\d+) ends after (\d+) orders")


def lines_of(path):
    """The lines of a file, unpacked if it is compressed."""
    if path.endswith(".gz"):
        with gzip.open(path) as file:
            yield from file
    elif path.endswith(".xz"):
        with lzma.open(path) as file:
            yield from file
    elif path.endswith(".zst"):
        with subprocess.Popen(["zstd", "-dcq", path], stdout=subprocess.PIPE) as process:
            yield from process.stdout
    else:
        with open(path, "rb") as file:
            yield from file


class Records:
    """What was found: for each feed how often each of its orders, and how many it says that it has made."""

    def __init__(self):
        self.times = {}
        self.made = {}
        self.files = 0
        self.torn = 0

    def read(self, path):
        self.files += 1
        line = b"\n"
        for line in lines_of(path):
            if handled := HANDLED.search(line):
                times = self.times.setdefault(int(handled[1]), bytearray())
                number = int(handled[2])
                if number >= len(times):
                    times.extend(bytes(number + 1 - len(times)))
                times[number] = min(times[number] + 1, 255)
            elif ended := ENDED.search(line):
                self.made[int(ended[1])] = int(ended[2])
        self.torn += not line.endswith(b"\n")

    def faults(self):
        faults = [] if self.made else ["no feed has told how many orders it has made"]
        if self.torn:
            faults.append(f"{self.torn} files end within a line")
        for feed in sorted(self.times.keys() | self.made.keys()):
            times, made = self.times.get(feed, bytearray()), self.made.get(feed)
            missing = [number for number in range(max(made or 0, len(times))) if number >= len(times) or not times[number]]
            double = [number for number, count in enumerate(times) if count > 1]
            if made is None:
                faults.append(f"feed {feed} has not told how many orders it has made")
            elif len(times) > made:
                faults.append(f"feed {feed} has made {made} orders, and there is one with the number {len(times) - 1}")
            faults += [f"feed {feed}: {len(numbers)} orders {what}, such as {numbers[0]}"
                       for numbers, what in ((missing, "missing"), (double, "more than once")) if numbers]
        return faults


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    records = Records()
    for folder, _, names in os.walk(sys.argv[1]):
        for name in names:
            records.read(os.path.join(folder, name))
    faults = records.faults()
    for fault in faults:
        print(fault)
    print(f"{sum(records.made.values())} orders in {records.files} files")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
