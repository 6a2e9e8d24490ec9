# SPDX-License-Identifier: Apache-2.0
"""The chart of the benchmarks: one dot for each contender, on one logarithmic axis."""

import html
import math

WIDTH, HEIGHT = 900, 400
LEFT, RIGHT, TOP, BOTTOM = 330, 870, 74, 346
LETTER = 6.2  # pixels, the mean width of a letter of 11 pixels

# Plain colours first, because not every viewer knows the reader's choice of a dark page.
STYLE = """<style>
text{font:12px 'DejaVu Sans',Verdana,Helvetica,sans-serif;fill:#1f2328}
.title{font-size:16px;font-weight:bold}.quiet{fill:#57606a;font-size:11px}
.page{fill:#ffffff}.line{stroke:#d0d7de}.one{stroke:#0b57d0;stroke-width:1.5}
.name{fill:#c2560c;font-size:11px;stroke:#ffffff;stroke-width:5;paint-order:stroke;stroke-linejoin:round}
.ours{fill:#0b57d0}.peer{fill:#c2560c}.limit{fill:none;stroke:#8c959f;stroke-width:2}
@media (prefers-color-scheme:dark){text{fill:#dde3ea}.quiet{fill:#98a3af}.page{fill:#0f141a}.line{stroke:#313a45}.one{stroke:#7db4ff}
.name{fill:#f5a35c;stroke:#0f141a}.ours{fill:#7db4ff}.peer{fill:#f5a35c}.limit{stroke:#7d8894}}
</style>"""


def at(ratio, low, high):
    return LEFT + (RIGHT - LEFT) * math.log(ratio / low) / math.log(high / low)


def text(x, y, words, anchor="start", kind=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" class="{kind}">{html.escape(words)}</text>'


def dot(kind, x, y, words):
    return f'<circle class="{kind}" cx="{x:.1f}" cy="{y:.1f}" r="{7 if kind == "limit" else 4.5}"><title>{html.escape(words)}</title></circle>'


def legend():
    parts, x = [], LEFT
    for kind, words in (("ours", "nxcore"), ("peer", "alternative"), ("limit", "bare minimum, which does less")):
        parts += [dot(kind, x + 5, 46, words), text(x + 16, 50, words, kind="quiet")]
        x += 40 + LETTER * len(words)
    return parts


def axis(low, high):
    parts = []
    for power in range(math.ceil(math.log10(low)), math.floor(math.log10(high)) + 1):
        x = at(10.0 ** power, low, high)
        parts += [f'<line class="{"one" if power == 0 else "line"}" x1="{x:.1f}" x2="{x:.1f}" y1="{TOP - 8}" y2="{BOTTOM}"/>',
                  text(x, BOTTOM + 18, f"{10.0 ** power:g}x", "middle", "quiet")]
    return parts + [text(LEFT, BOTTOM + 42, "\u2190 faster than nxcore", "start", "quiet"),
                    text(RIGHT, BOTTOM + 42, "slower than nxcore \u2192", "end", "quiet")]


def label(x, y, words, others):
    """The name of a dot, after the dots that touch it, on the side where there is room; else above it."""
    size = LETTER * len(words)
    right, left = x + 11, x - 11
    for other in sorted(others):
        right = other + 11 if x <= other < right + 4 else right
    for other in sorted(others, reverse=True):
        left = other - 11 if left - 4 < other <= x else left
    for start, place, anchor in ((right, right, "start"), (left - size, left, "end")):
        if LEFT - 4 <= start and start + size <= WIDTH - 4 and not any(start - 6 < other < start + size + 6 for other in others):
            return text(place, y + 4, words, anchor, "name")
    return text(min(max(x, LEFT + size / 2), WIDTH - 4 - size / 2), y - 9, words, "middle", "name")


def draw(rows):
    """An SVG of rows (words, our time, [(kind, name, time over ours, whether it has a label)]); ours comes first."""
    ratios = [contender[2] for _, _, contenders in rows for contender in contenders]
    low, high = min(ratios) / 1.6, max(ratios) * 3
    step = (BOTTOM - TOP) / max(1, len(rows))
    parts = [*legend(), *axis(low, high)]
    for index, (words, ours, contenders) in enumerate(rows):
        y = TOP + step * (index + 0.5)
        places = [at(contender[2], low, high) for contender in contenders]
        parts += [f'<line class="line" x1="{LEFT}" x2="{RIGHT}" y1="{y:.1f}" y2="{y:.1f}"/>',
                  text(LEFT - 76, y + 4, words, "end"), text(LEFT - 14, y + 4, ours, "end", "quiet")]
        for place, (kind, name, ratio, *labelled) in reversed(list(zip(places, contenders))):
            parts.append(dot(kind, place, y, f"{name}: {ratio:.2f}x"))
            if labelled == [True]:
                parts.append(label(place, y, name, [other for other in places if other != place]))
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" height="{HEIGHT}">\n{STYLE}\n'
            f'<rect class="page" width="100%" height="100%"/>\n{text(20, 28, "Time of one call relative to nxcore, logarithmic", kind="title")}\n'
            + "\n".join(parts) + "\n</svg>\n")
