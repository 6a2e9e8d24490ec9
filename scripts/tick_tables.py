#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Looks after data/tick-tables: the tick tables in force today, and those that are held back.

    scripts/tick_tables.py check                    every rule below, for both lists
    scripts/tick_tables.py expired [--today DAY]    the tables of today that are past their day; ends with 1 if there are any
    scripts/tick_tables.py steps NXTICK [--today DAY]
                                                    what the program answers at every price where the tick changes
    scripts/tick_tables.py page [--check FILE]      writes docs/tick-tables-today.md, or compares it

--data FOLDER looks after the files of another folder.

Each list is two files. tick-tables-LIST.csv has the bands, as nxtick -tables and nxCustomVariableTickTable read them.
tick-tables-LIST-sources.csv has one row for each table:

    price_basis     the price that chooses the tick: order (the order's own), reference (another one, such as the last
                    close), or fixed (one tick)
    at_bound        the tick of a price exactly where the tick changes, in the words of the exchange: upper, lower, mixed,
                    open (not said), or none (one tick). The bound in the file is one lower tick below that price in any
                    case, because the price is a multiple of both ticks. Bounds of a reference price are the rule's own.
    checked_on      the day on which the sources were looked up
    expires_on      the day up to which that look-up counts: at most 180 days for published, 90 for secondary and 30 for
                    single, and earlier where a change was announced
    evidence_date   the day that the newest source speaks of; evidence_kind says whether the source states it (stated), it
                    follows from what the source describes (inferred), or there is none (none)
    status          published (the exchange's or regulator's own text), secondary (two independent public pages or more)
                    or single (one page)
    sources         separated by " | "

