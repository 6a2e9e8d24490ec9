#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Proves, for all 64-bit words, what nxDigits says of words of eight digits: words.py [--long]

The formulas are those of core/text/inline/nxDigits.h, the statements are written byte by byte. It needs the module z3 of the
system's own Python and ends with 3 where that is missing. --long adds the proof that takes most of a minute.
"""

import pathlib
import sys
import time

try:
    import z3
except ImportError:
    print("the module z3 is not installed: nothing is proved")
    sys.exit(3)

SOURCE = (pathlib.Path(__file__).resolve().parents[2] / "core/text/inline/nxDigits.h").read_text(encoding="utf-8")


def of_source(text):
    """The formula below stands for this text, which the source must still have."""
    if text not in SOURCE:
        print(f"nxDigits.h no longer has: {text}")
        sys.exit(1)


def byte(word, number):
    return z3.ZeroExt(word.size() - 8, z3.Extract(8 * number + 7, 8 * number, word))


def prove(name, claim):
    solver, start = z3.Solver(), time.monotonic()
    solver.add(z3.Not(claim))
    result = solver.check()
    print(f"{name}: {'proved' if result == z3.unsat else result}, {time.monotonic() - start:.2f} s", flush=True)
    return result == z3.unsat


def lowest_bit_is_first_non_digit(word, found, size):
    """The lowest set bit of `found` is the top bit of the first byte that is no digit; 0 when there is none."""
    parts, digits_before = [], z3.BoolVal(True)
    for number in range(size):
        is_digit = z3.ULE(byte(word, number), 9)
        top = z3.BitVecVal(0x80 << (8 * number), word.size())
        lowest = found & -found
        parts.append(z3.Implies(z3.And(digits_before, z3.Not(is_digit)), lowest == top))
        digits_before = z3.And(digits_before, is_digit)
    return z3.And(z3.Implies(digits_before, found == 0), *parts)


word, four = z3.BitVec("word", 64), z3.BitVec("four", 32)
of_source("((word + 0x7676767676767676) | word) & 0x8080808080808080")
of_source("(((word + 0x76767676) | word) & 0x80808080) == 0")
of_source("(word * 10 + (word >> 8)) & 0x00FF00FF")
of_source("((pairs * 100 + (pairs >> 16)) & 0xFFFF)")
good = prove("FindNonDigit, all 64-bit words", lowest_bit_is_first_non_digit(
    word, ((word + 0x7676767676767676) | word) & 0x8080808080808080, 8))
good &= prove("the test of four digits, all 32-bit words", lowest_bit_is_first_non_digit(
    four, ((four + 0x76767676) | four) & 0x80808080, 4))
pairs = (four * 10 + z3.LShR(four, 8)) & 0x00FF00FF
good &= prove("four digits are gathered, all words of digits", z3.Implies(
    z3.And(*(z3.ULE(byte(four, number), 9) for number in range(4))),
    (pairs * 100 + z3.LShR(pairs, 16)) & 0xFFFF
    == byte(four, 0) * 1000 + byte(four, 1) * 100 + byte(four, 2) * 10 + byte(four, 3)))

if "--long" in sys.argv:
    of_source("word = ((word * ((10 << 8) + 1)) >> 8) & 0x00FF00FF00FF00FF;")
    of_source("word = ((word * ((100 << 16) + 1)) >> 16) & 0x0000FFFF0000FFFF;")
    of_source("return (word * ((std::uint64_t{10000} << 32) + 1)) >> 32;")
    two = z3.LShR(word * ((10 << 8) + 1), 8) & 0x00FF00FF00FF00FF
    both = z3.LShR(two * ((100 << 16) + 1), 16) & 0x0000FFFF0000FFFF
    spelt = sum((byte(word, number) * 10 ** (7 - number) for number in range(8)), z3.BitVecVal(0, 64))
    good &= prove("Gather, all words of digits", z3.Implies(
        z3.And(*(z3.ULE(byte(word, number), 9) for number in range(8))), z3.LShR(both * ((10000 << 32) + 1), 32) == spelt))
sys.exit(0 if good else 1)
