#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the price converters with rows.txt, VERB|NOTATION|TEXT OR PRICE|ANSWER, and with a model that calculates with
fractions: notations.py PROGRAM SEED"""

import os
import random
import re
import subprocess
import sys
from fractions import Fraction

MALFORMED, OUTSIDE = "NX_ERR_INVALID_PARAMETER", "NX_ERR_VALUE_OUT_OF_RANGE"


def places_of(number):
    """Decimal places that the number needs; None for more than any number here has."""
    return next((n for n in range(60) if 10 ** n % number.denominator == 0), None)


def decimal(number, places):
    places = max(places, places_of(number))
    digits = str(abs(int(number * 10 ** places))).zfill(places + 1)
    sign = "-" if number < 0 else ""
    return sign + (digits[:-places] + "." + digits[-places:] if places else digits)


def stored(number, places):
    """The price as it is kept, or the error."""
    needed = places_of(number)
    if needed is None or needed > 18:
        return OUTSIDE
    places = max(places, needed)
    return decimal(number, places) if -2 ** 63 <= number * 10 ** places < 2 ** 63 else OUTSIDE


def signed(text):
    sign = -1 if text[:1] == "-" else 1
    return sign, text[1:] if text[:1] in ("-", "+") else text


class Fractions:
    def __init__(self, main, sub, count, numerals, mark):
        self.main, self.sub, self.count, self.mark = main, sub, count, mark
        self.width = len(str(main - 1))
        self.parts = [""] if sub == 1 else [
            "+" if numerals and 2 * i == sub else str(i if numerals else 10 ** count * i // sub).zfill(count)
            for i in range(sub)]
        self.read_as = {text: i for i, text in enumerate(self.parts)}
        self.read_as[""] = 0
        if numerals and sub % 2 == 0:
            self.read_as[str(sub // 2).zfill(count)] = sub // 2
        self.numerals = numerals
        self.tick = Fraction(1, main * sub)
        self.places = places_of(self.tick)
        self.is_valid = (2 <= main and main * sub <= 1024 and self.places is not None and
                         len(set(self.parts)) == sub and max(map(len, self.parts)) <= count)

    def read(self, text):
        sign, text = signed(text)
        digits = r"\d{%d}" % self.count if self.sub > 1 else ""
        part = "(?:" + digits + (r"|\+" if self.numerals else "") + ")?"
        match = re.fullmatch(r"(\d+)%s(\d{%d})(?:\.(\d+)|(%s))" % (re.escape(self.mark), self.width, part), text)
        if not match:
            return MALFORMED
        whole, numerator, decimals, part = match.groups()
        if int(numerator) >= self.main or (part or "") not in self.read_as:
            return OUTSIDE
        fraction = Fraction(int(numerator)) + (
            Fraction(int(decimals), 10 ** len(decimals)) if decimals else Fraction(self.read_as[part], self.sub))
        return stored(sign * (int(whole) + fraction / self.main), self.places)

    def write(self, price):
        whole, rest = divmod(abs(price), 1)
        steps = rest / self.tick
        if steps.denominator == 1:
            numerator, part = divmod(int(steps), self.sub)
            tail = str(numerator).zfill(self.width) + self.parts[part]
        else:
            numerator, rest = divmod(rest * self.main, 1)
            tail = str(numerator).zfill(self.width) + decimal(rest, 0)[1:]
        return ("-" if price < 0 else "") + str(whole) + self.mark + tail


class Decimals:
    def __init__(self, places, shift, tick):
        self.shown, self.scale, self.tick = places, Fraction(10) ** shift, tick or Fraction(10) ** -(places + shift)
        self.has_tick = tick is not None
        self.places = max(0, places + shift, places_of(self.tick))
        self.is_valid = self.tick * self.scale >= Fraction(10) ** -places

    def read(self, text):
        sign, text = signed(text)
        match = re.fullmatch(r"(\d*)(?:\.(\d*))?", text)
        if not match or not any(match.groups()):
            return MALFORMED
        decimals = match[2] or ""
        number = Fraction(int(match[1] + decimals), 10 ** len(decimals)) / self.scale
        if self.has_tick and len(decimals) < self.shown:
            return MALFORMED
        if self.has_tick and len(decimals) == self.shown:
            count = -(-number // self.tick)
            if count * self.tick >= number + Fraction(10) ** -self.shown / self.scale:
                return OUTSIDE
            number = count * self.tick
        return stored(sign * number, self.places)

    def write(self, price):
        number, on_grid = price * self.scale, (price / self.tick).denominator == 1
        if self.has_tick and on_grid:
            unit = Fraction(10) ** -self.shown
            return ("-" if price < 0 else "") + decimal(abs(number) // unit * unit, self.shown)
        return decimal(number, self.shown + self.has_tick)


def model_of(notation):
    match = re.fullmatch(r"DECIMAL:(\d+)(?:\*(-?\d+))?(?:/([\d.]+))?", notation)
    if match:
        return Decimals(int(match[1]), int(match[2] or 0), match[3] and Fraction(match[3]))
    match = re.fullmatch(r"FRACTION:(\d+)(.?)", notation)
    if match:
        return Fractions(int(match[1]), 1, 0, False, match[2] or "'")
    main, sub, count, plus, mark = re.fullmatch(r"MODIFIED:(\d+)/(\d+)(?:/(\d))?(\+?)(.?)", notation).groups()
    return Fractions(int(main), int(sub), int(count or 1), bool(plus), mark or "'")


def constructions():
    """Every notation of fractions up to some bounds, and what it is, a tick or an error."""
    mains = [*range(1, 41), 50, 64, 100, 128, 256, 512, 625, 1000, 1024, 1025]
    subs = [2, 3, 4, 5, 8, 10, 16, 20, 25, 32, 40, 50, 64, 100, 128]
    notations = ["FRACTION:%d" % main for main in mains]
    notations += ["MODIFIED:%d/%d%s" % (main, sub, end) for main in mains for sub in subs for end in ("", "/2", "+")]
    for notation in notations:
        model = model_of(notation)
        yield "tick", notation, "", decimal(model.tick, 0) if model.is_valid else OUTSIDE


def conversions(notation, rng):
    model = model_of(notation)
    prices = [model.tick * i for i in range(-60, 61)]
    prices += [model.tick * i for i in rng.sample(range(10 ** 9), 20)]
    prices += [Fraction(rng.randrange(-10 ** digits, 10 ** digits), 10 ** rng.randrange(19))
               for digits in range(1, 19) for _ in range(8)]
    if isinstance(model, Fractions):  # one unit of the main fraction, and one whole
        prices += [model.tick * i for i in range(-model.main * model.sub, model.main * model.sub + 1)]
    texts = []
    for price in prices:
        text = model.write(price)
        kept = decimal(price, 0)
        on_grid = "on" if (price / model.tick).denominator == 1 else "off"
        yield "write", notation, kept, text + " " + on_grid
        assert model.read(text) in (stored(price, model.places), OUTSIDE), (notation, text)
        texts += [text, text[:-1], text + rng.choice("0123456789.+'- "),
                  text.replace(rng.choice("0123456789"), rng.choice("0123456789+.'"), 1)]
    for text in texts:
        yield "read", notation, text, model.read(text)


def main():
    rng = random.Random(int(sys.argv[2]))
    notations = ["FRACTION:8", "FRACTION:32", "FRACTION:64-", "FRACTION:128", "FRACTION:25.", "FRACTION:1000",
                 "MODIFIED:32/2", "MODIFIED:32/4", "MODIFIED:32/8", "MODIFIED:32/8+-", "MODIFIED:32/4/2",
                 "MODIFIED:32/16/2", "MODIFIED:64/16/2+", "MODIFIED:32/5+", "MODIFIED:8/5",
                 "DECIMAL:0", "DECIMAL:2", "DECIMAL:2*-2", "DECIMAL:5*3", "DECIMAL:3/0.0025", "DECIMAL:4/0.00025",
                 "DECIMAL:2/0.05", "DECIMAL:0/2.5", "DECIMAL:0*-2/250", "DECIMAL:1*-1/2.5", "DECIMAL:2*1/0.0015"]
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "rows.txt"), encoding="ascii") as file:
        rows = [tuple(line.rstrip("\n").split("|")) for line in file]
    rows += constructions()
    for notation in notations:
        rows += conversions(notation, rng)
    lines = "".join("%s\t%s\t%s\n" % row[:3] for row in rows)
    answers = subprocess.run([sys.argv[1]], input=lines, stdout=subprocess.PIPE, check=True, text=True).stdout
    answers = answers.split("\n")[:-1]
    wrong = [(row, answer) for row, answer in zip(rows, answers) if row[3] != answer]
    for row, answer in wrong[:20]:
        print("%s %r %r: expected %s, got %s" % (*row, answer))
    print("%d lines, %d wrong" % (len(rows), len(wrong)))
    return 1 if wrong or len(answers) != len(rows) or len(rows) < 50000 else 0


sys.exit(main())
