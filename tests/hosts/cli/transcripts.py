#!/usr/bin/env python3
"""Runs the commands that a Markdown file shows and compares what they print with what it shows.

usage: transcripts.py [--update] NORVANE EXAMPLES FILE.md...

A fenced block that holds a line "$ command" is a transcript: "> " continues the command, the lines behind it are what
it prints (standard output and standard error), and a last line "[n]" is an exit code other than 0. "..." stands for
any text within a line, and in a line of its own for any lines. Each file has a folder of its own, with the examples in
it and "./run" for norvane. --update writes what the commands print into the file.
"""
import difflib
import os
import re
import subprocess
import sys
import tempfile


def run(command, folder, environment):
    done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
    lines = done.stdout.decode("utf-8", "backslashreplace").replace("\r", "\\r").split("\n")
    if lines[-1] == "":
        lines.pop()
    return lines + ([f"[{done.returncode}]"] if done.returncode else [])


def matches(expected, printed):
    pattern = "\n".join(expected) + "\n"
    pattern = re.escape(pattern).replace(r"\.\.\.", "...")
    pattern = re.sub(r"(?m)^\.\.\.\\?\n", r"(?:.*\\n)*", pattern).replace("...", ".*")
    return re.fullmatch(pattern, "\n".join(printed) + "\n") is not None


def check(path, folder, environment, update):
    with open(path, encoding="utf-8") as file:
        lines = file.read().split("\n")
    out, failures, i, fenced = [], 0, 0, False
    while i < len(lines):
        line = lines[i]
        fenced ^= line.startswith("```")
        out.append(line)
        i += 1
        if not (fenced and line.startswith("$ ")):
            continue
        command, shown = [line[2:]], i - 1
        while lines[i].startswith("> "):
            command.append(lines[i][2:])
            out.append(lines[i])
            i += 1
        expected = []
        while not (lines[i].startswith("$ ") or lines[i].startswith("```")):
            expected.append(lines[i])
            i += 1
        # A blank line between two commands is for the eye.
        blank = [""] if expected[-1:] == [""] and lines[i].startswith("$ ") else []
        expected = expected[:len(expected) - len(blank)]
        printed = run("\n".join(command), folder, environment)
        good = matches(expected, printed)
        out += (expected if good or not update else printed) + blank
        if not good and not update:
            failures += 1
            print(f"FAILED: {path}:{shown + 1}: {command[0]}")
            print("\n".join(difflib.unified_diff(expected, printed, "shown", "printed", lineterm="")))
    if update:
        with open(path, "w", encoding="utf-8") as file:
            file.write("\n".join(out))
    return failures


def main():
    arguments = [a for a in sys.argv[1:] if a != "--update"]
    norvane, examples = (os.path.abspath(a) for a in arguments[:2])
    failures = 0
    for path in arguments[2:]:
        with tempfile.TemporaryDirectory() as folder:
            os.symlink(examples, os.path.join(folder, "examples"))
            for name in ("norvane", "run"):
                os.symlink(norvane, os.path.join(folder, name))
            environment = {**os.environ, "LC_ALL": "C.UTF-8", "PATH": folder + os.pathsep + os.environ["PATH"]}
            failures += check(path, folder, environment, "--update" in sys.argv)
    sys.exit(failures > 0)


main()
