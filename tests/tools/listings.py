#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What nxtick lists for programs, read as JSON and as CSV: listings.py NXTICK"""

import csv
import io
import json
import os
import subprocess
import sys
import tempfile

NXTICK = os.path.abspath(sys.argv[1])
HERE = os.path.dirname(os.path.abspath(__file__))
# A name of a file that no format may be broken by.
HOSTILE = b'own\xff",\x1b\n\\.csv'
SHOWN = HOSTILE.decode("utf-8", "replace")
NO_FACTS = dict.fromkeys("mic venue instruments currency unit valid_from evidence_date looked_up expires note".split())
OWN = [b"-tables", HOSTILE]
# The command, and what its JSON holds; numbers as they are written.
CASES = (
    (["-list", "-filter", "tt_odd", *OWN],
     [{"identifier": "VTT_ODD", "list": "own", "status": "custom", "expired": False, "bands": "2", "smallest_tick": "0.01",
       "largest_tick": "0.03", **NO_FACTS, "source": SHOWN}]),
    (["-table", "TWO", *OWN],
     [{"table": "VTT_TWO", "band": "1", "above": None, "up_to": "10", "tick": "0.01"},
      {"table": "VTT_TWO", "band": "2", "above": "10", "up_to": None, "tick": "0.05"}]),
    (["-increment", "0.050", "-price", "-12.34", "-step", "-1"],
     [{"table": None, "price": "-12.34", "on_grid": False, "tick": "0.050", "below": "-12.350", "above": "-12.300",
       "nearest": "-12.350", "modified_nearest": "-12.350", "rounded_up": "-12.300", "rounded_down": "-12.350", "step": "-1",
       "stepped": "-12.390"}]),
    (["-increment", "0.000000000000000001", "-price", "0.999999999999999999", "-ladder", "1"],
     [{"table": None, "price": price, "tick": "0.000000000000000001", "given": price == "0.999999999999999999", "on_grid": True}
      for price in ("1.000000000000000000", "0.999999999999999999", "0.999999999999999998")]),
    (["-list"], None),
)


def text(value):
    return "" if value is None else str(value).lower() if isinstance(value, bool) else value


def run(command, form):
    return subprocess.run([NXTICK, *command, "-format", form], check=True, capture_output=True).stdout


def main():
    failures = 0
    with tempfile.TemporaryDirectory() as scratch:
        os.chdir(scratch)
        with open(os.path.join(HERE, "own.csv"), "rb") as own, open(HOSTILE, "wb") as copy:
            copy.write(own.read())
        for command, expected in CASES:
            records = json.loads(run(command, "json").decode("utf-8"), parse_float=str, parse_int=str)
            rows = csv.DictReader(io.StringIO(run(command, "csv").decode("utf-8", "replace"), newline=""))
            as_text = [{name: text(value) for name, value in record.items()} for record in records]
            for what, left, right in (("JSON", records, expected or records), ("CSV", list(rows), as_text)):
                if left != right:
                    failures += 1
                    print(f"{command}: {what}: expected\n{right}\ngot\n{left}")
    sys.exit(1 if failures else 0)


main()
