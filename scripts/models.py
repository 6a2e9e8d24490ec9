#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks the models (*.pml) beside the sources that they stand for, with spin and a C compiler.

    scripts/models.py [--long] [--jobs N] [NAME...]

The head of a model has one line for each check: "// RUN holds -DOPTION..." or "// RUN violated -DOPTION...", where violated means
that a fault was put in on purpose and must be found. Lines with LONG are checked with --long only; all of them together take
minutes and up to --memory mebibytes. A file without such lines is a part that models include. NAME chooses models by a part of
their path. Every check ends with its states and its seconds; the exit status is 0 when all ended as they should, 1 when not, and
3 when spin is not installed.
"""

import argparse
import concurrent.futures
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent

# A small check spends most of its time in the compiler, where clang needs half of what gcc needs, and in memory that the search
# clears before it starts.
QUICK_COMPILER = shutil.which("clang") or shutil.which("cc") or "gcc"
QUICK_LIMITS = ["-m200000", "-w20"]  # depth, and the size of the table of states as a power of two
LARGE_COMPILER = shutil.which("cc") or "gcc"
LARGE_LIMITS = ["-m2000000", "-w24"]


def checks(model, long):
    """The checks that the head of a model names: (what is expected, options)."""
    lines = re.findall(r"^// (RUN|LONG) +(holds|violated) +(.*)$", model.read_text(encoding="utf-8"), re.M)
    return [(expected, options.split()) for kind, expected, options in lines if kind == "RUN" or long]


def check(model, expected, options, memory, long):
    """@return the outcome ("holds", "violated" or what went wrong), the states and the seconds."""
    with tempfile.TemporaryDirectory() as folder:
        made = subprocess.run(["spin", "-a", *options, model], cwd=folder, capture_output=True, text=True)
        if made.returncode != 0 or not pathlib.Path(folder, "pan.c").exists():
            return "no model: " + (made.stdout + made.stderr).strip(), "", ""
        # Most checks take less time than an optimising compiler would.
        isLarge = long and expected == "holds"
        compiler = [LARGE_COMPILER, "-O2"] if isLarge else [QUICK_COMPILER, "-O0"]
        flags = ["-w", "-DSAFETY", "-DCOLLAPSE", "-DVECTORSZ=2048", f"-DMEMLIM={memory}"]
        subprocess.run([*compiler, *flags, "-o", "pan", "pan.c"], cwd=folder, check=True)
        limits = LARGE_LIMITS if long else QUICK_LIMITS
        text = subprocess.run(["./pan", *limits], cwd=folder, capture_output=True, text=True).stdout
    states = re.search(r"^\s*([\d.e+]+) states, stored", text, re.M)
    seconds = re.search(r"elapsed time ([\d.e+-]+)", text)
    errors = re.search(r"errors: (\d+)", text)
    cut = "max search depth too small" in text or "out of memory" in text or "memory usage limit" in text
    if errors is None:
        outcome = "no result"
    elif errors.group(1) != "0":
        outcome = "violated"
    else:
        outcome = "not searched to the end" if cut or "Search not completed" in text else "holds"
    return outcome, states.group(1) if states else "", seconds.group(1) if seconds else ""


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--memory", type=int, default=3000)
    parser.add_argument("names", nargs="*")
    asked = parser.parse_args()
    if shutil.which("spin") is None:
        print("spin is not installed: the models are not checked")
        return 3

    models = [path for path in sorted(ROOT.glob("core/**/*.pml"))
              if not asked.names or any(name in str(path.relative_to(ROOT)) for name in asked.names)]
    jobs = [(model, expected, options) for model in models for expected, options in checks(model, asked.long)]
    good = bool(jobs)
    with concurrent.futures.ThreadPoolExecutor(asked.jobs) as pool:
        results = [pool.submit(check, model, expected, options, asked.memory, asked.long) for model, expected, options in jobs]
        for (model, expected, options), result in zip(jobs, results):
            outcome, states, seconds = result.result()
            isGood = outcome == expected
            good = good and isGood
            print(f"{'ok  ' if isGood else 'FAIL'} {model.stem} {' '.join(options)}: {outcome}, {states} states, {seconds} s"
                  + ("" if isGood else f"; expected: {expected}"), flush=True)
    return 0 if good else 1


sys.exit(main())
