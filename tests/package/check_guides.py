#!/usr/bin/env python3
"""The programs in the guides: compiled and run, and their output compared with the block of text behind them.

usage: check_guides.py DOCS INCLUDE LIBRARY_FOLDER Norvane.cs

A piece of C without a main is compiled alone. C# is run where a compiler for it is installed.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

docs, include, library, declarations = map(os.path.abspath, sys.argv[1:5])
PIECE = """#include <norvane.h>
void piece(size_t rows, const double* pressures, double temperature, const double* gas, double* z, double* density,
           uint32_t* statuses);
void piece(size_t rows, const double* pressures, double temperature, const double* gas, double* z, double* density,
           uint32_t* statuses) {
%s(void)failed;
}
"""


def blocks(name):
    text = (Path(docs) / name).read_text(encoding="utf-8")
    return [(kind, body, after) for kind, body, after in
            re.findall(r"^```(c|csharp)\n(.*?)^```\n(?:\n```text\n(.*?)^```\n)?", text, re.M | re.S)]


def run(command, folder):
    done = subprocess.run(command, cwd=folder, env=dict(os.environ, LD_LIBRARY_PATH=library), capture_output=True, text=True)
    if done.returncode:
        sys.exit(f"{' '.join(command)}\n{done.stdout}{done.stderr}")
    return done.stdout


tried = []
with tempfile.TemporaryDirectory() as folder:
    for name in sorted(os.listdir(docs)):
        if not name.endswith(".md"):
            continue
        for kind, body, want in blocks(name):
            if kind == "c":
                whole = "int main" in body
                Path(folder, "p.c").write_text(body if whole else PIECE % body)
                run(["cc", "-std=c11", "-Wall", "-Wextra", "-Werror", "-I", include, "p.c"] +
                    (["-L", library, "-lnorvane", "-o", "p"] if whole else ["-c"]), folder)
                got = run(["./p"], folder) if whole else want
            elif shutil.which("mcs") and shutil.which("mono"):
                Path(folder, "p.cs").write_text(body)
                run(["mcs", "-langversion:5", "-warnaserror", "-define:NORVANE_LINUX", "-out:p.exe", "p.cs", declarations], folder)
                got = run(["mono", "p.exe"], folder)
            else:
                print(f"{name}: no compiler for C#")
                continue
            if got != want:
                sys.exit(f"{name} prints\n{got}instead of\n{want}")
            tried.append(f"{name} ({kind})")
assert any("(c)" in t for t in tried)
print("run:", ", ".join(tried))
