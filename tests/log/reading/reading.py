#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads with other programs what logWriter logs: reading.py WRITER PAGE FORMAT_OF_LNAV KIND

KIND is `lnav`, which sees every form of lines, or that of the page's recipes to run: "```sh KIND [ACTION]". What follows as
"```text output" is what they print, but for times.
"""

import contextlib
import csv
import gzip
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

JOURNAL = "/lib/systemd/systemd-journald"
# What differs from run to run.
NOISE = r"waited: \d+|\d\d[A-Z][a-z]{2}\d\d \d\d:\d\d:\d\d\.\d{3}\.\d{3}"
TOOLS = {"text": (), "json": ("jq", "lnav"), "lnav": ("lnav",), "journal": ("journalctl", "jq", JOURNAL)}
STEPS = ("gateway open", "pricing gap", "gateway receive", "gateway fill", "pricing publish", "pricing lose")
ROWS = [("info", "INF", "0", "Session.cpp:41", "", "session is open"), ("warning", "WRN", "0", "Pricing.cpp:88", "", "gap"),
        ("info", "INF", "1", "Gateway.cpp:12", "", "order received"), ("info", "INF", "1", "Gateway.cpp:12", "", "order received"),
        ("info", "INF", "2", "Gateway.cpp:30", "", "order filled"), ("error", "ERR", "2", "Gateway.cpp:44", "", "order rejected"),
        ("info", "INF", "2", "Gateway.cpp:30", "", "order filled"), ("notice", "PB1", "1", "Pricing.cpp:95", "", "trading has begun"),
        ("warning", "WRN", "3", "core/trunk/nxLogManager:211", "3", "Log records dropped")]


class Writers(dict):
    """Two processes that log into one directory, step by step."""

    def __init__(self, stack, folder, settings):
        environment = {**os.environ, "QRX_LOG_DIRECTORY": str(folder / "log"), **settings}
        for name in ("gateway", "pricing"):
            self[name] = stack.enter_context(subprocess.Popen([writer, name], env=environment, text=True, bufsize=1,
                                                              stdin=subprocess.PIPE, stdout=subprocess.PIPE))

    def do(self, *steps):
        for name, step in map(str.split, steps):
            print(step, file=self[name].stdin)
            assert self[name].stdout.readline() == step + "\n", step


def shell(command, folder):
    result = subprocess.run(["bash", "-c", command], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                            check=False)
    return result.stdout + result.stderr


def follow(command, folder, writers):
    """The command shows the file of today and the next one. Its lines are waited for until the test's time is over."""
    with subprocess.Popen(["bash", "-c", command], cwd=folder, stdout=subprocess.PIPE, text=True, start_new_session=True) as reader:
        assert any("order=4713" in line for line in reader.stdout)
        writers.do("gateway rotate", "gateway fill")
        assert any("order=4713" in line for line in reader.stdout)
        os.killpg(reader.pid, signal.SIGKILL)


def recipes(kind, page):
    with tempfile.TemporaryDirectory() as name, contextlib.ExitStack() as stack:
        folder = pathlib.Path(name)
        writers = Writers(stack, folder, {"NX_LOG_FORM": "JSON" if kind == "json" else "TEXT"})
        writers.do(*STEPS)
        if kind == "journal":
            subprocess.run(["journalctl", "--sync"], check=True)
        blocks = re.findall(r"^```sh (\w+) ?(\w*)\n(.*?)^```\n(?:\n```text output\n(.*?)^```)?", page, re.M | re.S)
        for _, action, command, expected in [block for block in blocks if block[0] == kind]:
            first = next(folder.glob("log/*/gateway_*_1.log"), None)
            if action == "follow":
                follow(command, folder, writers)
                continue
            if action == "torn":
                (first.parent / "killed_090703_4711_1.log").write_text('{"time":"2024-03')
            elif action == "packed":
                with gzip.open(f"{first}.gz", "wb") as packed:
                    packed.write(first.read_bytes())
                first.unlink()
            printed = shell(command, folder)
            if re.sub(NOISE, "", printed) != re.sub(NOISE, "", expected):
                yield f"{command}prints\n{printed}not\n{expected}"


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(77)


