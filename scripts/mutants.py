#!/usr/bin/env python3
"""Breaks the code on purpose and counts how many breaks the tests notice.

    scripts/mutants.py [--minutes M] [--seed N] [--class NAME]... [--survivors FILE]

Each mutant changes one operator, constant or branch of one of the classes below, in a scratch copy under build/mutants.
It is killed when a test of its class fails or hangs; one that does not compile is not counted. Mutants are drawn at random, so a
longer run tells more. Survivors are listed: each is a test that is missing, or a change that makes no difference.
"""

import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SCRATCH = os.path.join(ROOT, "build", "mutants")
CLASSES = {
    "nxDecimal": (["core/numeric/nxDecimal.h", "core/numeric/nxDecimal.cpp"], "test_numeric"),
    "nxStringHelper": (["core/text/nxStringHelper.h", "core/text/nxStringHelper.cpp"], "test_text"),
    "nxTickGrid": (["core/price/nxTickGrid.cpp", "core/price/nxTickZone.h", "core/price/nxTickTableCursor.cpp",
                    "core/price/internal/nxTickRun.cpp"], "test_price"),
    "nxVariableTickTable": (["core/price/nxVariableTickTable.h", "core/price/nxVariableTickTable.cpp"], "test_price"),
}
# (pattern, replacements): what one slip of the hand turns into another.
SLIPS = [
    (r"(?<![<>=!+\-*/&|])<=(?!=)", ["<", "=="]), (r"(?<![<>=!\-])>=(?!=)", [">", "=="]),
    (r" < ", [" <= ", " > "]), (r" > ", [" >= ", " < "]),
    (r"==", ["!="]), (r"!=", ["=="]), (r"&&", ["||"]), (r"\|\|", ["&&"]),
    (r" \+ ", [" - "]), (r" - ", [" + "]), (r" \* ", [" + "]), (r" / ", [" * "]), (r" % ", [" / "]),
    (r"\+= ", ["-= "]), (r"-= ", ["+= "]), (r"\+\+", ["--"]), (r"--", ["++"]),
    (r"\btrue\b", ["false"]), (r"\bfalse\b", ["true"]), (r"\breturn ([a-z]\w*);", ["return {};"]),
    (r"(?<![\w.'])([0-9]+)(?![\w.'])", None), (r"\bif \(", ["if (!", ]),
]


def code_lines(path):
    """Numbers of the lines that hold code: no comments, no directives, no assertions of sizes."""
    numbers, block = [], False
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file):
            text = line.strip()
            block = block or text.startswith("/*")
            if text and not block and not text.startswith(("//", "#", "static_assert", "template", "namespace", "using")):
                numbers.append(number)
            block = block and "*/" not in text
    return numbers


def mutate(line, rng):
    """One slip in the code part of the line, or None."""
    code = line.split("//")[0]
    choices = []
    for pattern, replacements in SLIPS:
        for match in re.finditer(pattern, code):
            if code.count('"', 0, match.start()) % 2 == 1:
                continue
            if replacements is None:
                options = [str(int(match.group(1)) + 1)]
            elif pattern == r"\bif \(":
                closing = code.rfind(")")
                if closing < match.end():
                    continue
                options = None
                choices.append(code[:match.end()] + "!(" + code[match.end():closing] + ")" + line[closing:])
                continue
            else:
                options = replacements
            choices += [line[:match.start()] + option + line[match.end():] for option in options]
    return rng.choice(choices) if choices else None


def copy_tree():
    os.makedirs(SCRATCH, exist_ok=True)
    tracked = subprocess.run(["git", "ls-files"], cwd=ROOT, capture_output=True, text=True, check=True).stdout.split("\n")
    for name in filter(None, tracked):
        target = os.path.join(SCRATCH, "source", name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        source = os.path.join(ROOT, name)
        if os.path.exists(source):
            shutil.copy2(source, target)


def build(target):
    return subprocess.run(["cmake", "--build", os.path.join(SCRATCH, "build"), "--target", target],
                          capture_output=True, check=False).returncode == 0


def tests_pass(target):
    program = os.path.join(SCRATCH, "build", "tests", target)
    try:
        result = subprocess.run([program, "--gtest_brief=1"], capture_output=True, timeout=60, check=False,
                                env=dict(os.environ, NX_TEST_OPERATIONS="200000"))
    except subprocess.TimeoutExpired:
        return False
    return result.returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--minutes", type=float, default=10)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--class", dest="classes", action="append", choices=sorted(CLASSES))
    parser.add_argument("--survivors", default=os.path.join(ROOT, "build", "survivors.txt"))
    arguments = parser.parse_args()
    rng, names = random.Random(arguments.seed), arguments.classes or sorted(CLASSES)

    copy_tree()
    subprocess.run(["cmake", "-S", os.path.join(SCRATCH, "source"), "-B", os.path.join(SCRATCH, "build"), "-G", "Ninja",
                    "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS=-O1", "-DNXCORE_BUILD_EXAMPLES=OFF",
                    "-DNXCORE_BUILD_TOOLS=OFF"], check=True, stdout=subprocess.DEVNULL)
    for name in names:
        if not build(CLASSES[name][1]) or not tests_pass(CLASSES[name][1]):
            sys.exit(f"mutants: the tests of {name} do not pass unchanged")

    counts, survivors = {name: [0, 0] for name in names}, []
    end, turn = time.time() + 60 * arguments.minutes, 0
    while time.time() < end:
        name = names[turn % len(names)]
        turn += 1
        files, target = CLASSES[name]
        file = os.path.join(SCRATCH, "source", rng.choice([f for f in files if os.path.exists(os.path.join(ROOT, f))]))
        with open(file, encoding="utf-8") as handle:
            lines = handle.readlines()
        number = rng.choice(code_lines(file))
        mutant = mutate(lines[number], rng)
        if mutant is None or mutant == lines[number]:
            continue
        original = lines[number]
        lines[number] = mutant
        with open(file, "w", encoding="utf-8") as handle:
            handle.writelines(lines)
        compiled = build(target)
        killed = compiled and not tests_pass(target)
        lines[number] = original
        with open(file, "w", encoding="utf-8") as handle:
            handle.writelines(lines)
        if not compiled:
            continue
        counts[name][0] += 1
        counts[name][1] += killed
        if not killed:
            survivors.append(f"{os.path.relpath(file, os.path.join(SCRATCH, 'source'))}:{number + 1}\n"
                             f"    {original.strip()}\n    {mutant.strip()}\n")
            print(survivors[-1], end="", flush=True)

    os.makedirs(os.path.dirname(arguments.survivors), exist_ok=True)
    with open(arguments.survivors, "w", encoding="utf-8") as handle:
        handle.writelines(survivors)
    for name, (made, killed) in counts.items():
        print(f"{name}: {killed} of {made} mutants killed ({100 * killed / max(made, 1):.0f} %)")


if __name__ == "__main__":
    main()
