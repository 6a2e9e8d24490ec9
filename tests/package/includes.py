#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Holds the includes of core/ to docs/architecture.md.

A unit is a header with its source and lists: one path without extension. Includes point sideways or down, units form no
circle and folders form none, the parts of the log are in the order of that page, the operating system is named in its folder
alone, and the umbrella header names exactly the public headers. No header calls the virtual bounds of an enumeration,
which g++ -O3 may turn into calls of functions that nobody instantiated. A file that names something of a precompiled header
includes that header, or a header that does.

    includes.py SOURCE               the headers and sources of the source tree
    includes.py SOURCE INSTALLED     what was installed from it: the public headers, and all they need and no more
"""

import os
import re
import sys

# The folders of core/, bottom first. Folders of one line are side by side.
LAYERS = (
    ("platform",),
    ("enum",),
    ("text",),
    ("time",),
    ("numeric",),
    ("thread",),
    ("process",),
    ("log",),
    ("price",),
    ("app",),
    ("format", "testing"),
)


def log_parts(root):
    """The parts of the log as the page has them, bottom first: [(name, [unit])]. A part includes itself and those before it."""
    with open(os.path.join(root, "docs/architecture.md"), encoding="utf-8") as page:
        rows = re.findall(r"^\| \d+ \| ([^|]+?) \| (`[^|]+`) \| [^|]+\|$", page.read(), re.M)
    return [(name, ["core/log/" + stem for stem in re.findall(r"`([^`]+)`", units)]) for name, units in rows]


# What belongs to the system: its folder, and the header that gives the locks their primitives.
SYSTEM_FOLDER = "core/platform/linux/"
NATIVE = "nxNative.h"
# Headers of the processor, not of the system, and the one of the library that a formatter is for.
PROCESSOR_HEADERS = {"cpuid.h", "emmintrin.h"}
FOREIGN_HEADERS = {("core/format/nxFmt.h", "fmt/format.h")}

# What names the headers that are precompiled, and therefore compile where they are not included.
_ALGORITHMS = ("adjacent_find all_of any_of binary_search clamp copy copy_backward copy_if copy_n count count_if equal equal_range fill "
               "fill_n find find_if for_each is_sorted lexicographical_compare lower_bound make_heap max max_element merge min "
               "min_element minmax mismatch move_backward none_of nth_element partition partition_point pop_heap push_heap remove "
               "remove_if replace reverse rotate search sort sort_heap stable_sort swap_ranges transform unique upper_bound")
STANDARD_NAMES = {
    "algorithm": f"(?:{_ALGORITHMS.replace(' ', '|')})\\(",
    "atomic": r"(?:atomic|memory_order)\w*",
    "memory": r"(?:(?:unique|shared|weak)_ptr|make_(?:unique|shared)|addressof|construct_at|destroy\w*|uninitialized_\w+|allocator\w*)\b",
    "string": r"(?:string|to_string|char_traits|getline)\b",
    "string_view": r"string_view\b",
    "utility": r"(?:move\(|forward<|(?:exchange|swap|as_const|declval|make_pair|pair|in_place\w*|index_sequence|cmp_\w+)\b)",
    "vector": r"vector\b",
}


class Tree:
    """The headers, sources and lists of core/, or of another folder, below a folder, as texts by their path from there."""

    def __init__(self, root, top="core"):
        self.texts = {}
        for folder, _, names in os.walk(os.path.join(root, top)):
            for name in names:
                if name.endswith((".h", ".inc", ".cpp")):
                    path = os.path.join(folder, name)
                    with open(path, encoding="utf-8") as file:
                        self.texts[os.path.relpath(path, root)] = file.read()

    def includes(self):
        """Every (file, project header that it includes)."""
        return [(path, target) for path, text in sorted(self.texts.items())
                for target in re.findall(r'^\s*#\s*include "([^"]+)"', text, re.M)]

    def headers(self):
        """{header or list: [project headers that it includes]}."""
        graph = {path: [] for path in self.texts if not path.endswith(".cpp")}
        for path, target in self.includes():
            if path in graph:
                graph[path].append(target)
        return graph

    def code(self):
        """Every (file, its text without comments)."""
        return [(path, re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.S)) for path, text in sorted(self.texts.items())]


def folder(path):
    """The folder of core/ that a path is in; None for the files of core/ itself."""
    parts = path.split("/")
    return parts[1] if len(parts) > 2 else None


def layer(path):
    """The number of the layer from the bottom; None for the files of core/ itself and for a folder without one."""
    return next((number for number, folders in enumerate(LAYERS) if folder(path) in folders), None)


def unit(path):
    return os.path.splitext(path)[0]


def is_public(path):
    """Whether a user may name the header: everything but what the library keeps to itself."""
    return path.endswith(".h") and not re.search("/(internal|inline|platform|process)/", path) and folder(path) is not None


def circles(edges):
    """The sets of nodes that reach each other, each as a sorted list, from a list of (node, node)."""
    graph = {}
    for start, end in edges:
        graph.setdefault(start, set()).add(end)
        graph.setdefault(end, set())

    def reached(start):
        found, open_ends = set(), [start]
        while open_ends:
            for node in graph[open_ends.pop()] - found:
                found.add(node)
                open_ends.append(node)
        return found

    reach = {node: reached(node) for node in graph}
    return sorted({tuple(sorted(other for other in reach[node] if node in reach[other])) for node in graph if node in reach[node]})


def faults_of_circles(tree, name_of, kind):
    """Circles among what the files belong to, each with its includes."""
    includes = [(path, target) for path, target in tree.includes()
                if name_of(path) and name_of(target) and name_of(path) != name_of(target)]
    faults = []
    for members in circles([(name_of(path), name_of(target)) for path, target in includes]):
        faults.append(f"circle of {len(members)} {kind}: {' '.join(members)}")
        faults += [f"    {path} includes {target}" for path, target in includes
                   if name_of(path) in members and name_of(target) in members]
    return faults


def faults_of_layers(tree):
    faults = [f"{path} is in no layer" for path in sorted(tree.texts) if folder(path) is not None and layer(path) is None]
    faults += [f'{path} includes "{target}": paths begin with core/' for path, target in tree.includes()
               if not target.startswith("core/")]
    faults += [f"{path} includes {target}: that is up" for path, target in tree.includes()
               if layer(path) is not None and layer(target) is not None and layer(path) < layer(target)]
    return faults + [f"{path} includes {target}, which is the system's" for path, target in tree.includes()
                     if target.startswith(SYSTEM_FOLDER) and not path.startswith("core/platform/") and "/inline/" not in target]


def faults_of_log(tree, log_parts):
    """The log's units are each in one part, and include what is in their own part or in one before it."""
    parts = {stem: number for number, (_, stems) in enumerate(log_parts) for stem in stems}
    units = {unit(path) for path in tree.texts if folder(path) == "log"}
    faults = [f"{stem} is in no part of the log" for stem in sorted(units - set(parts))]
    faults += [f"{stem} is in a part of the log and not in the tree" for stem in sorted(set(parts) - units)]
    return faults + [f"{path} ({log_parts[parts[unit(path)]][0]}) includes {target} ({log_parts[parts[unit(target)]][0]}): that is up"
                     for path, target in tree.includes()
                     if unit(path) in parts and unit(target) in parts and parts[unit(path)] < parts[unit(target)]]


