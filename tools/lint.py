#!/usr/bin/env python3
"""Compilers and analysers over the sources, without building anything.

usage: lint.py BUILD [--compilers NAME ...] [--tidy] [--cppcheck] [--only TEXT]

BUILD is a configured build folder whose headers have been generated (build/release). By default every clang++-14 to
clang++-19 that is installed checks all sources (-fsyntax-only, the warnings of the build). --tidy adds clang-tidy with
.clang-tidy over core, units, framework, math, catalogue and hosts, --cppcheck adds cppcheck. Ends with 1 when one of them
has something to say.
"""
import argparse
import concurrent.futures
import json
import os
import shlex
import shutil
import subprocess
import sys

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CHECKED = ("core", "units", "framework", "math", "catalogue", "hosts", "tools", "tests", "bench", "fuzz")
ANALYSED = CHECKED[:6]
# Numbers of 113 bits, which only GCC has there.
GCC_ALONE = os.path.join("tests", "referee")
# What a compiler that is not GCC does not know, and what it would make.
DROPPED = ("-Wno-restrict", "-Winvalid-pch", "-c")


def commands(build, folders, only):
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    seen = set()
    for entry in entries:
        path = os.path.relpath(entry["file"], TOP)
        if path in seen or path.split(os.sep)[0] not in folders or not path.endswith(".cpp") or only not in path:
            continue
        if path.startswith(GCC_ALONE):
            continue
        seen.add(path)
        words = shlex.split(entry["command"])
        while words[0].endswith("ccache"):
            words.pop(0)
        kept, skip = [], False
        for i, word in enumerate(words[1:]):
            if skip:
                skip = False
            elif word == "-o" or word in ("-MF", "-MT"):
                skip = True
            elif word == "-include" and "cmake_pch" in words[1:][i + 1]:
                kept += ["-include", "gtest/gtest.h", "-include", "string", "-include", "vector"]
                skip = True
            elif word not in DROPPED and word != "-MD" and word != entry["file"]:
                kept.append(word)
        yield path, entry["directory"], kept, entry["file"]


def run(command, directory):
    result = subprocess.run(command, cwd=directory, capture_output=True, text=True)
    lines = [line for line in (result.stdout + result.stderr).splitlines()
             if not line.endswith(("warnings generated.", "warning generated.")) and "Suppressed" not in line
             and not line.startswith("Use -header-filter")]
    return "\n".join(lines) if result.returncode != 0 or any("warning:" in line for line in lines) else ""


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("build")
    options.add_argument("--compilers", nargs="*")
    options.add_argument("--tidy", action="store_true")
    options.add_argument("--cppcheck", action="store_true")
    options.add_argument("--only", default="")
    options = options.parse_args()
    compilers = options.compilers
    if compilers is None:
        compilers = [name for name in (f"clang++-{version}" for version in range(14, 20)) if shutil.which(name)]

    jobs = []
    for path, directory, flags, file in commands(options.build, CHECKED, options.only):
        for compiler in compilers:
            jobs.append((f"{compiler} {path}", [compiler, *flags, "-fsyntax-only", file], directory))
    if options.tidy:
        for path, directory, flags, file in commands(options.build, ANALYSED, options.only):
            jobs.append((f"clang-tidy {path}",
                         ["clang-tidy", "--quiet", "--warnings-as-errors=*", file, "--", *flags], directory))
    if options.cppcheck:
        folders = [os.path.join(TOP, folder) for folder in ANALYSED]
        jobs.append(("cppcheck", ["cppcheck", "-q", "--std=c++20", "--language=c++", "--inline-suppr", "-I", TOP,
                                  "--enable=warning,performance,portability", "--error-exitcode=1",
                                  "--suppressions-list=" + os.path.join(TOP, "tools", "cppcheck.txt"), *folders], TOP))
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for (title, _, _), said in zip(jobs, pool.map(lambda job: run(job[1], job[2]), jobs)):
            if said:
                failed += 1
                print(f"== {title}\n{said}")
    print(f"{len(jobs)} checks by {', '.join(compilers) or 'no compiler'}, {failed} with findings")
    return 1 if failed or not jobs else 0


if __name__ == "__main__":
    sys.exit(main())
