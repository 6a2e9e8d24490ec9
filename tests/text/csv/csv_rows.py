# SPDX-License-Identifier: Apache-2.0
"""Compares the rows that csv_rows finds in random texts with those of Python's csv module."""

import csv
import io
import random
import subprocess
import sys

DIALECTS = [(",", '"'), (";", '"'), ("\t", "'"), (" ", '"'), ("|", None)]


def make_text(rng, separator, quote):
    """Plain and quoted fields, short and long, quotes in wrong places now and then. A CR alone ends a line there, not here."""
    mark = quote or '"'
    plain = ["", "a", "1.5", "\0", "\xff", "b" * rng.randrange(200), mark, "x" + mark + "y"]
    inside = ["a", separator, "\n", "\r\n", mark + mark, "\0", "c" * rng.randrange(90)]
    may_quote = quote is not None and rng.random() < 0.7
    text = ""
    for _ in range(rng.randrange(12)):
        fields = []
        for _ in range(rng.choice([1, 2, 3, 40])):
            if may_quote and rng.random() < 0.3:
                field = mark + "".join(rng.choice(inside) for _ in range(rng.randrange(4)))
                field += mark if rng.random() < 0.98 else ""
                fields.append(field + ("z" + mark if rng.random() < 0.03 else ""))
            else:
                fields.append(rng.choice(plain[:6] if rng.random() < 0.9 else plain))
        text += separator.join(fields) + rng.choice(["\n", "\n", "\r\n", "\n\n", "\n\r\n"])
    return text if rng.random() < 0.5 else text.rstrip("\r\n")


def read(text, separator, quote, strict):
    rows = []
    quoting = csv.QUOTE_NONE if quote is None else csv.QUOTE_MINIMAL
    reader = csv.reader(io.StringIO(text, newline=""), delimiter=separator, quotechar=quote, quoting=quoting, strict=strict)
    try:
        for row in reader:
            rows.append(",".join(field.encode("latin-1").hex() for field in row) if row else "-")
    except csv.Error as error:
        return rows, str(error)
    return rows, ""


def check(text, separator, quote, rows):
    *rows, end = rows
    expected, error = read(text, separator, quote, True)
    if "expected after" in error:  # text after a closing quote is kept, as Python does unless it is strict
        expected = read(text, separator, quote, False)[0]
        return rows == expected if end == "end" else rows == expected[: len(rows)]
    return rows == expected and (end == "error") == (error != "")


def main():
    rng = random.Random(20)
    texts = [(make_text(rng, *dialect), *dialect) for _ in range(300) for dialect in DIALECTS]
    stream = b"".join(b"%d %d %d\n%s" % (len(text), ord(separator), ord(quote or "\0"), text.encode("latin-1"))
                      for text, separator, quote in texts)
    run = subprocess.run([sys.argv[1]], input=stream, stdout=subprocess.PIPE, check=False)
    if run.returncode != 0:
        sys.exit("csv_rows ended with status %d" % run.returncode)
    lines = run.stdout.decode().lower().split("\n")
    begin = 0
    for text, separator, quote in texts:
        last = next(i for i in range(begin, len(lines)) if lines[i] in ("end", "error"))
        if not check(text, separator, quote, lines[begin : last + 1]):
            sys.exit("different: %r %r %r\n%s" % (text, separator, quote, "\n".join(lines[begin : last + 1])))
        begin = last + 1
    print(len(texts), "texts have the same rows")


main()