def enter_name_space():
    """Begins this program again where mounts are its own, so that nothing reaches the machine's journal."""
    inside = ["unshare", "-m", "sh", "-c", 'mount -t tmpfs none /run && exec "$@"', "sh"]
    if "NX_TEST_INSIDE" not in os.environ:
        if subprocess.run([*inside, "true"], stderr=subprocess.DEVNULL, check=False).returncode:
            skip("a name space for mounts cannot be made here")
        os.environ["NX_TEST_INSIDE"] = "yes"
        os.execvp(inside[0], [*inside, sys.executable, "-B", *sys.argv])


def start_journal(stack):
    settings = pathlib.Path("/run/systemd/journald.conf.d/test.conf")
    settings.parent.mkdir(parents=True)
    settings.write_text("[Journal]\nStorage=volatile\nReadKMsg=no\nAudit=no\nForwardToSyslog=no\nRateLimitBurst=0\n")
    journal = stack.enter_context(subprocess.Popen([JOURNAL]))
    stack.callback(journal.kill)
    while not pathlib.Path("/run/systemd/journal/socket").exists():
        if journal.poll() is not None:
            skip("a journal cannot be started here")
        time.sleep(0.01)
    os.environ["NX_LOG_TO_JOURNAL"] = "yes"


def forms():
    """lnav shows the same rows, in the order of time, whatever the lines look like."""
    for settings in ({}, {"NX_LOG_TIME": "UTC", "NX_LOG_LINE_END": "LF"}, {"NX_LOG_TIME": "ISO"}, {"NX_LOG_TIME": "ISO_UTC"},
                     {"QRX_LOG_THREAD_INDEX": "NO"}, {"NX_LOG_FORM": "JSON"}, {"NX_LOG_FORM": "JSON", "NX_LOG_TIME": "ISO"}):
        with tempfile.TemporaryDirectory() as name, contextlib.ExitStack() as stack:
            loses = settings in ({}, {"NX_LOG_FORM": "JSON"})  # which takes a second
            Writers(stack, pathlib.Path(name), {"TZ": "Europe/Berlin", **settings}).do(*STEPS if loses else STEPS[:-1])
            table = "nxcore_json_log" if "NX_LOG_FORM" in settings else "nxcore_log"
            printed = shell(f"lnav -n -c ';SELECT log_time, log_level, level, thread, source, lost, log_body FROM {table}' "
                            "-c ':write-csv-to -' log/*/*.log", name)
        found = [row for row in csv.reader(printed.replace("<NULL>", "").splitlines()[1:])
                 if len(row) == 7 and not re.match("Pricing.cpp:70|core/trunk/nxFileLogDevice", row[4])]
        wanted = [(*row[:2], "" if "QRX_LOG_THREAD_INDEX" in settings else row[2], *row[3:]) for row in (ROWS if loses else ROWS[:-1])]
        if len(found) != len(wanted) or any(tuple(a[1:6]) != b[:5] or not a[6].startswith(b[5]) for a, b in zip(found, wanted)):
            yield f"{settings}: lnav shows\n{printed[-3000:]}"
        elif abs(time.mktime(time.strptime(found[0][0][:19], "%Y-%m-%d %H:%M:%S")) - time.time()) > 2 * 86400:
            yield f"{settings}: not the time of today: {found[0]}"


writer, page, lnav_format, kind = sys.argv[1:]
missing = [tool for tool in TOOLS[kind] if not shutil.which(tool)]
if missing:
    skip(f"there is no {missing[0]}")
if kind == "journal":
    enter_name_space()
with tempfile.TemporaryDirectory() as home, contextlib.ExitStack() as stack:
    # At noon no two records are of different days.
    os.environ.update(HOME=home, LC_ALL="C", QRX_LOG_FORCE_FLUSH="TRUE", TZ=f"NOON{time.gmtime().tm_hour - 12}")
    for name in [name for name in os.environ if name.startswith(("NX_LOG", "XDG_", "QRX_LOG_T"))]:
        del os.environ[name]
    if kind == "journal":
        start_journal(stack)
    faults = []
    if kind in ("json", "lnav"):
        subprocess.run(["lnav", "-i", lnav_format], stdout=subprocess.DEVNULL, check=True)
    if kind == "lnav":
        faults += forms()
    faults += recipes(kind, pathlib.Path(page).read_text(encoding="utf-8"))
print("\n".join(faults))
sys.exit(1 if faults else 0)
