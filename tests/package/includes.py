#!/usr/bin/env python3
"""Holds the includes of core/ to docs/architecture.md: headers point sideways or down and form no circle, and the umbrella
header names exactly the public ones. No header calls the virtual bounds of an enumeration, which g++ -O3 may turn into calls
of functions that nobody instantiated.

    includes.py SOURCE               the headers of the source tree
    includes.py SOURCE INSTALLED     what was installed from it: the public headers, and all they need and no more
"""

import os
import re
import sys

LAYERS = {"enum": 0, "text": 1, "numeric": 1, "time": 1, "thread": 2, "log": 3, "price": 4, "app": 5, "format": 6, "testing": 6}


def headers(root):
    """{header: [project headers that it includes]}, both relative to the root."""
    found = {}
    for folder, _, names in os.walk(os.path.join(root, "core")):
        for name in names:
            if name.endswith((".h", ".inc")):
                path = os.path.join(folder, name)
                with open(path, encoding="utf-8") as file:
                    found[os.path.relpath(path, root)] = re.findall(r'^\s*#\s*include "(core/[^"]+)"', file.read(), re.M)
    return found


def layer(path):
    return LAYERS.get(path.split("/")[1])


def circle(graph):
    """One circle of includes, or None."""
    done, path = set(), []

    def visit(node):
        if node in path:
            return path[path.index(node):] + [node]
        if node in done:
            return None
        path.append(node)
        for target in graph.get(node, []):
            found = visit(target)
            if found:
                return found
        path.pop()
        done.add(node)
        return None

    for start in sorted(graph):
        found = visit(start)
        if found:
            return found
    return None


def is_public(path):
    """Whether a user may name the header: everything but what the library keeps to itself."""
    return path.endswith(".h") and "/internal/" not in path and "/inline/" not in path and layer(path) is not None


def faults_of_source(graph):
    faults = [f"{header} includes {target}: that is up" for header, targets in sorted(graph.items()) for target in targets
              if layer(header) is not None and layer(target) is not None and layer(header) < layer(target)]
    found = circle(graph)
    if found:
        faults.append("circle: " + " -> ".join(found))
    faults += [f"{header} includes {target}, which is internal" for header, targets in sorted(graph.items())
               for target in targets if is_public(header) and "/internal/" in target]
    # Formatters need another library and test support is a target of its own: both are included by name.
    wanted = {header for header in graph if is_public(header) and header.split("/")[1] not in ("format", "testing")}
    wanted |= {"core/nxExport.h", "core/nxVersion.h"}
    named = set(graph["core/nxCore.h"])
    faults += [f"core/nxCore.h lacks {header}" for header in sorted(wanted - named)]
    return faults + [f"core/nxCore.h names {header}, which is not public" for header in sorted(named - wanted)]


def faults_of_calls(root):
    """Declarations have their result before the name."""
    faults = []
    for header in headers(root):
        with open(os.path.join(root, header), encoding="utf-8") as file:
            faults += [f"{header} calls {call}" for call in re.findall(r"(?<!unsigned )\b_M(?:in|ax)Value\(\)", file.read())]
    return faults


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
    graph = headers(sys.argv[1])
    faults = faults_of_installation(graph, headers(sys.argv[2])) if len(sys.argv) > 2 else \
        faults_of_source(graph) + faults_of_calls(sys.argv[1])
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
