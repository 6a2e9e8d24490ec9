#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Holds the manual page nxcore(7) against the settings that the sources read and the guide explains: settings.py SOURCE"""

import pathlib
import re
import sys

source = pathlib.Path(sys.argv[1])
code = "".join(file.read_text(encoding="utf-8") for file in sorted((source / "core").rglob("*.cpp")))
read = set(re.findall(r'\b(?:Get|GetCapitals|GetBool|GetNumber|GetEnvValue\w*|Copy|GetValue)\(\s*"?((?:QRX|NX|TZ)[A-Z_]*)\b', code))

page = (source / "docs/nxcore.7").read_text(encoding="utf-8").replace(r"\-", "-").replace(r"\(rs", "\\")
page = page[page.index(".SH ENVIRONMENT"):page.index(".SH FILES")]
shown = {}
for names, text in re.findall(r"^\.TP\n(.*)\n((?:(?!\.[TP]P).*\n)*)", page, re.M):
    default = re.search(r"^Default: (.*)\.$", text, re.M)
    shown.update((name, default and default.group(1)) for name in re.findall(r"\\fB(\w+)\\fR", names))

guide = "".join((source / "docs/guide" / page).read_text(encoding="utf-8") for page in ("logging.md", "operating.md"))
explained = {}
for name, default in re.findall(r"^\| `((?:QRX|NX)_\w+)` \|[^|]*\| *([^|]*?) *\|", guide, re.M):
    literal = re.match(r"`([^`]*)`", default)
    explained[name] = literal.group(1) if literal else re.split(r"[:;,]", default)[0]

faults = [f"{name}: read, not in nxcore.7" for name in sorted(read - shown.keys())]
faults += [f"{name}: in nxcore.7, never read" for name in sorted(shown.keys() - read)]
faults += [f"{name}: the default is '{shown.get(name)}' in nxcore.7, '{default}' in the guide"
           for name, default in sorted(explained.items()) if shown.get(name) != default]
faults += [f"{name}: neither in logging.md nor in operating.md" for name in sorted(read - explained.keys()) if "_LOG_" in name]
glance = guide[guide.index("## Settings at a glance"):guide.index("## What settings cost")]
faults += [f"{name}: not in the table of operating.md" for name in sorted(read) if "_LOG_" in name and f"`{name}" not in glance]
print("\n".join(faults))
sys.exit(1 if faults or not read else 0)