A table is among those of today only if its status is published or secondary, the order's own price chooses the tick, it
was not expired when it was looked up, and its newest evidence is at most eight years old. No rule depends on today's date,
so a table that expires breaks no build. All arithmetic is on integers.
"""

import csv
import datetime
import json
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "data", "tick-tables")
CATALOGUE = os.path.join(ROOT, "core", "price", "nxTickTables.inc")
LISTS = ("today", "held-back")
HEADER = "name,band,upper_bound,increment".split(",")
FIELDS = ("name,venue,mic,instruments,currency,unit,price_basis,at_bound,valid_from,valid_until,checked_on,expires_on,"
          "evidence_date,evidence_kind,status,sources,notes").split(",")
# How many days a look-up counts.
DAYS = {"published": 180, "secondary": 90, "single": 30}
# The oldest evidence of a table of today, in days.
MAXIMUM_AGE = 8 * 365 + 2
NUMBER = re.compile(r"(0|[1-9][0-9]*)(?:\.([0-9]+))?$")
NAME = re.compile(r"[A-Z][A-Z0-9_]{0,63}$")


class Checker:
    """Collects what breaks a rule."""

    def __init__(self):
        self.problems = []

    def problem(self, text):
        self.problems.append(text)

    def read(self, name, header):
        with open(os.path.join(FOLDER, name), newline="", encoding="ascii") as file:
            rows = list(csv.reader(file))
        if not rows or rows[0] != header:
            self.problem(f"{name}: wrong header")
            return []
        for number, row in enumerate(rows[1:], 2):
            if len(row) != len(header):
                self.problem(f"{name}: line {number}: {len(row)} fields")
        return [dict(zip(header, row)) for row in rows[1:] if len(row) == len(header)]

    def number(self, text, where):
        """The number as its digits and their decimal places."""
        match = NUMBER.match(text)
        if not match:
            self.problem(f"{where}: {text!r} is not a plain decimal")
            return None
        fraction = match.group(2) or ""
        digits = match.group(1) + fraction
        if len(digits.lstrip("0")) > 18 or len(fraction) > 15:
            self.problem(f"{where}: {text} has too many digits")
        return int(digits), len(fraction)

    def day(self, row, field, needed=False):
        if not row[field]:
            if needed:
                self.problem(f"{row['name']}: no {field}")
            return None
        try:
            return datetime.date.fromisoformat(row[field])
        except ValueError:
            self.problem(f"{row['name']}: {field} {row[field]!r} is not a day")
            return None

    def bands(self, name, rows, basis):
        """The prices where the tick changes: (price, tick below, tick above, decimal places), as integers."""
        if [row["band"] for row in rows] != [str(n) for n in range(1, len(rows) + 1)]:
            self.problem(f"{name}: bands are not numbered 1 to {len(rows)}")
        if [n for n, row in enumerate(rows) if row["upper_bound"] == ""] != [len(rows) - 1]:
            self.problem(f"{name}: needs exactly one top band, as its last")
            return []
        parsed = []
        for n, row in enumerate(rows, 1):
            where = f"{name} band {n}"
            tick = self.number(row["increment"], where)
            bound = self.number(row["upper_bound"], where) if row["upper_bound"] else None
            if tick is None or (row["upper_bound"] and bound is None):
                return []
            if tick[0] <= 0 or (bound and bound[0] <= 0):
                self.problem(f"{where}: not above 0")
                return []
            if bound and bound[1] != tick[1]:
                self.problem(f"{where}: bound and increment differ in decimal places")
            parsed.append((bound, tick))
        places = max(number[1] for band in parsed for number in band if number)
        scaled = [[number and number[0] * 10 ** (places - number[1]) for number in band] for band in parsed]
        return self.joints(name, rows, basis, places, scaled)

    def joints(self, name, rows, basis, places, bands):
        joints = []
        for n, ((bound, tick), (above, upper)) in enumerate(zip(bands, bands[1:]), 1):
            where = f"{name} band {n}"
            if above is not None and above <= bound:
                self.problem(f"{where}: the next bound is not above {rows[n - 1]['upper_bound']}")
            if upper <= tick:
                self.problem(f"{where}: the next tick is not larger")
            if bound % tick:
                self.problem(f"{where}: the bound is no multiple of its own tick")
            if basis == "order":
                if (bound + tick) % upper:
                    self.problem(f"{where}: the price after the bound is no multiple of the next tick")
                joints.append((bound + tick, tick, upper, places))
        return joints

    def row(self, row, bands, is_of_today):
        name = row["name"]
        if not NAME.match(name):
            self.problem(f"{name}: not a name of capitals, digits and _")
        for field in ("venue", "instruments", "currency", "unit", "sources"):
            if not row[field].strip():
                self.problem(f"{name}: no {field}")
        if row["status"] not in DAYS:
            self.problem(f"{name}: status {row['status']!r}")
            return
        if row["status"] == "secondary" and len(row["sources"].split(" | ")) < 2:
            self.problem(f"{name}: secondary needs two sources")
        for field, single, values in (("price_basis", "fixed", ("order", "reference", "fixed")),
                                      ("at_bound", "none", ("upper", "lower", "mixed", "open", "none"))):
            if row[field] not in values or (row[field] == single) != (bands == 1):
                self.problem(f"{name}: {field} {row[field]!r} with {bands} bands")
        self.days(row, is_of_today)

    def days(self, row, is_of_today):
        name = row["name"]
        checked, expires = self.day(row, "checked_on", True), self.day(row, "expires_on", True)
        evidence, start, end = (self.day(row, field) for field in ("evidence_date", "valid_from", "valid_until"))
        if row["evidence_kind"] not in ("stated", "inferred", "none") or (row["evidence_kind"] == "none") != (evidence is None):
            self.problem(f"{name}: evidence_kind {row['evidence_kind']!r}")
        if not checked or not expires:
            return
        if evidence and evidence > checked:
            self.problem(f"{name}: evidence from after the look-up")
        if (expires - checked).days > DAYS[row["status"]]:
            self.problem(f"{name}: expires later than its status allows")
        if end and (expires > end or (start and end < start)):
            self.problem(f"{name}: valid_until does not fit")
        if is_of_today and why_held_back(row):
            self.problem(f"{name}: must be held back: {why_held_back(row)}")

    def list(self, name):
        """The rows of the list's tables, their bands by name, and the prices where the tick changes."""
        rows = self.read(f"tick-tables-{name}-sources.csv", FIELDS)
        names = [row["name"] for row in rows]
        if names != sorted(set(names)):
            self.problem(f"{name}: the names are not unique and in order")
        tables, order = {}, []
        for band in self.read(f"tick-tables-{name}.csv", HEADER):
            if band["name"] not in tables:
                order.append(band["name"])
            elif order[-1] != band["name"]:
                self.problem(f"{band['name']}: its bands are not together")
            tables.setdefault(band["name"], []).append(band)
        if order != names:
            self.problem(f"{name}: the two files differ in tables or order: {sorted(set(order) ^ set(names))}")
        joints = []
        for row in rows:
            bands = tables.get(row["name"], [])
            if bands:
                self.row(row, len(bands), name == "today")
                joints += [(row["name"],) + joint for joint in self.bands(row["name"], bands, row["price_basis"])]
        return rows, tables, joints


