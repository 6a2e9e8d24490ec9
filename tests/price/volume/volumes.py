#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the volume converters with rows.txt, VERB KIND FORM TEXT ANSWER, and with a model that calculates with fractions:
volumes.py PROGRAM SEED"""

import os
import random
import re
import subprocess
import sys
from fractions import Fraction

MALFORMED, OUTSIDE, NO_MATCH = "NX_ERR_INVALID_PARAMETER", "NX_ERR_VALUE_OUT_OF_RANGE", "NX_ERR_NO_MATCH"
LARGEST = 2 ** 64 - 3
POWERS = {"K": {"K": 3, "M": 6, "B": 9, "T": 12}, "M": {"M": 3, "MM": 6}, "e": {}}


def decimal(number, places):
    digits = str(int(number * 10 ** places)).zfill(places + 1)
    return digits[:-places] + "." + digits[-places:] if places else digits


class Volumes:
    def __init__(self, kind, form):
        self.minimum, self.maximum, self.places, lot = 0, LARGEST, 0, 1
        if "," in kind:
            lot, self.minimum, maximum = map(int, kind.split(","))
            self.maximum = maximum or LARGEST
        elif kind != "plain":
            self.places = int(kind)
        self.unit = Fraction(lot, 10 ** self.places)
        self.powers, self.shown = POWERS[form[0]], int(form[1:]) if form[1:].isdigit() else 0

    def units(self, number):
        if number < 0 or (number * 10 ** max(places_of(number), 0)) >= 2 ** 128:
            return OUTSIDE
        count = number / self.unit
        if count.denominator != 1:
            return NO_MATCH
        return str(count) if count == 0 or self.minimum <= count <= self.maximum else OUTSIDE

    def read(self, text):
        match = re.fullmatch(r"([+-]?)(\d*)(?:\.(\d*))?([A-Za-z]*)", text)
        if not match or not (match[2] or match[3]):
            return MALFORMED
        suffix = match[4] if match[4] in (match[4].lower(), match[4].upper()) else "?"
        power = self.powers.get(suffix.upper())
        if suffix and power is None:
            return MALFORMED
        decimals = match[3] or ""
        number = Fraction(int(match[2] + decimals), 10 ** len(decimals)) * 10 ** (power or 0)
        return self.units(-number if match[1] == "-" else number)

    def quantity(self, units):
        number = units * self.unit
        for places in range(self.places, -1, -1):
            if (number * 10 ** places).denominator != 1:
                break
            if number * 10 ** places < 2 ** 63:
                return decimal(number, places)
        return OUTSIDE

    def write(self, units):
        number = units * self.unit
        if not self.powers:
            return decimal(number, self.places)
        suffix, power = "", 0
        for name, exponent in self.powers.items():
            if number >= 10 ** exponent:
                suffix, power = name, exponent
        number /= 10 ** power
        if number == 0:
            return "0"
        digits = 0  # decimals up to the last digit that is shown
        while number * 10 ** digits < 10 ** (self.shown - 1):
            digits += 1
        text = decimal(number, digits)
        return (text.rstrip("0").rstrip(".") if "." in text else text) + suffix


def places_of(number):
    """Decimal places that the number needs."""
    return next(n for n in range(200) if 10 ** n % number.denominator == 0)


def conversions(kind, form, rng):
    model = Volumes(kind, form)
    units = [0, 1, 9, 10, 99, 999, 1000, 1001, 999999, 10 ** 6, 10 ** 12, 10 ** 19, LARGEST, 2 ** 63 // 100]
    units += [rng.randrange(10 ** rng.randrange(1, 20)) for _ in range(100)]
    for count in units:
        yield "write", count, model.write(count)
        yield "quantity", count, model.quantity(count)
        text = model.write(count)
        number = decimal(count * model.unit, model.places)
        yield "read", number, model.read(number)
        letter = rng.choice("0123456789.+-KMBTkmbt0MMmm")
        at = rng.randrange(len(text) + 1)
        for changed in (text, text[:-1] or "-", text[:at] + letter + text[at:], rng.choice("+-") + text + "0" * rng.randrange(30),
                        "0" * rng.randrange(50) + number, text + letter, text + rng.choice(["K", "M", "MM", "Mm", "B", "T"])):
            yield "read", changed, model.read(changed)
        places = rng.randrange(19)
        mantissa = rng.randrange(-10 ** 3, 10 ** rng.randrange(4, 19))
        quantity = decimal(Fraction(abs(mantissa), 10 ** places), places)
        yield "units", ("-" if mantissa < 0 else "") + quantity, model.units(Fraction(mantissa, 10 ** places))


def main():
    rng = random.Random(int(sys.argv[2]))
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "rows.txt"), encoding="ascii") as file:
        rows = [tuple(line.split()) for line in file]
    for kind in ("plain", "1,1,0", "100,1,0", "100,5,2000", "18446744073709551615,1,0", "7,0,3", "1", "3", "8", "18"):
        for form in ("exact", "K4", "M4", "K1", "K30"):
            rows += [(verb, kind, form, str(text), answer) for verb, text, answer in conversions(kind, form, rng)]
    lines = "".join(" ".join(row[:4]) + "\n" for row in rows)
    answers = subprocess.run([sys.argv[1]], input=lines, stdout=subprocess.PIPE, check=True, text=True).stdout
    answers = answers.split("\n")[:-1]
    wrong = [(row, answer) for row, answer in zip(rows, answers) if row[4] != answer]
    for row, answer in wrong[:20]:
        print("%s %s %s %r: expected %s, got %s" % (*row, answer))
    print("%d lines, %d wrong" % (len(rows), len(wrong)))
    return 1 if wrong or len(answers) != len(rows) or len(rows) < 50000 else 0


sys.exit(main())
