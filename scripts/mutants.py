#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Breaks the code on purpose and counts how many breaks the tests notice.

    scripts/mutants.py [--orders] [--class NAME]... [--only TEXT] [--count N] [--seed N] [--stale] [OPTION]...

Each mutant changes one operator, constant or branch of one of the classes below. Of all that can be made, --count are
drawn at random for each class. A mutant is killed when a test of its class fails, crashes or hangs, if need be under the
address and undefined-behaviour sanitizers; one that does not compile is not counted. Only what the change reaches is
compiled again, a second or two, and linked with the objects of one ordinary build under build/mutants.

With --orders a mutant makes one memory order of the library relaxed, and is killed when a test fails, or the thread sanitizer
under which all is built then reports a race. It sees an order that is missing whatever the processor, but only between
accesses that a test makes, and not where several atomic objects must agree.

Survivors are listed: each is a test that is missing, or a change that makes no difference. Those of the second kind
stand in mutants-explained.txt, each with its reason, and are counted on their own. --stale only lists the explanations of
lines that the code no longer has.
"""

import argparse
import concurrent.futures
import dataclasses
import itertools
import json
import os
import queue
import random
import re
import resource
import shlex
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
EXPLAINED = os.path.join(ROOT, "scripts", "mutants-explained.txt")
# What is changed of each class, and the tests that should notice.
CLASSES = {
    "nxDecimal": (
        ["core/numeric/nxDecimal.h", "core/numeric/inline/nxDecimalBodies.inc", "core/numeric/inline/nxDecimalQuick.h",
         "core/numeric/nxDecimal.cpp", "core/numeric/nxDecimalSum.cpp", "core/numeric/internal/nxDecimalText.h",
         "core/numeric/internal/nxDecimalText.cpp", "core/numeric/nxPowersOfTen.h", "core/platform/inline/nxDoubleHelper.h"],
        ["tests/numeric/nxDecimalTest.cpp", "tests/numeric/nxDecimalDifferentialTest.cpp"]),
    "nxStringHelper": (
        ["core/text/nxStringHelper.h", "core/text/nxStringHelper.cpp", "core/numeric/nxStringHelperDouble.cpp",
         "core/text/inline/nxDigits.h", "core/text/inline/nxIntegerText.h", "core/numeric/internal/nxExactDouble.cpp",
         "core/numeric/internal/nxPriceText.h"],
        ["tests/text/nxStringHelperTest.cpp", "tests/numeric/nxDecimalTest.cpp",
         "tests/numeric/nxDecimalDifferentialTest.cpp"]),
    "nxVariableTickTable": (
        ["core/price/nxVariableTickTable.h", "core/price/nxVariableTickTable.cpp", "core/price/inline/nxTickRules.h",
         "core/price/inline/nxTickRules.cpp", "core/price/inline/nxTickRulesExact.cpp", "core/price/inline/nxTickPlace.h",
         "core/price/inline/nxTickPlace.cpp", "core/price/inline/nxTickGrid.h", "core/price/inline/nxTickGrid.cpp",
         "core/price/inline/nxTickZone.h", "core/price/nxTickTableCursor.h", "core/price/nxTickTableCursor.cpp",
         "core/price/internal/nxTickRun.h", "core/price/internal/nxTickRun.cpp"],
        ["tests/price/nxVariableTickTableTest.cpp"]),
}
# The same for memory orders: files that hold some, then sources that use the headers among them.
ORDERS = {
    "clock": (
        ["core/platform/inline/nxClock.h", "core/platform/nxClock.cpp"],
        ["tests/platform/nxClockTest.cpp", "tests/testing/nxSteppedClockTest.cpp", "tests/testing/nxCapturingLogDeviceTest.cpp"]),
    "platform": (
        ["core/platform/nxLocalZone.h", "core/platform/nxLocalZone.cpp", "core/platform/linux/nxEnvironment.cpp",
         "core/platform/nxForkHandlers.h", "core/platform/linux/nxForkHandlers.cpp", "core/platform/linux/nxThisThread.cpp",
         "core/platform/nxOneInstance.h", "core/log/nxConsoleLogDevice.cpp"],
        ["tests/platform/nxForkHandlersTest.cpp", "tests/time/nxTimeStampTest.cpp", "tests/log/nxConsoleLogDeviceTest.cpp"]),
    "named semaphore": (
        ["core/platform/linux/inline/nxNamedSemaphore.h", "core/platform/linux/inline/nxNamedSemaphore.cpp",
         "core/thread/nxWindowsSemaphore.cpp"],
        ["tests/thread/namedObjectsTest.cpp"]),
    "enumerations": (
        ["core/enum/inline/nxEnumTable.h", "core/enum/inline/nxEnumTable.cpp", "core/enum/internal/nxBitMaskRegistry.h",
         "core/enum/nxRefusedTexts.cpp", "core/enum/nxEnum.cpp", "core/enum/nxBitMask.cpp", "core/enum/nxBitMask64.cpp"],
        ["tests/enum/nxEnumTest.cpp", "tests/enum/nxBitMaskTest.cpp"]),
    "ring": (
        ["core/log/inline/nxLogChannel.h", "core/log/inline/nxLogSource.h", "core/log/internal/nxLogRing.h",
         "core/log/internal/nxLogRing.cpp", "core/log/internal/nxLogSourceTable.cpp", "core/log/internal/nxLogChannelList.cpp",
         "core/log/internal/nxLogMerge.cpp", "core/log/internal/nxLogOpenStatement.cpp",
         "core/log/internal/nxLogFilling.cpp"],
        ["tests/log/nxLogTest.cpp", "tests/log/nxLogManagerTest.cpp"]),
    "writer": (
        ["core/log/internal/nxLogWriter.h", "core/log/internal/nxLogWriter.cpp", "core/log/internal/nxLogBell.h",
         "core/log/internal/nxLogBell.cpp", "core/log/internal/nxLogCounters.h", "core/platform/nxSleepBell.h",
         "core/log/internal/nxLogWriterThread.cpp", "core/log/internal/nxLogMerge.cpp", "core/log/internal/nxLogBatches.cpp",
         "core/log/internal/nxLogOpenStatement.cpp", "core/log/internal/nxLogFilling.cpp", "core/log/nxLogManager.cpp"],
        ["tests/log/nxLogTest.cpp", "tests/log/nxLogManagerTest.cpp"]),
    "devices": (
        ["core/log/internal/nxLogDeviceQueue.cpp", "core/log/internal/nxLogDeviceThread.cpp",
         "core/log/internal/nxLogDeviceList.cpp", "core/log/internal/nxLogLevelState.cpp"],
        ["tests/log/nxSeparateLogDeviceTest.cpp", "tests/log/nxLogServiceDevicesTest.cpp",
         "tests/log/nxLogDevicesLeavingTest.cpp", "tests/log/nxLogLevelsTest.cpp"]),
}
# Library sources through which the tests come to more of a class's inline functions than through its own.
SHARED_SOURCES = ["core/numeric/nxDecimal.cpp", "core/time/nxTime.cpp"]
SANITIZERS = ["-fsanitize=address,undefined,float-cast-overflow", "-fno-sanitize-recover=all"]
# (pattern, replacements): what one slip of the hand turns into another.
SLIPS = [
    (r"(?<![<>=!+\-*/&|])<=(?!=)", ["<", "=="]), (r"(?<![<>=!\-])>=(?!=)", [">", "=="]),
    (r" < ", [" <= ", " > "]), (r" > ", [" >= ", " < "]),
    (r"==", ["!="]), (r"!=", ["=="]), (r"&&", ["||"]), (r"\|\|", ["&&"]),
    (r" \+ ", [" - "]), (r" - ", [" + "]), (r" \* ", [" + "]), (r" / ", [" * "]), (r" % ", [" / "]),
    (r"\+= ", ["-= "]), (r"-= ", ["+= "]), (r"\+\+", ["--"]), (r"--", ["++"]),
    (r"\btrue\b", ["false"]), (r"\bfalse\b", ["true"]), (r"\breturn (?!true|false|nullptr)([a-z]\w*);", ["return {};"]),
    (r"(?<![\w.'])([0-9]+)(?![\w.'])", None),
]


def is_code(text):
    return text and not text.startswith(("//", "#", "static_assert", "template", "namespace", "using"))


def slips(line):
    """Every line that one slip in the code part of this one makes."""
    code = line.split("//")[0]
    for pattern, replacements in SLIPS:
        for match in re.finditer(pattern, code):
            if code.count('"', 0, match.start()) % 2 == 0:
                for other in replacements or [str(int(match.group(1)) + 1)]:
                    yield line[:match.start()] + other + line[match.end():]
    condition = re.search(r"\bif \(", code)
    if condition and code.rfind(")") > condition.end():
        closing = code.rfind(")")
        yield code[:condition.end()] + "!(" + code[condition.end():closing] + ")" + line[closing:]


def weaker_orders(line):
    """Every line that one order made relaxed makes of this one."""
    for match in re.finditer(r"memory_order_(?:acquire|release|acq_rel|seq_cst)", line.split("//")[0]):
        if "fence" not in line[:match.start()]:  # the sanitizer knows no fences
            yield line[:match.start()] + "memory_order_relaxed" + line[match.end():]


@dataclasses.dataclass
class Kind:
    """What is changed in what, and how the result is built and run."""

    classes: dict
    changes: callable  # from a line to the changed lines
    folder: str
    options: tuple  # of CMake
    runs: tuple  # the compiler's flags for each run of the tests
    hang: int  # seconds; the tests of a class take one or two, and some ten under the thread sanitizer
    shared: bool = False  # whether the library is shared with plug-ins of the tests
    targets: tuple = ()  # of the build, beside the library
    build: str = dataclasses.field(init=False)

    def __post_init__(self):
        self.build = os.path.join(ROOT, "build", self.folder)


SLIP_KIND = Kind(CLASSES, slips, "mutants", (), ((), SANITIZERS), 30)
ORDER_KIND = Kind(ORDERS, weaker_orders, "mutants-orders", ("-DNXCORE_SANITIZE=thread", "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g1"),
                  (("-fsanitize=thread",),), 300, shared=True, targets=("nxcore_test_plugin",))


def all_mutants(files, changes):
    """(file, lines, line number, changed line) of every mutant that can be made of the files."""
    for file in files:
        with open(os.path.join(ROOT, file), encoding="utf-8") as handle:
            lines = handle.readlines()
        for number, line in enumerate(lines):
            if is_code(line.strip()):
                for changed in dict.fromkeys(changes(line)):
                    yield file, lines, number, changed


def read_explained():
    """The (file, line, changed line) of mutants that make no difference; a changed line "*" means every one.

    A paragraph names a file and then lines, each "- line" with its "+ changed line"s; the rest of it is the reason. A line
    that occurs several times is given together with the line before it."""
    explained = set()
    with open(EXPLAINED, encoding="utf-8") as handle:
        for paragraph in handle.read().split("\n\n"):
            file, *lines = [line.strip() for line in paragraph.strip().split("\n")]
            for line in lines:
                if line.startswith("- "):
                    before = line[2:]
                elif line.startswith("+ "):
                    explained.add((file, before, line[2:]))
    return explained


def places(mutant):
    """The two ways in which mutants-explained.txt may name the line of a mutant."""
    file, lines, number, _ = mutant
    line = lines[number].strip()
    return (file, line), (file, lines[number - 1].strip() + " " + line)


def stale():
    """The explanations, as read_explained() gives them, that belong to no mutant."""
    made = {(*place, after) for kind in (SLIP_KIND, ORDER_KIND) for files, _ in kind.classes.values()
            for mutant in all_mutants(files, kind.changes) for place in places(mutant) for after in (mutant[3].strip(), "*")}
    return sorted(read_explained() - made)


class Base:
    """The ordinary build, and the commands to make a part of it again."""

    def __init__(self, kind, names):
        self.kind, self.build = kind, kind.build
        # A precompiled header would hide what a mutant changes in the headers that it holds.
        configure = ["cmake", "-S", ROOT, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                     "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON",
                     "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DNXCORE_BUILD_EXAMPLES=OFF", "-DNXCORE_BUILD_TOOLS=OFF", *kind.options]
        subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as handle:
            entries = json.load(handle)
        # A few sources are compiled for several targets: the library's own, which come first, count.
        self.commands, self.library = {}, []
        for entry in entries:
            source, command = os.path.relpath(entry["file"], ROOT), shlex.split(entry["command"])
            if "-o" in command and source not in self.commands:
                self.commands[source] = command
                if "nxcore.dir" in self.object(source):
                    self.library.append(source)
        tests = sorted({self.object(test) for name in names for test in kind.classes[name][1]})
        subprocess.run(["cmake", "--build", self.build, "--target", "nxcore", "nxcore_test_support", *kind.targets, *tests],
                       check=True, stdout=subprocess.DEVNULL)

    def object(self, source):
        command = self.commands[source]
        return command[command.index("-o") + 1]

    def includes(self, source, header):
        listed = subprocess.run(["ninja", "-C", self.build, "-t", "deps", self.object(source)], capture_output=True, text=True,
                                check=True).stdout
        return header in (os.path.relpath(os.path.join(self.build, line.strip()), ROOT) for line in listed.split("\n")[1:])

    def compile(self, source, overlay, file, target, flags=()):
        """Compiles a source with the changed file in the overlay put before the real one."""
        command = list(self.commands[source])
        command[command.index("-o") + 1] = target
        if source == file:
            command[command.index("-c") + 1] = os.path.join(overlay, source)
        first = next(i for i, word in enumerate(command) if word.startswith("-"))
        command[first:first] = ["-w", "-I" + overlay, *flags]
        return subprocess.run(command, cwd=self.build, capture_output=True, check=False).returncode == 0

    def link(self, tests, remade, program, flags=()):
        """Links a test program; the objects made again come first, so that their inline functions count."""
        def objects(sources):
            return [remade[source] for source in sources if source in remade] + [
                self.object(source) for source in sources if source not in remade]

        linker = ["c++", *(["-fuse-ld=lld"] if shutil.which("ld.lld") else []), *flags]
        library = objects(self.library)
        if self.kind.shared:
            folder = os.path.dirname(program)
            made = os.path.join(folder, "libnxcore.so.1")
            subprocess.run([*linker, "-shared", "-Wl,-Bsymbolic-functions", "-Wl,--version-script=generated/nxcore.map",
                            "-Wl,-soname,libnxcore.so.1", "-o", made, *library], cwd=self.build, check=True)
            library = [made, "-Wl,-rpath," + folder]
        support = os.path.join("tests", "libnxcore_test_support.a")
        subprocess.run([*linker, "-o", program, *objects(tests), *library, support, "-lgtest", "-lgmock", "-lgtest_main",
                        "-lpthread", "-ldl"], cwd=self.build, check=True)


def tests_pass(program, folder, operations, sanitized, hang):
    """Runs the tests with this many random operations, or with the usual number when None."""
    environment = dict(os.environ, ASAN_OPTIONS="detect_leaks=0:detect_odr_violation=0", TSAN_OPTIONS="halt_on_error=1",
                       **({"NX_TEST_OPERATIONS": str(operations)} if operations else {}))

    def limit_resources():
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if not sanitized:  # the address sanitizer reserves more than there is
            resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))

    try:
        return subprocess.run([program, "--gtest_brief=1", "--gtest_fail_fast=1"], cwd=folder, env=environment, timeout=hang,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=limit_resources,
                              check=False).returncode == 0
    except subprocess.TimeoutExpired:
        print(f"{program} did not end within {hang} seconds", file=sys.stderr, flush=True)
        return False


class Subject:
    """One class with its tests."""

    def __init__(self, base, name):
        self.base, self.name = base, name
        self.files, self.tests = base.kind.classes[name]
        self.users = list(dict.fromkeys([file for file in self.files if file.endswith(".cpp")] + SHARED_SOURCES + self.tests))
        self.remade = {file: [file] if file.endswith(".cpp") else [user for user in self.users if base.includes(user, file)]
                       for file in self.files}
        # The first run is of what the ordinary build has made.
        first, *others = base.kind.runs
        if not self.passes(base.build, base.build, "", [], first) or not all(
                self.passes(base.build, base.build, "", self.users, flags) for flags in others):
            sys.exit(f"mutants: the tests of {name} do not pass unchanged")

    def passes(self, folder, overlay, file, sources, flags):
        """None when the sources do not compile, else whether the tests pass with what was made of them."""
        remade = {source: os.path.join(folder, source.replace("/", "_") + ".o") for source in sources}
        if not all(self.base.compile(source, overlay, file, target, flags) for source, target in remade.items()):
            return None
        program = os.path.join(folder, "program")
        self.base.link(self.tests, remade, program, flags)
        # Few random operations find most; only what they do not find gets as many as an ordinary run has.
        hang = self.base.kind.hang
        return (tests_pass(program, folder, 20000, bool(flags), hang) and
                (bool(flags) or tests_pass(program, folder, None, False, hang)))

    def try_mutant(self, mutant, folder):
        """None when it does not compile, else whether it is killed."""
        file, lines, number, changed = mutant
        overlay = os.path.join(folder, "overlay")
        shutil.rmtree(overlay, ignore_errors=True)
        os.makedirs(os.path.dirname(os.path.join(overlay, file)))
        with open(os.path.join(overlay, file), "w", encoding="utf-8") as handle:
            handle.writelines(lines[:number] + [changed] + lines[number + 1:])
        first, *others = self.base.kind.runs
        passed = self.passes(folder, overlay, file, self.remade[file], first)
        if passed is None:
            return None
        return not passed or any(self.passes(folder, overlay, file, self.remade[file], flags) is False for flags in others)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--orders", action="store_const", dest="kind", const=ORDER_KIND, default=SLIP_KIND)
    parser.add_argument("--class", dest="classes", action="append", choices=sorted({**CLASSES, **ORDERS}))
    parser.add_argument("--only", default="", metavar="TEXT", help="mutants of the files and lines that have this in 'FILE: LINE'")
    parser.add_argument("--stale", action="store_true", help="lists explanations of lines that the code no longer has")
    parser.add_argument("--count", type=int, default=100, help="mutants of each class")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--minutes", type=float, help="makes no more mutants after this time")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--verbose", action="store_true", help="names those that are killed, too")
    parser.add_argument("--survivors", default=os.path.join(ROOT, "build", "survivors.txt"))
    arguments = parser.parse_args()
    if arguments.stale:
        rows = stale()
        print(*("{}\n- {}\n+ {}\n".format(*row) for row in rows), sep="\n", end="")
        sys.exit(1 if rows else 0)

    kind = arguments.kind
    names = arguments.classes or sorted(kind.classes)
    if unknown := set(names) - set(kind.classes):
        parser.error("not of this kind: " + " ".join(unknown))
    base = Base(kind, names)
    subjects = [Subject(base, name) for name in names]
    end = time.time() + 60 * arguments.minutes if arguments.minutes else float("inf")
    explained = read_explained()
    draws = []
    for subject in subjects:
        mutants = [mutant for mutant in all_mutants(subject.files, kind.changes)
                   if arguments.only in f"{mutant[0]}: {mutant[1][mutant[2]].strip()}"]
        random.Random(arguments.seed).shuffle(mutants)
        draws.append([(subject, mutant) for mutant in mutants])
    # Draws go on where mutants do not compile; the classes take turns, so that the time is shared.
    turns = [draw for turn in itertools.zip_longest(*draws) for draw in turn if draw is not None]
    folders = queue.Queue()
    for job in range(arguments.jobs):
        folders.put(os.path.join(kind.build, f"work{job}"))
    counts = {name: {"made": 0, "killed": 0, "explained": 0} for name in names}

    def run(draw):
        subject, mutant = draw
        if counts[subject.name]["made"] >= arguments.count or time.time() > end:
            return
        folder = folders.get()
        try:
            killed = subject.try_mutant(mutant, folder)
        finally:
            folders.put(folder)
        if killed is None:
            return
        count = counts[subject.name]
        count["made"] += 1
        count["killed"] += killed
        file, lines, number, changed = mutant
        if killed:
            if arguments.verbose:
                print(f"killed {file}:{number + 1}", flush=True)
            return
        line = lines[number].strip()
        if any((*place, after) in explained for place in places(mutant) for after in (changed.strip(), "*")):
            count["explained"] += 1
            return
        survivors.write(f"{file}\n- {line}\n+ {changed.strip()}\n\n")
        survivors.flush()
        print(f"{file}:{number + 1}\n    {line}\n    {changed.strip()}", flush=True)

    os.makedirs(os.path.dirname(arguments.survivors), exist_ok=True)
    with open(arguments.survivors, "w", encoding="utf-8") as survivors:
        with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
            list(pool.map(run, turns))
    for name, count in counts.items():
        rest = max(count["made"] - count["explained"], 1)
        print(f"{name}: {count['killed']} of {count['made']} mutants killed, {count['explained']} make no difference: "
              f"{100 * count['killed'] / rest:.1f} % of the others")


if __name__ == "__main__":
    main()
