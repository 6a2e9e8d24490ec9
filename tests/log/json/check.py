#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads the lines of jsonLines with Python's json and compares each with what it must hold: check.py PROGRAM COUNT SEED"""

import codecs
import decimal
import json
import subprocess
import sys

# Each byte that belongs to no character is one U+FFFD.
codecs.register_error("each", lambda error: ("\ufffd" * (error.end - error.start), error.end))


def pairs(members):
    assert len({name for name, _ in members}) == len(members), f"a name twice: {members}"
    return dict(members)


def expected_members(line):
    """In order, with the number that a name gets when it is taken."""
    counts = dict.fromkeys(("time", "level", "thread", "processor", "cut"), 1)
    for word in line.split():
        name, value = word.split("=", 1)
        counts[name] = counts.get(name, 0) + 1
        kind, text = value.split(":", 1)
        yield name if counts[name] == 1 else f"{name}#{counts[name]}", kind, text


def is_right(kind, text, value):
    if kind == "t":
        return value == bytes.fromhex(text).decode("utf-8", "each")
    if kind == "n":
        # Doubles have fewer digits where these suffice; all else has its own.
        return isinstance(value, (int, decimal.Decimal)) and (str(value) == text or float(value) == float(text))
    return value is {"true": True, "false": False, "null": None}[text]


out = subprocess.run(sys.argv[1:], stdout=subprocess.PIPE, check=True).stdout
rows = out.split(b"\n")[:-1]
assert len(rows) == 2 * int(sys.argv[2]), "a record is not one line"
for wanted, line in zip(rows[::2], rows[1::2]):
    assert not any(byte < 0x20 or byte == 0x7F for byte in line.rstrip(b"\r")), line
    members = json.loads(line.decode("utf-8"), object_pairs_hook=pairs, parse_float=decimal.Decimal)
    assert members.pop("time") == "2024-03-05T09:07:03.123456Z" and members.pop("level") == "WRN", line
    assert members.pop("thread") == 0
    for name, kind, text in expected_members(wanted.decode()):
        assert is_right(kind, text, members.pop(name)), f"{name}: not {kind}:{text} in {line}"
    assert not members, f"{members} in {line}"
