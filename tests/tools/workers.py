#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""workers.py NXTICK: files of several blocks come out as with one worker and as Python's exact decimals say."""
import decimal
import os
import random
import re
import subprocess
import sys
import tempfile

TICK = decimal.Decimal("0.05")


def prices(count, distinct):
    return [f"{random.randrange(distinct) / 100:.2f}" for _ in range(count)]


def rows(kind, count=30000):
    """The lines of a file: prices that repeat and that do not, rejected rows, quotes in all rows and in one late row."""
    repeat = prices(count, 300) if kind != "random" else prices(count, 10**9)
    lines = [f"{random.choice(['NFX_1', 'EURONEXT_07', 'none'])},{price},x" for price in repeat]
    if kind == "quoted":
        lines = [line.replace(",x", ',"a ""b"", c"') for line in lines]
        lines[::7] = ['T,"1.23","two\nlines"'] * len(lines[::7])
    if kind == "mixed":
        lines[::50] = ["too,short"] * len(lines[::50])
        lines[1::70] = ["T,no price,x\r"] * len(lines[1::70])
        lines[2::90] = [""] * len(lines[2::90])
        lines[count * 3 // 4] = 'T,"1.23","a line\nend"'
    if kind == "open":
        lines[count * 3 // 4] = 'T,1.23,"never closed'
    return lines


def run(options, workers, name):
    done = subprocess.run([sys.argv[1], *options, "-workers", str(workers), "-csv", name], capture_output=True)
    return done.returncode, done.stdout, re.sub(rb"(time|rows a second) .*|  +", b"", done.stderr)


def check_against_python(text):
    for line in text.splitlines()[1:]:
        price, tick, snapped, moved = (decimal.Decimal(line.split(",")[at]) for at in (1, 3, 4, 5))
        assert tick == TICK and moved == snapped - price, line
        assert snapped == (price / TICK).quantize(1, decimal.ROUND_HALF_UP) * TICK, line


def check_failure_ends_waiting():
    """A full disk ends the run although another worker waits for input."""
    with open("/dev/full", "wb") as full:
        process = subprocess.Popen([sys.argv[1], "-increment", "0.05", "-column", "P", "-workers", "3"],
                                   stdin=subprocess.PIPE, stdout=full, stderr=subprocess.PIPE)
        try:
            process.stdin.write(("T,P,x\n" + "\n".join(rows("random")) + "\n").encode())
            process.stdin.flush()
        except BrokenPipeError:
            pass
        assert process.wait(timeout=250) == 2 and b"No space left" in process.stderr.read()


def main():
    random.seed(20261122)
    os.chdir(tempfile.mkdtemp())
    snap = ["-increment", "0.05", "-column", "P"]
    is_short = "short" in sys.argv[2:]  # the same threads, on fewer files
    for kind in ["repeat", "quoted", "open"] if is_short else ["repeat", "random", "quoted", "mixed", "open"]:
        with open(kind, "w", newline="") as file:
            file.write("T,P,x\n" + "\n".join(rows(kind)))
        every = [snap, ["-table-column", "T", "-column", "P"], snap + ["-check", "-format", "json"],
                 ["-increment", "0.05", "-column", "2", "-no-header"]]
        for options in every[:2] if is_short else every:
            one = run(options, 1, kind)
            several = run(options, 4, kind)
            assert one[0] == several[0] and one[2] == several[2], (kind, options, one[2][-300:], several[2][-300:])
            assert kind == "open" or one[1] == several[1], (kind, options)
            if options == snap and kind in ("repeat", "random"):
                check_against_python(one[1].decode())
    if os.path.exists("/dev/full"):
        check_failure_ends_waiting()


main()