def why_held_back(row):
    """Why a rule keeps the table out of those of today; empty if none does. All dates of the row are days."""
    day = datetime.date.fromisoformat
    if row["status"] == "single":
        return "one page alone"
    if row["price_basis"] == "reference":
        return "another price than the order's own chooses the tick"
    if row["expires_on"] <= row["checked_on"]:
        return "out of force when it was looked up"
    if not row["evidence_date"]:
        return "no source has a date"
    if (day(row["checked_on"]) - day(row["evidence_date"])).days > MAXIMUM_AGE:
        return "newest evidence is of " + row["evidence_date"][:4]
    return ""


def catalogue_names():
    with open(CATALOGUE, encoding="utf-8") as file:
        return re.findall(r"^NX_TICK_TABLE\((\w+),", file.read(), re.M)


def read_all():
    """The lists by name, when no rule is broken."""
    checker = Checker()
    lists = {name: checker.list(name) for name in LISTS}
    taken = set(catalogue_names())
    if not taken:
        checker.problem("the catalogue has no names")
    for rows, _, _ in lists.values():
        for row in rows:
            if row["name"] in taken:
                checker.problem(f"{row['name']}: the name is taken by the catalogue or the other list")
            taken.add(row["name"])
    if checker.problems:
        sys.exit("\n".join(checker.problems))
    return lists


def check():
    for name, (rows, tables, joints) in read_all().items():
        print(f"{name}: {len(rows)} tables, {sum(map(len, tables.values()))} bands, {len(joints)} changes of the tick")


def expired(today):
    late = [row for row in read_all()["today"][0] if row["expires_on"] < today]
    for row in late:
        print(f"{row['name']}: expired on {row['expires_on']}; {row['venue']}: {row['sources']}")
    sys.exit(1 if late else 0)


def decimal(value, places):
    text = str(value).rjust(places + 1, "0")
    return text if places == 0 else text[:-places] + "." + text[-places:]


def steps(program, today):
    """At each price T where the tick changes: a step up to T, up from T, down from T, and down to T."""
    wrong = asked = 0
    for name, price, low, high, places in read_all()["today"][2]:
        for start, step, end in ((price - low, 1, price), (price, 1, price + high), (price, -1, price - low),
                                 (price + high, -1, price)):
            asked += 1
            command = [program, "-table", name, "-price", decimal(start, places), "-step", str(step), "-format", "json",
                       "-today", today]
            run = subprocess.run(command, capture_output=True, text=True, check=False)
            answer = json.loads(run.stdout, parse_float=str, parse_int=str)[0] if run.returncode == 0 else {}
            whole, _, fraction = answer.get("stepped", "x").partition(".")
            if whole + fraction.ljust(places, "0") != str(end).rjust(len(whole) + places, "0") or run.stderr:
                wrong += 1
                print(f"{name}: {decimal(start, places)} stepped by {step} is not {decimal(end, places)}: {answer} {run.stderr}")
    print(f"{asked} steps, {wrong} wrong")
    sys.exit(1 if wrong or not asked else 0)


