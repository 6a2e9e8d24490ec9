#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes what the documents say of a run of the benchmarks: report.py [--check]

docs/benchmarks.json has the figures of the run; `benchmarks/run --document` writes it. From it come the marked blocks of
README.md and docs/benchmarks.md and the chart docs/benchmarks.svg. --check changes nothing and fails if a document says
something else than the figures.
"""

import json
import os
import re
import statistics
import sys

sys.dont_write_bytecode = True
import chart

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FIGURES = os.path.join(ROOT, "docs", "benchmarks.json")
TOOL_FIGURES = os.path.join(ROOT, "docs", "nxtick-benchmark.json")  # benchmarks/nxtick.py writes them

# The rows of the README and of the chart: what is won, what is level and what is lost.
TEN_ROWS = {
    "log_caller/threads:1": "asynchronous log, its caller",
    "time_stamp_text_successive": "time stamp to text",
    "decimal_parse": "decimal from text",
    "int64_parse": "integer from text",
    "tick_round_10": "price to the tick, ten bands",
    "text_to_enum_4000": "text to enumeration, 4,000 names",
    "decimal_less_other_scale": "compare decimals across scales",
    "mutex_alone": "lock and unlock a mutex",
    "tick_round_scattered_20": "price to the tick, jumping over bands",
    "spin_lock_contended/threads:2": "spin lock, contended",
}
# Contenders whose name in the program is not the name that readers know.
NAMES = {"spdlog_async": "spdlog", "log4cplus_async": "log4cplus", "bid64": "BID64", "fmt_chrono": "{fmt}", "std": "standard library",
         "fmt_compiled_buffer": "{fmt}", "fmt_compiled": "{fmt}", "fmt_format_int": "{fmt}", "from_chars": "std::from_chars",
         "cpp_dec_float": "Boost decimal", "boost": "Boost", "boost_uint256": "Boost 256-bit", "double_floor": "floor of a double, inexact",
         "binary_search_int": "binary search", "absl": "Abseil", "normal": "bare mutex",
         "counter_and_copy": "counter and copy", "remembered_band": "remembered band"}
LEVEL = 0.03  # times that differ by less count as equal


def name_of(column):
    plain = column.split("_", 1)[1]
    return NAMES.get(plain, plain.replace("_", " "))


def shown(value, unit):
    if value is None:
        return "-"
    if unit == "/s":
        return f"{value / 1e6:.2f} M/s"
    return f"{value:.2f} ns" if value < 1000 else f"{value / 1000:.1f} us" if value < 1e6 else f"{value / 1e6:.2f} ms"


def brief(value):
    """Nanoseconds with three digits: 4.07, 13.0, 566."""
    return f"{value:.{2 if value < 10 else 1 if value < 100 else 0}f} ns"


def best(entry, prefix):
    """The fastest column of a kind, with its value."""
    candidates = {name: value for name, value in entry["columns"].items() if name.startswith(prefix)}
    if not candidates:
        return None, None
    name = (max if entry["unit"] == "/s" else min)(candidates, key=candidates.get)
    return name, candidates[name]


def quartiles(ratios):
    """[median, lower quartile, upper quartile], or the only ratio."""
    if len(ratios) < 2:
        return ratios
    lower, _, upper = statistics.quantiles(ratios, n=4, method="inclusive")
    return [statistics.median(ratios), lower, upper]


def ratio_of(entry, column):
    """[median] or [median, lower quartile, upper quartile] of ours over a column, each within one repetition."""
    return entry["ratios"].get(column)


def shown_ratio(ratio):
    if not ratio:
        return ""
    return f"{ratio[0]:.2f}" + (f" ({ratio[1]:.2f} to {ratio[2]:.2f})" if len(ratio) == 3 else "")


def threads_of(row):
    found = re.search(r"/threads:(\d+)", row) or re.match(r"log_rate_\w*_(\d+)$", row)
    return int(found.group(1)) if found else 1


def is_crowded(row, processors):
    """Whether the row has more threads than processors, and so measures the scheduler."""
    return threads_of(row) > processors


def crowded(row, figures):
    return is_crowded(row, figures["machine"]["processors"])


def cost(entry, column):
    """Our time over that of a column; for rates their rate over ours. Above 1 we are slower."""
    ratio = ratio_of(entry, column)[0]
    return 1 / ratio if entry["unit"] == "/s" else ratio


def reached(verdict):
    """The ratio that was held against a goal, as ratio_of() gives it."""
    return [verdict["ratio"], *verdict.get("quartiles", [])]


def verdicts(figures):
    return [(row, verdict) for row, entry in figures["rows"].items() if not crowded(row, figures)
            for verdict in entry["verdicts"]]


def goals_met(figures):
    met = [verdict["met"] for _, verdict in verdicts(figures)]
    return f"{sum(met)} of {len(met)} goals met"


def row_line(row, entry, judged):
    ours = entry["columns"].get(entry["ours"])
    cells = [row + (" (unsteady)" if entry.get("unsteady") else ""), shown(ours, entry["unit"])]
    for kind in ("limit_", "peer_"):
        column, value = best(entry, kind)
        cells += [f"{shown(value, entry['unit'])} {column[len(kind):]}", shown_ratio(ratio_of(entry, column))] if column else ["", ""]
    cells.append("; ".join(f"{shown_ratio(reached(v))} {v['goal']} {v['against']}: {'met' if v['met'] else 'MISSED'}"
                           for v in entry["verdicts"]) if judged else "")
    return tuple(cells)


def rows_table(figures, are_crowded):
    lines = [row_line(row, entry, not are_crowded) for row, entry in figures["rows"].items()
             if crowded(row, figures) == are_crowded]
    return [("row", "ours", "limit", "ratio", "best peer", "ratio", "goal"), *lines] if lines else []


def percentiles(figures):
    """Of the rows that have them: how long the calls took in the median, and what one in 100 and in 1000 exceeded."""
    keys = ("p50", "p99", "p999")
    lines = [(row, column, *(shown(counters[key], "ns") for key in keys)) for row, entry in figures["rows"].items()
             for column, counters in entry["counters"].items() if counters.keys() >= set(keys)]
    return [("row", "column", "median", "99 %", "99.9 %"), *lines] if lines else []


def compared(figures):
    """(our time over the best peer's, row, entry, peer) of the rows that count and have a peer, the worst loss first."""
    found = []
    for row, entry in figures["rows"].items():
        peer, _ = best(entry, "peer_")
        if peer and not crowded(row, figures):
            found.append((cost(entry, peer), row, entry, peer))
    return sorted(found, key=lambda each: -each[0])


def comparison(lines):
    return [("row", "ours", "best peer", "our time over its"),
            *((row, shown(entry["columns"][entry["ours"]], entry["unit"]),
               f"{shown(entry['columns'][peer], entry['unit'])} {peer[5:]}", f"{factor:.2f}") for factor, row, entry, peer in lines)]


def losses(figures):
    return comparison([line for line in compared(figures) if line[0] > 1 + LEVEL])


def wins(figures):
    return comparison([line for line in reversed(compared(figures)) if line[0] < 1 - LEVEL])


def above_the_limit(figures):
    """The rows without a peer that are furthest above their limit."""
    found = []
    for row, entry in figures["rows"].items():
        limit, value = best(entry, "limit_")
        if limit and not crowded(row, figures) and not best(entry, "peer_")[0] and cost(entry, limit) > 1 + LEVEL:
            found.append((cost(entry, limit), row, shown(entry["columns"][entry["ours"]], entry["unit"]),
                          f"{shown(value, entry['unit'])} {limit[6:]}"))
    lines = [(row, ours, limit, f"{factor:.2f}") for factor, row, ours, limit in sorted(found, reverse=True)]
    return [("row", "ours", "limit", "our time over its"), *lines] if lines else []


def missed(figures):
    lines = [(row, shown_ratio(reached(v)), f"{v['goal']} {v['against']}") for row, v in verdicts(figures) if not v["met"]]
    return [("row", "ratio", "goal"), *lines] if lines else []


def markdown(lines):
    cells = ["| " + " | ".join(line) + " |" for line in lines]
    return "\n".join([cells[0], "|" + "---|" * len(lines[0]), *cells[1:]])


def description(figures):
    machine = figures["machine"]
    told = [("date", machine.get("date")), ("commit", machine.get("commit")),
            ("processor", f"{machine['processor']}, {machine['processors']} processors"), ("kernel", machine.get("kernel")),
            ("frequency governor", machine.get("governor")), ("compiler", f"{machine['compiler']}; Release (`-O3 -DNDEBUG`)"),
            ("peers", machine.get("peers")), ("repetitions", str(machine["repetitions"])),
            ("ratios", machine["ratios"]), ("goals", goals_met(figures))]
    return markdown([("of the run", ""), *((what, value or "not recorded") for what, value in told)])


def workers(seconds):
    """Lines (programs, ratio) of the tool: two workers' seconds over one's, each within one run, with quartiles."""
    pairs = [(name, name.replace("2 workers", "1 worker")) for name in seconds if "2 workers" in name]
    return [(f"{two} / {one.removeprefix('nxtick, ')}", shown_ratio(quartiles([a / b for a, b in zip(seconds[two], seconds[one])])))
            for two, one in pairs if one in seconds]


def tool_block():
    """What the run of nxtick and other programs over one file of prices gave."""
    with open(TOOL_FIGURES, encoding="utf-8") as file:
        tool = json.load(file)
    parts = ["## nxtick beside other programs",
             f"`benchmarks/nxtick.py`, {tool['rows']:,} rows of four columns; {tool['date']}, commit {tool['commit']}, {tool['processors']} "
             f"processors, kernel {tool['kernel']}; {'; '.join(tool['versions'])}. All programs add the tick, the snapped price and by how "
             "much it moved, and write to /dev/null; only nxtick computes exactly. The runs of all programs alternate."]
    for title, seconds in tool["seconds"].items():
        lines = [("program", "seconds, median", "least to most", "million rows a second")]
        for name, all_times in seconds.items():
            median = statistics.median(all_times)
            lines.append((name, f"{median:.2f}", f"{min(all_times):.2f} to {max(all_times):.2f}", f"{tool['rows'] / median / 1e6:.2f}"))
        parts += [f"{title[0].upper()}{title[1:]}:", markdown(lines)]
        if workers(seconds):
            parts.append(markdown([("two workers over one", "ratio within a run, median and quartiles"), *workers(seconds)]))
    return parts


def page_block(figures):
    parts = ["## The run", description(figures), "## Losses", "Rows in which an alternative is faster, the worst first.",
             markdown(losses(figures))]
    if above_the_limit(figures):
        parts += ["Rows without an alternative, beside their limit.", markdown(above_the_limit(figures))]
    if missed(figures):
        parts += ["## Missed goals", markdown(missed(figures))]
    parts += ["## Wins", "Rows in which every alternative is slower, the best first.", markdown(wins(figures)),
              "## All rows", markdown(rows_table(figures, False))]
    if rows_table(figures, True):
        parts += ["## More threads than processors",
                  "These rows measure the scheduler: a thread may finish its share before the next one starts, and then the "
                  "time of a call looks shorter than it is. No goal depends on them.", markdown(rows_table(figures, True))]
    parts += ["## Percentiles", markdown(percentiles(figures))] if percentiles(figures) else []
    parts += tool_block()
    parts += ["## Other costs", markdown([tuple(line) for line in figures["costs"]])] if figures["costs"] else []
    return "\n\n".join(parts)


def ten_rows(figures):
    """(words, entry, best peer) of the rows that the README shows and the figures have."""
    return [(words, figures["rows"][row], best(figures["rows"][row], "peer_")[0]) for row, words in TEN_ROWS.items()
            if row in figures["rows"] and best(figures["rows"][row], "peer_")[0]]


def readme_block(figures):
    lines = [("operation", "nxcore", "alternative", "nxcore / alternative")]
    for words, entry, peer in ten_rows(figures):
        factor = f"{cost(entry, peer):.2f}"
        lines.append((words, brief(entry["columns"][entry["ours"]]), f"{brief(entry['columns'][peer])} ({name_of(peer)})",
                      f"**{factor}**" if cost(entry, peer) > 1 + LEVEL else factor))
    rows = compared(figures)
    lost = sum(factor > 1 + LEVEL for factor, *_ in rows)
    won = sum(factor < 1 - LEVEL for factor, *_ in rows)
    return (markdown(lines) + f"\n\nBold rows are losses. Of all {len(rows)} rows with an alternative, nxcore is faster in {won}, "
            f"slower in {lost}, and level in {len(rows) - won - lost}.")


def with_block(text, block):
    begin, end = "<!-- figures -->", "<!-- end of figures -->"
    before, rest = text.split(begin)
    return before + begin + "\n" + block + "\n" + end + rest.split(end)[1]


def documents(figures):
    """{path: what it has to say}"""
    wanted = {}
    for name, block in (("README.md", readme_block(figures)), ("docs/benchmarks.md", page_block(figures))):
        with open(os.path.join(ROOT, name), encoding="utf-8") as file:
            wanted[name] = with_block(file.read(), block)
    wanted["docs/benchmarks.svg"] = chart.draw(
        [(words, brief(entry["columns"][entry["ours"]]),
          [("ours", "nxcore", 1.0)] + [(column.split("_")[0], name_of(column), 1 / cost(entry, column), column == peer)
                                       for column in entry["columns"] if not column.startswith("ours")])
         for words, entry, peer in ten_rows(figures)])
    return wanted


def write(figures):
    """Renews the figures and everything that is made from them. One row of the figures is one line."""
    head = {key: value for key, value in figures.items() if key != "rows"}
    rows = ",\n".join(f"  {json.dumps(row)}: {json.dumps(entry)}" for row, entry in figures["rows"].items())
    with open(FIGURES, "w", encoding="utf-8") as file:
        file.write(json.dumps(head, indent=1).removesuffix("\n}") + ',\n "rows": {\n' + rows + "\n }\n}\n")
    for name, text in documents(figures).items():
        with open(os.path.join(ROOT, name), "w", encoding="utf-8") as file:
            file.write(text)


def main():
    with open(FIGURES, encoding="utf-8") as file:
        figures = json.load(file)
    if sys.argv[1:] != ["--check"]:
        write(figures)
        return
    stale = []
    for name, text in documents(figures).items():
        with open(os.path.join(ROOT, name), encoding="utf-8") as file:
            if file.read() != text:
                stale.append(name)
    if stale:
        sys.exit(f"{', '.join(stale)}: not what docs/benchmarks.json gives; run benchmarks/report.py")


if __name__ == "__main__":
    main()
