#!/usr/bin/env python3
"""The module shows the names of its hosts and nothing else, and needs nothing but the system's own libraries.

usage: module_exports.py MODULE OBJDUMP LIST...
"""
import subprocess
import sys

module, objdump, lists = sys.argv[1], sys.argv[2], sys.argv[3:]
SYSTEM = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "user32.dll",
          "libc.so.6", "libm.so.6", "ld-linux-x86-64.so.2"}


def lines(*options):
    return subprocess.run([objdump, *options, module], check=True, capture_output=True, text=True).stdout.splitlines()


needed, shown = set(), set()
in_exports = False
for line in lines("-p"):
    words = line.split()
    if "DLL Name:" in line or words[:1] == ["NEEDED"]:
        needed.add(words[-1].lower())
    elif "[Ordinal/Name Pointer] Table" in line:
        in_exports = True
    elif in_exports and line.lstrip().startswith("["):
        shown.add(words[-1])
    elif not words:
        in_exports = False
if not module.endswith(".XLL"):
    symbols = [line.split() for line in lines("-T")]
    shown = {words[-1] for words in symbols if len(words) > 5 and "*UND*" not in words}
wanted = set()
for path in lists:
    with open(path, encoding="utf-8") as file:
        wanted |= {line.split()[0] for line in file if line.strip()}
faults = [("missing", wanted - shown), ("shown besides", shown - wanted), ("needed besides", needed - SYSTEM)]
for title, names in faults:
    for name in sorted(names):
        print(f"{title}: {name}")
print(f"{len(shown)} names")
sys.exit(1 if not needed or any(names for _, names in faults) else 0)
