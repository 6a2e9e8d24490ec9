#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares exactNumbers with Python's fractions: check.py PROGRAM COUNT SEED"""

import math
import random
import subprocess
import sys
from fractions import Fraction

LARGEST = 2**63 - 1
TOO_LARGE, INVALID = "NX_ERR_VALUE_OUT_OF_RANGE", "NX_ERR_INVALID_PARAMETER"
METHODS = {"DOWN": math.floor, "UP": math.ceil,
           "NEAREST": lambda x: sign_of(x) * math.floor(abs(x) + Fraction(1, 2)),
           "MODIFIED_NEAREST": lambda x: sign_of(x) * math.ceil(abs(x) - Fraction(1, 2))}
# Two decimals for a currency without minor units.
TARGETS = {"JPY": 0, "USD": 2, "BHD": 3, "CLF": 4, "XAU": 2}
generator = random.Random(int(sys.argv[3]))


def below(limit):
    """A number of any length up to the limit, often near a power of two or of ten."""
    number = generator.choice((generator.getrandbits(generator.randrange(1, 64)), 10**generator.randrange(19),
                               2**generator.randrange(63) + generator.randrange(-1, 2), limit - generator.randrange(3)))
    return min(number, limit)


def sign():
    return generator.choice((-1, 1))


def sign_of(number):
    return int(math.copysign(1, number))


def ratio():
    return Fraction(sign() * below(LARGEST), max(1, below(LARGEST)))


def decimal(places=18):
    return sign() * below(LARGEST), generator.choice((0, 2, 4, generator.randrange(places + 1)))


def value(number):
    return Fraction(number[0], 10**number[1])


def shown_ratio(number):
    return TOO_LARGE if max(abs(number.numerator), number.denominator) > LARGEST else str(number)


def shown(mantissa, places):
    """The text of mantissa / 10^places with all places."""
    if not -LARGEST - 1 <= mantissa <= LARGEST:
        return TOO_LARGE
    digits = str(abs(mantissa)).rjust(places + 1, "0")
    cut = len(digits) - places
    return ("-" if mantissa < 0 else "") + digits[:cut] + ("." + digits[cut:] if places else "")


def combine():
    name, left, right = generator.choice(("add", "sub", "mul", "div")), ratio(), ratio()
    if generator.random() < 0.3:  # something to cancel
        right = (1 / left if left and abs(left.numerator) <= LARGEST else left) * generator.choice((1, -1, 2))
        right = right if shown_ratio(right) != TOO_LARGE else left
    line = f"{name} {left} {right}"
    if name == "div" and right == 0:
        return line, INVALID
    return line, shown_ratio({"add": left.__add__, "sub": left.__sub__, "mul": left.__mul__,
                              "div": left.__truediv__}[name](right))


def compare():
    left = ratio()
    right = generator.choice((left, ratio(), Fraction(left.numerator, max(1, left.denominator - 1))))
    return f"cmp {left} {right}", str((left > right) - (left < right))


def nearest():
    number = generator.choice((sign() * math.ldexp(generator.random(), generator.randrange(-90, 66)),
                               generator.randrange(-50, 50) / generator.randrange(1, 50), float(ratio())))
    limit = max(1, below(LARGEST))
    found = sign_of(number) * Fraction(abs(number)).limit_denominator(limit)  # ties mirror those above 0
    return f"near {number.hex()} {limit}", "NULL" if shown_ratio(found) == TOO_LARGE else str(found)


def of_decimal():
    number = (sign() * below(LARGEST) // 2**40 * 2**generator.randrange(41), generator.randrange(40))
    return f"dec {number[0]} {number[1]}", shown_ratio(value(number))


def apply():
    factor, number, places = ratio(), decimal(30), generator.randrange(19)
    method = generator.choice(list(METHODS))
    exact = factor * value(number) * 10**places
    return (f"apply {factor} {number[0]} {number[1]} {places} NX_ROUNDING_METHOD_{method}",
            shown(METHODS[method](exact), places))


def split():
    number = decimal()
    weights = [generator.choice((0, below(2**64 - 1), generator.randrange(10))) for _ in range(generator.randrange(8))]
    line = f"split {number[0]} {number[1]} " + " ".join(map(str, weights))
    if sum(weights) == 0:
        return line, INVALID
    units, total = abs(number[0]), sum(weights)
    parts = [units * weight // total for weight in weights]
    for index in sorted(range(len(weights)), key=lambda i: (-(units * weights[i] % total), i))[:units - sum(parts)]:
        parts[index] += 1
    return line, " ".join(shown(part if number[0] > 0 else -part, number[1]) for part in parts)


def convert():
    number, target, method = decimal(), generator.choice(list(TARGETS)), generator.choice(list(METHODS))
    side = generator.choice(("mid", "dealing"))
    exact, words, stations = value(number), [], generator.choice((("AAA", target), ("AAA", "BBB", target)))
    for source, quote in zip(stations, stations[1:]):
        size = generator.choice((10**6, 2**40, LARGEST // 10))
        bid, places = generator.randrange(1, size), generator.choice((4, generator.randrange(19)))
        ask = bid + generator.randrange(bid // 10 + 1)
        units, is_inverse = generator.choice((1, 100, generator.randrange(1, 10**6 + 1))), generator.random() < 0.5
        base, other = (quote, source) if is_inverse else (source, quote)
        words += [base, other, bid, places, ask, places, units]
        takes_bid = (number[0] >= 0) != is_inverse
        cost = Fraction(bid + ask, 2) if side == "mid" else Fraction(bid if takes_bid else ask)
        rate = cost / 10**places / units
        exact = exact / rate if is_inverse else exact * rate
    line = f"conv {number[0]} {number[1]} {target} {side} NX_ROUNDING_METHOD_{method} " + " ".join(map(str, words))
    result = shown(METHODS[method](exact * 10**TARGETS[target]), TARGETS[target])
    return line, result if result == TOO_LARGE else f"{result} {target}"


cases = [generator.choice((combine, compare, nearest, of_decimal, apply, split, convert, convert))()
         for _ in range(int(sys.argv[2]))]
out = subprocess.run([sys.argv[1]], input="\n".join(line for line, _ in cases) + "\n", stdout=subprocess.PIPE,
                     text=True, check=True).stdout.splitlines()
wrong = [f"{line}: {got}, not {wanted}" for (line, wanted), got in zip(cases, out) if got != wanted]
assert len(out) == len(cases), f"{len(out)} results for {len(cases)} lines"
print("\n".join(wrong[:20] + [f"{len(cases)} results, {len(wrong)} wrong, "
                              f"{sum(wanted.startswith('NX_') for _, wanted in cases)} refused"]))
sys.exit(1 if wrong else 0)
