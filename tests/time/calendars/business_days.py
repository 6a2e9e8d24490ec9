# SPDX-License-Identifier: Apache-2.0
"""Compares a business calendar with NumPy's, for weekends of several kinds and holidays that also follow each other."""

import datetime
import random
import subprocess
import sys

try:
    import numpy
except ImportError:
    print("skipped: there is no NumPy")
    sys.exit(77)

WEEKENDS = ("0000011", "0000110", "0000001", "0000000", "1010111")  # from Monday; 1 is a day of the weekend
DAYS = (-200, -17, -3, -1, 1, 2, 16, 17, 200)

random.seed(1)
for weekend in WEEKENDS:
    first = datetime.date(2022, 1, 1)
    days = random.sample(range(5 * 365), 60)
    days += range(days[0], days[0] + 12)
    holidays = sorted({(first + datetime.timedelta(day)).isoformat() for day in days})
    calendar = numpy.busdaycalendar(weekmask=weekend.translate(str.maketrans("01", "10")), holidays=holidays)
    mask = str(int(weekend[::-1], 2))
    lines = subprocess.run([sys.argv[1], mask, *holidays], check=True, text=True, stdout=subprocess.PIPE).stdout.splitlines()
    dates = numpy.array([line.split()[0] for line in lines], dtype="datetime64[D]")
    columns = [dates]
    for roll in ("following", "modifiedfollowing", "preceding", "modifiedpreceding"):
        columns.append(numpy.busday_offset(dates, 0, roll=roll, busdaycal=calendar))
    for count in DAYS:
        roll = "preceding" if count > 0 else "following"
        columns.append(numpy.busday_offset(dates, count, roll=roll, busdaycal=calendar))
    columns.append(numpy.busday_count(dates[0], dates, busdaycal=calendar))
    for line, *expected in zip(lines, *columns):
        assert line == " ".join(map(str, expected)), (weekend, line, expected)
    assert len(lines) == 1096
