#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs example_server under load while every setting of its log changes, ends it by SIGTERM, and finds every order once.

    soak.py SERVER [--seconds N] [--seed N] [--rate N] [--folder DIRECTORY]

Each function below with the mark @changer changes one thing. They are called in a random order, with a short pause after
each, until the time is over. What the server wrote stays in the folder if a fault was found.
"""

import argparse
import collections
import os
import random
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
RECORDS = os.path.join(HERE, "..", "..", "examples", "server", "records.py")
ORDER = re.compile(rb"feed (\d+) order (\d+) handled")
PACKED = (".gz", ".xz", ".zst")
CHANGERS = []


def changer(function):
    """Marks a function that changes something; it returns False where the machine lacks what it needs."""
    CHANGERS.append(function)
    return function


class Fault(Exception):
    """The server has not done what it was told."""


class Service:
    """A stand-in for the journal or for syslog. It may be away; what it had not read then is lost. None comes twice."""

    def __init__(self, path):
        self.path = path
        self.seen = set()
        self.double = 0
        self.thread = None
        self.come()

    def come(self):
        if self.thread is not None:
            return
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.socket.bind(self.path)
        self.socket.settimeout(0.1)
        self.is_leaving = False
        self.thread = threading.Thread(target=self.read, daemon=True)
        self.thread.start()

    def leave(self):
        if self.thread is None:
            return
        self.is_leaving = True
        self.thread.join()
        self.thread = None
        os.unlink(self.path)
        self.socket.close()

    def read(self):
        while not self.is_leaving:
            try:
                order = ORDER.search(self.socket.recv(1 << 20))
            except TimeoutError:
                continue
            if order:
                key = (int(order[1]) << 40) + int(order[2])
                self.double += key in self.seen
                self.seen.add(key)


class Soak:
    """A running server and the folder of its files."""

    def __init__(self, arguments, folder):
        self.random = random.Random(arguments.seed)
        self.folder = folder
        self.log = os.path.join(folder, "log")
        self.kept = os.path.join(folder, "kept")  # files that were taken from the log's folder
        self.control = os.path.join(folder, "control")
        os.makedirs(self.kept)
        self.output = open(os.path.join(folder, "output"), "wb")
        environment = {name: value for name, value in os.environ.items() if not name.startswith(("QRX_", "NX_"))}
        environment["QRX_LOG_DIRECTORY"] = self.log
        environment["NX_LOG_LEVEL_FILE"] = self.level_file = os.path.join(folder, "levels")
        self.services = {key: Service(os.path.join(folder, key)) for key in ("NX_LOG_TO_JOURNAL", "NX_LOG_TO_SYSLOG")}
        environment.update({key: service.path for key, service in self.services.items()})
        self.server = subprocess.Popen(
            [arguments.server, "-feeds", "4", "-workers", "4", "-rate", str(arguments.rate),
             "-filesize", "4000000", "-control", self.control],
            env=environment, stdout=subprocess.DEVNULL, stderr=self.output)
        self.wait_for_new_file([], "the start")

    def wait(self, condition, what):
        """Waits until a condition holds, half a minute at most."""
        end = time.monotonic() + 30
        while not condition():
            if self.server.poll() is not None:
                raise Fault(f"the server has ended with status {self.server.returncode}")
            if time.monotonic() > end:
                raise Fault(f"waited half a minute for {what}")
            time.sleep(0.01)

    def files_in_use(self):
        """The files that the server has open."""
        folder = f"/proc/{self.server.pid}/fd"
        names = []
        for number in os.listdir(folder):
            try:
                names.append(os.readlink(os.path.join(folder, number)))
            except FileNotFoundError:
                pass
        return names

    def open_files(self):
        """The log files among them; neither folders nor a file that was moved elsewhere."""
        return [name for name in self.files_in_use() if name.startswith(self.log + "/") and name.endswith(".log")]

    def wait_for_new_file(self, before, why):
        self.wait(lambda: set(self.open_files()) - set(before), f"a new file after {why}")

    def kept_files(self):
        """The plain files that were taken from the log's folder, and that the server has closed."""
        in_use = self.files_in_use()
        return [name for name in (os.path.join(self.kept, name) for name in sorted(os.listdir(self.kept)))
                if ".log" in name and not name.endswith(PACKED) and name not in in_use]

    def set(self, *lines):
        """Has the server carry out lines of its control file."""
        with open(self.control + ".new", "w", encoding="ascii") as file:
            file.write("".join(f"{line}\n" for line in lines))
        os.rename(self.control + ".new", self.control)
        self.server.send_signal(signal.SIGUSR1)
        self.wait(lambda: not os.path.exists(self.control), f"the server to carry out {lines}")

    def set_one_of(self, name, *values):
        self.set(f"{name} {self.random.choice(values)}")

    def finish(self):
        """Ends the server in the orderly way."""
        for service in self.services.values():
            service.come()
        self.set("level INF")
        self.server.send_signal(signal.SIGTERM)
        try:
            status = self.server.wait(60)
        except subprocess.TimeoutExpired:
            raise Fault("the server has not ended within a minute") from None
        if status != 0:
            raise Fault(f"the server has ended with status {status}")

    def settle(self):
        """Waits for compressors of the library, which run beside the server and may outlive it."""
        names, before = set(), None
        while names != before:
            time.sleep(2)
            before, names = names, {name for _, _, names in os.walk(self.log) for name in names}

    def close(self):
        self.server.kill()
        self.server.wait()
        for service in self.services.values():
            service.leave()
        self.output.close()


