#!/usr/bin/env python3
"""Fails when a source includes a file of a floor above its own, or when sources of the framework or below include
each other in a circle.

A floor includes itself and the floors below. Beside that, a family of standards knows the other families only by
math/common, and a host knows the other hosts only by hosts/module.
"""
import os
import re
import sys

FLOORS = {"core": 1, "units": 2, "framework": 3, "framework/general": 4, "math/common": 5, "math": 6, "catalogue": 7,
          "hosts/module": 8, "hosts": 9}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def floor(folder):
    while folder not in FLOORS:
        folder = os.path.dirname(folder)
    return FLOORS[folder]


def allowed(source, target):
    a, b = os.path.dirname(source), os.path.dirname(target)
    return floor(b) < floor(a) or a == b


def unit(path):  # a header and its source are one
    return os.path.splitext(path)[0]


def includes(root):
    for top in sorted({name.split("/")[0] for name in FLOORS}):
        for folder, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                path = os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")
                if name.endswith((".h", ".cpp")):
                    with open(os.path.join(root, path), encoding="utf-8") as file:
                        for target in INCLUDE.findall(file.read()):
                            if os.path.exists(os.path.join(root, target)):
                                yield path, target


def circles(graph):
    """Each circle once, as the way round."""
    done, found = set(), []

    def visit(node, way):
        if node in way:
            found.append(way[way.index(node):] + [node])
        elif node not in done:
            for target in sorted(graph.get(node, ())):
                visit(target, way + [node])
            done.add(node)

    for node in sorted(graph):
        visit(node, [])
    return found


def main(root):
    edges = list(includes(root))
    if len(edges) < 100:
        sys.exit(f"only {len(edges)} includes found under {root}")
    graph = {}
    for source, target in edges:
        if unit(source) != unit(target) and floor(os.path.dirname(source)) <= FLOORS["framework/general"]:
            graph.setdefault(unit(source), set()).add(unit(target))
    faults = [f"{source} includes {target}" for source, target in edges if not allowed(source, target)]
    faults += ["a circle: " + " -> ".join(way) for way in circles(graph)]
    print("\n".join(faults) or f"{len(edges)} includes keep to their floors")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