def faults_of_system(tree):
    """The standard library's own headers have no extension and no folder."""
    return [f"{path} includes <{header}>" for path, text in tree.code()
            for header in re.findall(r"^\s*#\s*include <([^>]*[./][^>]*)>", text, re.M)
            if not path.startswith(SYSTEM_FOLDER) and os.path.basename(path) != NATIVE
            and header not in PROCESSOR_HEADERS and (path, header) not in FOREIGN_HEADERS]


def faults_of_forks(tree):
    files = [path for path, text in tree.code() if "pthread_atfork" in text]
    return [] if len(files) == 1 else ["pthread_atfork is not called in one file: " + (" ".join(files) or "nowhere")]


def faults_of_umbrella(graph):
    faults = [f"{header} includes {target}, which is internal" for header, targets in sorted(graph.items())
              for target in targets if is_public(header) and "/internal/" in target]
    # Formatters need another library and test support is a target of its own: both are included by name.
    wanted = {header for header in graph if is_public(header) and folder(header) not in ("format", "testing")}
    wanted |= {"core/nxExport.h", "core/nxVersion.h"}
    named = set(graph["core/nxCore.h"])
    faults += [f"core/nxCore.h lacks {header}" for header in sorted(wanted - named)]
    return faults + [f"core/nxCore.h names {header}, which is not public" for header in sorted(named - wanted)]


def faults_of_calls(tree):
    """Declarations have their result before the name."""
    return [f"{path} calls {call}" for path, text in sorted(tree.texts.items()) if not path.endswith(".cpp")
            for call in re.findall(r"(?<!unsigned )\b_M(?:in|ax)Value\(\)", text)]


def faults_of_precompilation(root, tree):
    """The build does not see that a precompiled header is not included."""
    with open(os.path.join(root, "cmake/NxcoreCompiler.cmake"), encoding="utf-8") as file:
        precompiled = re.findall(r"<([a-z_]+)>", re.search(r"target_precompile_headers\((.*?)\)", file.read(), re.S)[1])
    faults = [f"<{header}> is precompiled, and nothing tells its names" for header in precompiled if header not in STANDARD_NAMES]
    tool = Tree(root, "tools/nxtick")
    standard = {path: set(re.findall(r"^\s*#\s*include <([a-z_]+)>", text, re.M)) for path, text in {**tree.texts, **tool.texts}.items()}
    included = {path: set(headers) for path, headers in standard.items()}
    for path, target in tree.includes() + tool.includes():
        included[path] |= standard.get(target) or standard.get("tools/nxtick/" + target) or set()
    for path, text in tree.code() + tool.code():
        if path.endswith(".inc"):
            continue  # a part of what includes it
        text = re.sub(r'"(?:\\.|[^"\\\n])*"', '""', text)
        faults += [f"{path} names {match[0]} and does not include <{header}>" for header, names in STANDARD_NAMES.items()
                   if header not in included[path] and (match := re.search(r"\bstd::" + names, text))]
    return faults


def faults_of_source(root, tree):
    return (faults_of_layers(tree) + faults_of_circles(tree, unit, "units") + faults_of_circles(tree, folder, "folders") +
            faults_of_log(tree, log_parts(root)) + faults_of_system(tree) + faults_of_forks(tree) + faults_of_umbrella(tree.headers()) +
            faults_of_calls(tree) + faults_of_precompilation(root, tree))


def faults_of_installation(graph, installed):
    public = {header for header in graph if is_public(header)} | {"core/nxCore.h", "core/nxExport.h", "core/nxVersion.h"}
    needed, open_ends = set(), list(public)
    while open_ends:
        header = open_ends.pop()
        if header not in needed:
            needed.add(header)
            open_ends += graph.get(header, [])
    faults = [f"{header} is not installed, though public or included by what is" for header in sorted(needed - set(installed))]
    return faults + [f"{header} is installed, though no public header includes it" for header in sorted(set(installed) - needed)]


def main():
    tree = Tree(sys.argv[1])
    faults = faults_of_installation(tree.headers(), Tree(sys.argv[2]).headers()) if len(sys.argv) > 2 else faults_of_source(sys.argv[1], tree)
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