@changer
def level(soak):
    soak.set_one_of("level", "DBG", "INF")


# The orders are at the level INF in Server.cpp, so that these lose none.
LEVELS = ("INF", "DBG", "INF,Server.cpp=DBG", "WRN,Server.cpp=INF", "INF,core/=ERR,server/=DBG", "ERR,examples/=INF")


@changer
def levels(soak):
    soak.set_one_of("levels", *LEVELS)


@changer
def level_file(soak):
    """The library looks at it once a second."""
    if soak.random.random() < 0.3 and os.path.exists(soak.level_file):
        os.remove(soak.level_file)
        return
    with open(soak.level_file + ".new", "w", encoding="ascii") as file:
        file.write(soak.random.choice(LEVELS + ("this is no level",)).replace(",", "\n") + "\n")
    os.rename(soak.level_file + ".new", soak.level_file)


@changer
def flush_time(soak):
    soak.set_one_of("flush", "0", "0.1", "1", "3")


@changer
def thread_index(soak):
    soak.set_one_of("index", "on", "off")


@changer
def processor(soak):
    soak.set_one_of("processor", "on", "off")


@changer
def form(soak):
    """Several at once, between one line and the next."""
    soak.set(f"form {soak.random.choice(('text', 'json'))}", f"time {soak.random.choice(('local', 'utc', 'iso', 'iso-utc'))}",
             f"line-end {soak.random.choice(('crlf', 'lf'))}")


@changer
def form_of_console(soak):
    soak.set(f"console-form {soak.random.choice(('text', 'json'))}", f"colour {soak.random.choice(('never', 'always'))}")


@changer
def retention(soak):
    """More files than there are, so that none is removed, and each compressor in turn."""
    soak.set_one_of("retention", "0,none", "1000000,gzip", "1000000,xz", "0,zstd")


@changer
def console(soak):
    """A device that comes and goes."""
    soak.set_one_of("console", "on", "off")


@changer
def services(soak):
    """Devices that come and go."""
    soak.set_one_of(soak.random.choice(("journal", "syslog")), "on", "off")


@changer
def services_away(soak):
    """Services that come and go."""
    service = soak.services[soak.random.choice(sorted(soak.services))]
    service.leave() if service.thread is not None else service.come()


