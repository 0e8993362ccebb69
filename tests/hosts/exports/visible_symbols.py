#!/usr/bin/env python3
"""The shared object shows its interface and nothing else, and needs nothing but the system's C library.

usage: visible_symbols.py LIBRARY norvane.json
"""
import json
import subprocess
import sys

SYSTEM = ("libc.so", "libm.so", "libpthread.so", "ld-linux")


def lines(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


symbols = [line.split() for line in lines("nm", "-D", "--defined-only", sys.argv[1])]
shown = {name.split("@")[0] for _, kind, name in symbols if kind != "A"}
with open(sys.argv[2], encoding="utf-8") as file:
    wanted = {function[kind] for function in json.load(file) for kind in ("export", "batch")} | {
        "norvane_batch", "norvane_convert", "norvane_identity", "norvane_kernel", "norvane_last_message",
        "norvane_status_text", "norvane_version"}
needed = [line.split("[")[1].rstrip("]") for line in lines("readelf", "-d", sys.argv[1]) if "(NEEDED)" in line]
foreign = [name for name in needed if not name.startswith(SYSTEM)]
for title, names in (("missing", wanted - shown), ("not of the interface", shown - wanted), ("needed", foreign)):
    for name in sorted(names):
        print(f"{title}: {name}")
print(f"{len(shown)} symbols")
sys.exit(0 if shown == wanted and not foreign else 1)
