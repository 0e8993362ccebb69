#!/usr/bin/env python3
"""Compares the recorded automation interface with the one of this build.

usage: compare_interface.py RECORDED CURRENT

Recorded methods must be there with the same dispatch id, parameters and order; new methods may come.
`cmake --build build/release --target norvane_record_interface` writes the record anew (before version 1.0, or to add
new methods).
"""
import sys


def methods(name):
    with open(name, encoding="utf-8") as file:
        return {line.split("(")[0].split()[1]: line.strip() for line in file if line.strip()}


recorded, current = methods(sys.argv[1]), methods(sys.argv[2])
changed = [name for name, line in recorded.items() if current.get(name) != line]
for name in changed:
    print(f"recorded: {recorded[name]}\nnow:      {current.get(name, 'missing')}")
print(f"{len(recorded)} methods recorded, {len(current)} in this build, {len(changed)} changed")
sys.exit(1 if changed or not recorded else 0)
