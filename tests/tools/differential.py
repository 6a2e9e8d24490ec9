#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""differential.py NXTICK: reads random files by nxtick and by Python's csv module, and compares the prices they find."""
import csv
import io
import random
import re
import subprocess
import sys

PRICE = re.compile(r"[ \t]*[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)[ \t]*")


def random_file(separator, quote):
    pieces = [separator, separator, quote or '"', quote or '"', "\n", "\n", "\r\n", "1", "2.5", ".5", "a", " ", "é"]
    rows = "".join(random.choice(pieces) for _ in range(random.randrange(400)))
    return f"h1{separator}P{separator}h3\n" + rows


def expected(text, separator, quote):
    """The price of each row that has one, or None where Python finds a quote that is never closed."""
    dialect = {"delimiter": separator, "quotechar": quote or '"', "quoting": csv.QUOTE_MINIMAL if quote else csv.QUOTE_NONE}
    rows = list(csv.reader(io.StringIO(text, newline=""), **dialect))[1:]
    return [row[1] if len(row) == 3 and PRICE.fullmatch(row[1]) else "" for row in rows if row]


def is_open(text, separator, quote):
    """Whether the last field opens a quote: a sentinel at the end would then be inside it."""
    reader = csv.reader(io.StringIO(text + "\n@", newline=""), delimiter=separator, quotechar=quote)
    return bool(quote) and list(reader)[-1][0] != "@"


def main():
    random.seed(20261122)
    compared = 0
    for separator in ",;\t|":
        for quote in ['"', "'", None]:
            for _ in range(12):
                text = random_file(separator, quote)
                run = subprocess.run([sys.argv[1], "-increment", "0.1", "-column", "P", "-add", "snapped", "-quiet", "-separator",
                                      separator, "-quote", quote or "none"], input=text.encode(), capture_output=True)
                if is_open(text, separator, quote):
                    assert run.returncode == 2 and b"never closed" in run.stderr, (text, run)
                    continue
                assert run.returncode < 2, (text, run)
                dialect = {"delimiter": separator, "quotechar": quote or '"',
                           "quoting": csv.QUOTE_MINIMAL if quote else csv.QUOTE_NONE}
                rows = list(csv.reader(io.StringIO(run.stdout.decode(), newline=""), **dialect))[1:]
                found = [row[-1] for row in rows if row]
                wanted = [price and f"{float(price):.1f}" for price in expected(text, separator, quote)]
                assert found == wanted, (text, found, wanted)
                compared += len(found)
    assert compared > 1000, compared


main()
