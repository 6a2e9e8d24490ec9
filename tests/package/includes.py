#!/usr/bin/env python3
"""Holds the includes of core/ to docs/architecture.md: headers point sideways or down and form no circle.

    includes.py SOURCE
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


def main():
    graph = headers(sys.argv[1])
    faults = [f"{header} includes {target}: that is up" for header, targets in sorted(graph.items()) for target in targets
              if layer(header) is not None and layer(target) is not None and layer(header) < layer(target)]
    found = circle(graph)
    if found:
        faults.append("circle: " + " -> ".join(found))
    umbrella = set(graph.get("core/nxCore.h", []))
    faults += [f"core/nxCore.h lacks {header}" for header in sorted(graph)
               if header.endswith(".h") and header != "core/nxCore.h" and header not in umbrella
               and "/platform/" not in header and "/internal/" not in header and "/format/" not in header and "/testing/" not in header]
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