PAGE = """# Tick tables in force today

<!-- Made by scripts/tick_tables.py from data/tick-tables; change them there. -->

These tables are installed beside `nxtick`, which knows them as it knows [the catalogue](tick-tables.md). A name here is
the identifier without `VTT_`. [The guide](guide/tick-tables.md#tables-of-today) says how to use them.

**Each table is as of the day on which its sources were looked up.** The exchange may have changed its ticks since. The
evidence is the day that the newest source speaks of; "about" marks a day that only follows from what the source
describes. A table expires after 180 days when the exchange or its regulator published it, and after 90 days when it comes
from other public pages. An expired table still works, and `nxtick` says on standard error that it is expired.

| Status | Meaning |
|---|---|
| published | the exchange's or the regulator's own text |
| secondary | two or more independent public pages |
"""


def word(text):
    return text.replace("|", "\\|")


def evidence(row):
    kind = row["evidence_kind"]
    return "none" if kind == "none" else ("about " if kind == "inferred" else "") + row["evidence_date"]


def table_text(row, bands):
    lines = [f"### {row['name']}", "", f"{row['venue']}: {row['instruments']}. Currency: {row['currency']}."]
    if row["unit"] != "1":
        lines[-1] += f" Unit: {row['unit']}."
    if row["valid_from"]:
        lines[-1] += f" In force since {row['valid_from']}."
    lines[-1] += "  "
    lines.append(f"{row['status']}, looked up {row['checked_on']}, expires {row['expires_on']}, evidence {evidence(row)}:")
    lines += ["", *("- " + source for source in row["sources"].split(" | "))]
    if row["notes"]:
        lines += ["", row["notes"]]
    lines += ["", "| Up to | Tick |", "|---:|---:|"]
    lines += [f"| {band['upper_bound'] or 'no bound'} | {band['increment']} |" for band in bands]
    return lines + [""]


def page():
    lists = read_all()
    rows, tables, _ = lists["today"]
    held, _, _ = lists["held-back"]
    count = {status: sum(row["status"] == status for row in rows) for status in DAYS}
    lines = [PAGE, f"Of {len(rows)} tables {count['published']} are published and {count['secondary']} secondary.", "",
             "## Index", "", "| Table | Venue | Instruments | Status | Expires |", "|---|---|---|---|---|"]
    for row in rows:
        cells = [f"[{row['name']}](#{row['name'].lower()})", row["venue"], row["instruments"], row["status"], row["expires_on"]]
        lines.append("| " + " | ".join(map(word, cells)) + " |")
    lines += ["", "## Tables", ""]
    for row in rows:
        lines += table_text(row, tables[row["name"]])
    lines += ["## Held back", "", "These tables are not installed, although values for them were found. Most are probably right. To "
              "use one, compare it with the exchange's own document and put it into a file of your own.", "",
              "| Table | Venue | Instruments | Why |", "|---|---|---|---|"]
    for row in held:
        cells = [row["name"], row["venue"], row["instruments"], why_held_back(row) or row["notes"]]
        lines.append("| " + " | ".join(map(word, cells)) + " |")
    return "\n".join(lines) + "\n"


def take(arguments, option, default):
    """Removes the option and its value, and returns the value."""
    if option not in arguments[:-1]:
        return default
    at = arguments.index(option)
    value = arguments[at + 1]
    del arguments[at:at + 2]
    return value


def main():
    global FOLDER
    arguments = sys.argv[1:]
    today = datetime.date.fromisoformat(take(arguments, "--today", datetime.date.today().isoformat())).isoformat()
    FOLDER = take(arguments, "--data", FOLDER)
    if arguments == ["check"]:
        check()
    elif arguments == ["expired"]:
        expired(today)
    elif len(arguments) == 2 and arguments[0] == "steps":
        steps(arguments[1], today)
    elif arguments == ["page"]:
        sys.stdout.write(page())
    elif len(arguments) == 3 and arguments[:2] == ["page", "--check"]:
        with open(arguments[2], encoding="utf-8") as file:
            if file.read() != page():
                sys.exit(f"{arguments[2]} differs from the tables; run scripts/tick_tables.py page to renew it")
    else:
        sys.exit(__doc__)


main()
