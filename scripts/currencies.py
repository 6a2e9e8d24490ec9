#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Holds the library's list of currencies, core/numeric/internal/nxCurrencies.inc, to public copies of the standard.

    currencies.py compare [--agency FILE] [--cldr FOLDER]   tells every row that the sources at hand contradict
    currencies.py list --agency FILE [--cldr FOLDER]        writes the list again, from the agency's list and the rows
                                                            that were added to it
    currencies.py csv                                       writes the rows in the form that nxCurrencyList reads

The sources, each left out by name when it is missing:
    agency     the maintenance agency's own list one, an XML file; the npm package currency-codes has a copy
               (2.2.0: that of 25 June 2024, on which the list rests)
    iso-codes  numbers and names, Debian package iso-codes
    Java       numbers and minor units, any Java with a compiler (17.0.21 knows what was added until 2025)
    CLDR       digits that are usual on screens, which differ from minor units; the folder supplemental/ of the npm
               package cldr-core (48.2.0)
    glibc      digits of the locales, likewise; Debian package locales
The remark of a row says which sources have other digits. ICU takes its digits from CLDR and is no source of its own.
"""

import argparse
import csv
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LIST = os.path.join(ROOT, "core/numeric/internal/nxCurrencies.inc")
ROW = re.compile(r'^NX_CURRENCY\("([A-Z]{3})", (\d+), (\d+|NoMinorUnits), "([^"]*)"\)(?:  // (.*))?$')
ISO_CODES = "/usr/share/iso-codes/json/iso_4217.json"
LOCALES = "/usr/share/i18n/locales/*"
NONE = "NoMinorUnits"
# What has begun or ended since the agency's list, with what says so.
LATER = {
    "ANG": "until 30 Jun 2025, kept for older amounts: CLDR 48.2",
    "BGN": "until 31 Jan 2026, kept for older amounts: CLDR 48.2",
    "XAD": "since 12 May 2025: Java 17.0.21, CLDR 48.2",
    "XCG": "since 31 Mar 2025: Java 17.0.21, CLDR 48.2",
}
JAVA = """import java.util.*;
public class Currencies { public static void main(String[] none) {
    for (Currency c : Currency.getAvailableCurrencies())
        System.out.println(c.getCurrencyCode() + "," + c.getNumericCode() + "," + c.getDefaultFractionDigits()); } }
"""


def own_rows():
    """{code: (number, minor units, name, remark)} of the library."""
    rows = {}
    with open(LIST, encoding="utf-8") as file:
        for line in file:
            found = ROW.match(line.rstrip("\n"))
            if found:
                code, number, units, name, remark = found.groups()
                rows[code] = (int(number), units, name, remark or "")
            elif line.startswith("NX_CURRENCY"):
                sys.exit("not understood: " + line)
    return rows


def agency_rows(path):
    """{code: (number, minor units, name)} of the agency's list."""
    rows = {}
    for entry in xml.etree.ElementTree.parse(path).getroot().iter("CcyNtry"):
        if entry.findtext("Ccy"):
            units = entry.findtext("CcyMnrUnts")
            rows[entry.findtext("Ccy")] = (int(entry.findtext("CcyNbr")), units if units.isdigit() else NONE,
                                           entry.findtext("CcyNm").strip())
    return rows


def iso_codes_rows(path):
    """{code: number} of the package iso-codes."""
    with open(path, encoding="utf-8") as file:
        return {row["alpha_3"]: int(row["numeric"]) for row in json.load(file)["4217"]}


