# SPDX-License-Identifier: Apache-2.0
"""Compares the changes of zones, and the moments of the local times around them, with those of Python's zoneinfo."""

import datetime
import subprocess
import sys
import zoneinfo

END = 4102444800
EPOCH = datetime.datetime(1970, 1, 1)
ZONES = ["America/Chicago", "America/New_York", "Europe/London", "Asia/Kathmandu", "Australia/Lord_Howe",
         "Pacific/Apia", "Africa/Casablanca", "America/Havana", "Antarctica/Troll"]


def expected_moments(zone, local):
    offsets = [local.replace(tzinfo=zone, fold=fold).utcoffset() for fold in (0, 1)]
    moment = int((local - offsets[0] - EPOCH).total_seconds())
    later = max(offsets[0] - offsets[1], datetime.timedelta(0))  # nothing in a gap
    return [moment, moment + int(later.total_seconds())]


changes = {name: [] for name in ZONES}
lines = subprocess.run([sys.argv[1], *ZONES], check=True, text=True, stdout=subprocess.PIPE).stdout.splitlines()
for kind, name, *numbers in map(str.split, lines):
    if kind == "change":
        changes[name].append([int(number) for number in numbers])
        continue
    at = EPOCH + datetime.timedelta(seconds=int(numbers[0]))
    assert numbers[1:] == [str(each) for each in expected_moments(zoneinfo.ZoneInfo(name), at)], (name, at, numbers)
for name, found in changes.items():
    zone = zoneinfo.ZoneInfo(name)
    assert found, name
    for (begin, offset), (end, _) in zip(found, found[1:] + [[END, None]]):
        for second in [begin, *range(begin, end, 3 * 86400), end - 1]:
            moment = zone.fromutc((EPOCH + datetime.timedelta(seconds=second)).replace(tzinfo=zone))
            assert moment.utcoffset().total_seconds() == offset, (name, moment, offset)
