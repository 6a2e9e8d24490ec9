#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""nxtick.py NXTICK [--rows N] [--runs N] [--json FILE]: snaps a file of prices by nxtick, mawk, Miller and Python's csv.

docs/nxtick-benchmark.json has the figures of the page of benchmarks: write them there, then run benchmarks/report.py.

All of them add the columns tick, snapped and moved for a tick of 0.05 and write to /dev/null; only nxtick is exact. The
runs of all programs alternate. Shown is the median, with the least and the most, and how long two workers take beside one: the
ratio within a run, its median with its quartiles. The file has the seconds of every run in their order, so the page has it too.
"""
import argparse
import json
import os
import platform
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True  # the sources stay as they are
import report

PYTHON = """
import csv, math, sys
rows, out = csv.reader(open(sys.argv[1], newline="")), csv.writer(sys.stdout)
out.writerow(next(rows) + ["tick", "snapped", "moved"])
for row in rows:
    price = float(row[2])
    snapped = math.floor(price / 0.05 + 0.5) * 0.05
    out.writerow(row + ["0.05", "%.2f" % snapped, "%.2f" % (snapped - price)])
"""
AWK = """NR == 1 {print $0 ",tick,snapped,moved"; next}
{snapped = int($3 / 0.05 + 0.5) * 0.05; printf "%s,0.05,%.2f,%.2f\\n", $0, snapped, snapped - $3}"""
MILLER = '$tick = "0.05"; $snapped = fmtnum(roundm($Price, 0.05), "%.2f"); $moved = fmtnum($snapped - $Price, "%.2f")'


def write_file(path, rows, repeats):
    """Prices that never repeat for long, or a walk in cents."""
    random.seed(1)
    cents = 50000
    with open(path, "w") as file:
        file.write("Date,Symbol,Price,Volume\n")
        for _ in range(rows):
            cents = max(1, cents + random.randint(-3, 3)) if repeats else random.randrange(2_000_000)
            file.write(f"2020-04-20,WTI,{cents // 100}.{cents % 100:02d},{random.randrange(5000)}\n")


def contenders(nxtick):
    snap = [nxtick, "-increment", "0.05", "-column", "Price", "-quiet"]
    table = [nxtick, "-table", "EURONEXT_07", "-column", "Price", "-quiet"]
    every = {"nxtick, 1 worker": snap + ["-workers", "1"], "nxtick, 2 workers": snap + ["-workers", "2"],
             "nxtick, 1 worker, table, five columns": table + ["-workers", "1"],
             "nxtick, 2 workers, table, five columns": table + ["-workers", "2"],
             "mawk": ["mawk", "-F,", AWK], "Miller": ["mlr", "--icsv", "--ocsv", "put", MILLER],
             "Python's csv": [sys.executable, "-c", PYTHON]}
    return {name: command for name, command in every.items() if shutil.which(command[0])}


def first_line(command):
    done = subprocess.run(command, capture_output=True, text=True)
    return (done.stdout + done.stderr).splitlines()[0]


def measure(command, path):
    begin = time.monotonic()
    subprocess.run(command + [path], stdout=subprocess.DEVNULL, check=True)
    return time.monotonic() - begin


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("nxtick", type=os.path.abspath)
    parser.add_argument("--rows", type=int, default=10_000_000)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--json")
    options = parser.parse_args()
    programs = contenders(options.nxtick)
    versions = [first_line([options.nxtick, "-version"]), f"Python {sys.version.split()[0]}"]
    versions += [first_line(command) for command in (["mawk", "-W", "version"], ["mlr", "--version"]) if shutil.which(command[0])]
    print("; ".join(versions))
    figures = {}
    with tempfile.TemporaryDirectory() as folder:
        for title, repeats in (("prices that seldom repeat", False), ("prices that repeat", True)):
            path = os.path.join(folder, "prices.csv")
            write_file(path, options.rows, repeats)
            times = {name: [] for name in programs}
            for _ in range(options.runs):
                for name, command in programs.items():
                    times[name].append(measure(command, path))
            print(f"\n{options.rows:,} rows, {title}\n\n| program | seconds | least to most | million rows a second |\n|---|---|---|---|")
            for name, all_times in times.items():
                median = statistics.median(all_times)
                print(f"| {name} | {median:.2f} | {min(all_times):.2f} to {max(all_times):.2f} | {options.rows / median / 1e6:.2f} |")
            for pair, ratio in report.workers(times):
                print(f"{pair}: {ratio}")
            figures[title] = times
    if options.json:
        with open(options.json, "w") as file:
            json.dump({"date": time.strftime("%Y-%m-%d"), "kernel": platform.release(), "processors": os.cpu_count(),
                       "commit": first_line(["git", "-C", os.path.dirname(os.path.abspath(__file__)), "rev-parse", "--short", "HEAD"]),
                       "versions": versions, "rows": options.rows, "seconds": figures}, file, indent=1)
            file.write("\n")


main()
