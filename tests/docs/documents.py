#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes programs of the code blocks of a document, and holds what they print against the document.

    documents.py generate DOCUMENT.md OUTPUT.cpp    one translation unit with every ```cpp block of the document
    documents.py check DOCUMENT.md PROGRAM          runs the blocks and compares their output

A ```cpp block with a main() is a program; "```cpp statements" is the inside of a function and "```cpp declarations" stands
at namespace scope; both may use every public header without naming it. "```cpp sketch" is not compiled. A "```text output"
block is what the program before it prints on standard output.
"""

import os
import re
import subprocess
import sys
import tempfile


def blocks(path):
    """[(line, kind, code, expected output or None)] of the document's C++ blocks."""
    found, fence, lines = [], None, []
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            match = re.match(r"\s*```(.*)$", line)
            if not match:
                lines.append(line)
                continue
            if fence is None:
                fence, lines = (number, match.group(1).split()), []
                continue
            start, info = fence
            fence = None
            if info[:1] == ["cpp"] and info[1:] != ["sketch"]:
                code = "".join(lines)
                kind = info[1] if len(info) > 1 else "program"
                if kind == "program" and "int main(" not in code:
                    sys.exit(f"{path}:{start}: a block without main() is marked 'statements', 'declarations' or 'sketch'")
                found.append([start, kind, code, None])
            elif info == ["text", "output"] and found:
                found[-1][3] = "".join(lines)
    return found


def generate(document, output):
    includes, body, calls = ['#include "core/nxCore.h"\n', "#include <cstdlib>\n"], [], []
    for number, (line, kind, code, _) in enumerate(blocks(document)):
        includes += [text + "\n" for text in re.findall(r"^#include .*$", code, re.M)]
        code = re.sub(r"^#include .*$", "", code, flags=re.M)
        body.append(f"namespace block_{number}\n{{\n#line {line + 1} \"{os.path.basename(document)}\"\n")
        if kind == "statements":
            body.append(f"int main()\n{{\n{code}\nreturn 0;\n}}\n}}\n")
        elif kind == "declarations":
            body.append(f"{code}\nint main() {{ return 0; }}\n}}\n")
        else:
            # Only the one true main() may lack its return; in these programs main() is what comes last.
            body.append(code.rstrip().removesuffix("}") + "return 0;\n}\n}\n")
        arguments = "argc, argv" if re.search(r"int main\(\s*int", code) else ""
        calls.append(f"        case {number}: return block_{number}::main({arguments});\n")
    dispatcher = ("int main(int argc, char** argv)\n{\n    if (argc < 2)\n        return 2;\n"
                  "    const int block = std::atoi(argv[1]);\n    argv[1] = argv[0];\n    ++argv;\n    --argc;\n"
                  "    switch (block)\n    {\n" + "".join(calls) + "    }\n    return 2;\n}\n")
    with open(output, "w", encoding="utf-8") as file:
        file.write("".join(dict.fromkeys(includes)) + "".join(body) + '#line 1 "dispatcher"\n' + dispatcher)


def check(document, program):
    failures = 0
    for number, (line, _, _, expected) in enumerate(blocks(document)):
        with tempfile.TemporaryDirectory() as folder:
            result = subprocess.run([os.path.abspath(program), str(number)], cwd=folder, capture_output=True, text=True,
                                    timeout=60, check=False)
        place = f"{document}:{line}"
        if result.returncode != 0:
            failures += 1
            print(f"{place}: exit status {result.returncode}\n{result.stdout}{result.stderr}")
        elif expected is not None and result.stdout.replace("\r\n", "\n") != expected:
            failures += 1
            print(f"{place}: the document says\n{expected}but the program prints\n{result.stdout}")
    return 1 if failures else 0


if __name__ == "__main__":
    if len(sys.argv) != 4 or sys.argv[1] not in ("generate", "check"):
        sys.exit(__doc__)
    sys.exit({"generate": generate, "check": check}[sys.argv[1]](sys.argv[2], sys.argv[3]))
