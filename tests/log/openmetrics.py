#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads the figures of the log with another maker's parser of OpenMetrics: openmetrics.py TEST_PROGRAM"""

import os
import subprocess
import sys
import tempfile

try:
    from prometheus_client.openmetrics.parser import text_string_to_metric_families
except ImportError:
    print("skipped: there is no prometheus_client (Debian: python3-prometheus-client)")
    sys.exit(77)

with tempfile.TemporaryDirectory() as folder:
    path = os.path.join(folder, "figures")
    subprocess.run([sys.argv[1], "--gtest_filter=nxLogFigures.CountByDeviceAndReason"], check=True,
                   env={**os.environ, "NX_TEST_OPENMETRICS": path}, stdout=subprocess.DEVNULL)
    with open(path, encoding="utf-8") as file:
        families = {family.name: family for family in text_string_to_metric_families(file.read())}
devices = {sample.labels["device"]: sample.value for sample in families["nxcore_log_device_records"].samples}
assert list(devices) == ["device1", 'a "b"\\\\x0A\\xFF', "console#2", "console"], devices
assert families["nxcore_log_records_written"].samples[0].value == 2
assert families["nxcore_log_queue_limit_bytes"].unit == "bytes"
assert len(families["nxcore_log_records_dropped"].samples) == 4
assert 0 < families["nxcore_log_last_round_seconds"].samples[0].value < 100
assert all(family.documentation for family in families.values())