def java_rows():
    """{code: (number, minor units)} of Java."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "Currencies.java")
        with open(path, "w", encoding="ascii") as file:
            file.write(JAVA)
        run = subprocess.run(["java", path], check=False, capture_output=True, text=True)
    rows = [line.split(",") for line in run.stdout.splitlines()]
    return {code: (int(number), NONE if units == "-1" else units) for code, number, units in rows}


def cldr_digits(folder):
    """{code: {digits}} of CLDR, for the currencies that differ from two."""
    with open(os.path.join(folder, "currencyData.json"), encoding="utf-8") as file:
        fractions = json.load(file)["supplemental"]["currencyData"]["fractions"]
    return {code: {row["_digits"]} for code, row in fractions.items() if code != "DEFAULT"}


def glibc_digits(pattern):
    """{code: {digits}} of the locales."""
    digits = {}
    for path in glob.glob(pattern):
        with open(path, encoding="utf-8", errors="replace") as file:
            text = file.read()
        code = re.search(r'^int_curr_symbol\s+"([A-Z]{3}) ?"', text, re.M)
        places = re.search(r"^int_frac_digits\s+(\d+)", text, re.M)
        if code and places:
            digits.setdefault(code[1], set()).add(places[1])
    return digits


class Sources:
    """What is at hand; a source that is missing is None and has been named."""

    def __init__(self, arguments):
        def take(name, read, path):
            if path and (read is java_rows or glob.glob(path)):
                found = read() if read is java_rows else read(path)
                if found:
                    return found
            print("left out: " + name, file=sys.stderr)
            return None

        self.agency = take("agency", agency_rows, arguments.agency)
        self.numbers = take("iso-codes", iso_codes_rows, ISO_CODES)
        self.java = take("Java", java_rows, shutil.which("java"))
        self.digits = {"CLDR": take("CLDR", cldr_digits, arguments.cldr), "glibc": take("glibc", glibc_digits, LOCALES)}

    def remark(self, code, units):
        """What a row rests on beside the agency's list, and the usual digits that are not its minor units."""
        parts = [LATER[code]] if code in LATER else []
        for name, digits in self.digits.items():
            found = set() if digits is None else digits.get(code, {"2"} if name == "CLDR" else set())
            if units != NONE and found - {units}:
                parts.append(f"{name} {' '.join(sorted(found))}")
        return "; ".join(parts)


def compare(arguments):
    """Tells the differences; true when there are none."""
    sources, own, differences = Sources(arguments), own_rows(), []
    for code in sorted(sources.agency or {}):
        if code not in own or own[code][:3] != sources.agency[code]:
            differences.append(f"{code}: {own.get(code)}, agency {sources.agency[code]}")
    if sources.agency:
        differences += [f"{code}: not in the agency's list, and no remark says why"
                        for code in own if code not in sources.agency and code not in LATER]
    for code, (number, units, _, remark) in own.items():
        if sources.numbers and sources.numbers.get(code, number) != number:
            differences.append(f"{code}: number {number}, iso-codes {sources.numbers[code]}")
        if sources.java and sources.java.get(code, (number, units)) != (number, units):
            differences.append(f"{code}: {number} {units}, Java {sources.java[code]}")
        for part in filter(None, sources.remark(code, units).split("; ")):
            if part not in remark.split("; "):
                differences.append(f'{code}: {units}, {part}, without a remark "{part}"')
    if list(own) != sorted(own):
        differences.append("the rows are not in the order of their letters")
    print("\n".join(differences + [f"{len(own)} rows, {len(differences)} differences"]))
    return not differences


def write_list(arguments):
    """Writes the rows again: those of the agency, and ours that it does not have."""
    sources = Sources(arguments)
    rows = {code: row[:3] for code, row in own_rows().items() if code in LATER}
    rows.update(sources.agency or sys.exit("the list rests on the agency's: --agency FILE"))
    for code, (number, units, name) in sorted(rows.items()):
        remark = sources.remark(code, units)
        print(f'NX_CURRENCY("{code}", {number}, {units}, "{name}")' + ("  // " + remark if remark else ""))
    return True


def write_csv(_):
    """Writes the rows as a program may read them."""
    writer = csv.writer(sys.stdout, lineterminator="\n")
    for code, (number, units, name, _) in own_rows().items():
        writer.writerow([code, f"{number:03}", "" if units == NONE else units, name])
    return True


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("action", choices=("compare", "list", "csv"))
    parser.add_argument("--agency", help="the agency's list one, XML")
    parser.add_argument("--cldr", help="the folder of CLDR's supplemental data, JSON")
    arguments = parser.parse_args()
    return 0 if {"compare": compare, "list": write_list, "csv": write_csv}[arguments.action](arguments) else 1


if __name__ == "__main__":
    sys.exit(main())
