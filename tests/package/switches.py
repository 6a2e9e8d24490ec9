#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Builds the gateway of switches/ with every usual switch and both compilers: all must link and print the same.

    switches.py LIBRARY INCLUDE_FOLDER...

It also links objects of different switches into one program, in both orders, because the linker keeps the first copy of an
inline function that it finds.
"""

import concurrent.futures
import difflib
import glob
import os
import platform
import shutil
import subprocess
import sys
import tempfile

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "switches")
SOURCES = sorted(glob.glob(os.path.join(FOLDER, "*.cpp"))) + [os.path.join(FOLDER, "../../enum/startup/plugin.cpp")]


def run(command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=120, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)}: exit code {done.returncode}\n{done.stdout}")
    return done.stdout


def has_avx2():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        return platform.machine() == "x86_64" and " avx2 " in file.read()


def main():
    library, *folders = sys.argv[1:]
    most = "-Ofast -march=x86-64-v3" if has_avx2() else "-Ofast"
    options = ["-O0", "-O2", "-O3", most]
    compilers = [compiler for compiler in ("g++", "clang++") if shutil.which(compiler)]
    print("compilers:", *compilers, "switches:", ", ".join(options))
    builds = [(compiler, option) for compiler in compilers for option in options]
    with tempfile.TemporaryDirectory() as scratch, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        def path(build, source):
            return os.path.join(scratch, f"{build[0]}{build[1].replace(' ', '')}.{os.path.basename(source)}.o")

        def make(build, source):
            run([build[0], "-std=c++20", *build[1].split(), "-pthread", *(f"-I{folder}" for folder in folders), "-c", source,
                 "-o", path(build, source)])

        def say(compiler, option, objects):
            program = os.path.join(scratch, f"{abs(hash(tuple(objects)))}")
            run([compiler, *option.split(), "-pthread", *objects, "-o", program, library, f"-Wl,-rpath,{os.path.dirname(library)}"])
            return run([program])

        # The largest first, so that no compiler is idle at the end.
        sources = sorted(SOURCES, key=os.path.getsize, reverse=True)
        for done in [pool.submit(make, build, source) for source in sources for build in builds]:
            done.result()
        programs = {" ".join(build): (*build, [path(build, source) for source in SOURCES]) for build in builds}
        for first, second in (("g++", "g++"), ("g++", "clang++"), ("clang++", "clang++")):
            first, second = (first, "-O0"), (second, most)
            if first in builds and second in builds:
                half = [path(first if n % 2 == 0 else second, source) for n, source in enumerate(SOURCES)]
                rest = [path(second if n % 2 == 0 else first, source) for n, source in enumerate(SOURCES)]
                for objects in (half, half[::-1], rest, rest[::-1]):
                    programs[f"{first} with {second}: {[os.path.basename(name) for name in objects]}"] = (first[0], "-O0", objects)
        said = dict(zip(programs, pool.map(lambda program: say(*program), programs.values())))
    expected = next(iter(said.values()))
    faults = [name for name, text in said.items() if text != expected]
    for name in faults:
        print(name, *difflib.unified_diff(expected.splitlines(), said[name].splitlines(), "expected", "said", n=0, lineterm=""), sep="\n")
    print(f"{len(said)} programs, {len(faults)} print something else than the first")
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main())