@changer
def hang_up(soak):
    before = soak.open_files()
    soak.server.send_signal(signal.SIGHUP)
    soak.wait_for_new_file(before, "SIGHUP")


@changer
def rename(soak):
    """As tools that rotate do: the server follows by itself."""
    before = soak.open_files()
    os.rename(before[0], os.path.join(soak.kept, f"renamed_{time.monotonic_ns()}.log"))
    soak.wait_for_new_file(before, "a rename")


@changer
def compress(soak):
    """From outside, files that were taken away."""
    for name in soak.kept_files()[:3]:
        program = soak.random.choice([program for program in ("gzip", "xz", "zstd") if shutil.which(program)])
        subprocess.run([program, "-q", *(["--rm"] if program == "zstd" else []), name], check=True)


@changer
def logrotate(soak):
    """Its rename and its signal, for the open file."""
    program = shutil.which("logrotate", path=os.environ.get("PATH", "") + ":/usr/sbin")
    if program is None:
        return False
    before = soak.open_files()
    configuration = os.path.join(soak.folder, "logrotate.conf")
    with open(configuration, "w", encoding="ascii") as file:
        file.write(f"""{before[0]} {{
    rotate 1000000
    size 1
    nocreate
    olddir {soak.kept}
    dateext
    dateformat _%s_{time.monotonic_ns()}
    postrotate
        kill -HUP {soak.server.pid}
    endscript
}}
""")
    os.chmod(configuration, 0o600)
    result = subprocess.run([program, "-f", "-s", os.path.join(soak.folder, "logrotate.state"), configuration],
                            capture_output=True, text=True)
    if result.returncode != 0:
        raise Fault(f"logrotate: {result.stderr}")
    soak.wait_for_new_file(before, "logrotate")


def change_until(soak, end):
    """Calls the changers until the time is over. Returns how often each was called, and those that cannot be."""
    counts, missing = collections.Counter(), set()
    while time.monotonic() < end:
        function = soak.random.choice([function for function in CHANGERS if function.__name__ not in missing])
        if function(soak) is False:
            missing.add(function.__name__)
        else:
            counts[function.__name__] += 1
        time.sleep(soak.random.uniform(0, 0.3))
    return counts, missing


def run(arguments, folder):
    soak = Soak(arguments, folder)
    try:
        counts, missing = change_until(soak, time.monotonic() + arguments.seconds)
        soak.finish()
        soak.settle()
    finally:
        soak.close()
    print("   changed:", ", ".join(f"{name} {count}" for name, count in sorted(counts.items())))
    for name in sorted(missing):
        print(f"   left out: {name}, because the machine lacks the program")
    result = subprocess.run([sys.executable, RECORDS, folder], capture_output=True, text=True)
    print("   found:", "; ".join(result.stdout.splitlines()))
    with open(os.path.join(folder, "output"), encoding="utf-8", errors="replace") as file:
        lost = [line for line in file if re.search("lost|not written", line)]
    double = sum(service.double for service in soak.services.values())
    print("   services:", ", ".join(f"{len(service.seen)} orders by {key}" for key, service in soak.services.items()))
    if double:
        raise Fault(f"a service got {double} orders twice")
    if result.returncode != 0 or lost:
        raise Fault("; ".join(["orders are missing or double"] * (result.returncode != 0) + lost))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("server")
    parser.add_argument("--seconds", type=int, default=600)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--rate", type=int, default=1000, help="orders of each of the four feeds in a second")
    parser.add_argument("--folder", default=None, help="an empty folder for the files; made unless given")
    arguments = parser.parse_args()
    folder = arguments.folder or tempfile.mkdtemp(prefix="nxsoak.")
    try:
        run(arguments, os.path.abspath(folder))
    except Fault as fault:
        print(f"   seed {arguments.seed}: {fault}; the files are in {folder}")
        sys.exit(1)
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
