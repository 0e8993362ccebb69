#!/usr/bin/env python3
"""Which coefficients do the check values watch over?

usage: coefficients.py [--build build/release] [--tests] [--only TEXT] [--list FILE] [--doc docs/accuracy.md]

Changes every number of every coefficient table, and every number of five and more digits in the equations, by one in
its last printed digit, one at a time, and counts those that the cases of tests/data and tests/data/refereed notice.
--tests asks the unit tests of the same folder about the others (slow); --list writes the unnoticed ones to a file, --doc
the rates between the marks of a page.

Not asked about: numbers that are 0, and small whole numbers (exponents, counts), which are structure rather than
coefficients.
"""
import argparse
import collections
import json
import os
import re
import struct
import subprocess
import sys
import tempfile

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
NUMBER = re.compile(r"(?<![\w.])(\d+\.?\d*(?:[eE][-+]?\d+)?|\.\d+(?:[eE][-+]?\d+)?)(?![\w.])")


def read(*path):
    with open(os.path.join(TOP, *path), encoding="utf-8") as file:
        return file.read()


def files(top, ending):
    for folder, _, names in os.walk(os.path.join(TOP, top)):
        for name in sorted(names):
            if name.endswith(ending):
                yield os.path.relpath(os.path.join(folder, name), TOP)


def put_between_marks(page, mark, text):
    """Without a page it is printed."""
    if page is None:
        print(text, end="")
        return
    old, begin, end = read(page), f"<!-- {mark} -->\n", f"<!-- end of {mark} -->"
    first, last = old.index(begin) + len(begin), old.index(end)
    with open(os.path.join(TOP, page), "w", encoding="utf-8") as file:
        file.write(old[:first] + text + old[last:])


def plain(text):
    """The source without comments and texts, of the same length."""
    return re.sub(r'//[^\n]*|u?"(?:[^"\\]|\\.)*"', lambda match: re.sub(r"[^\n]", " ", match.group(0)), text)


def last_digit_changed(text):
    """1.25e-3 becomes 1.26e-3, 1.29 becomes 1.28."""
    mantissa, exponent = (re.split("([eE].*)", text) + [""])[:2]
    place = max(i for i, c in enumerate(mantissa) if c.isdigit())
    digit = "8" if mantissa[place] == "9" else str(int(mantissa[place]) + 1)
    return mantissa[:place] + digit + mantissa[place + 1:] + exponent


def digits(text):
    return len(re.split("[eE]", text)[0].replace(".", "").strip("-0"))


def literals(source, begin, end):
    """Numbers with their signs: (text, place)."""
    found = []
    for match in NUMBER.finditer(source, begin, end):
        before = source[:match.start()].rstrip()
        sign = "-" if before.endswith("-") and (before[:-1].rstrip() or "{")[-1] in "{,(=" else ""
        found.append((sign + match.group(1), match.start()))
    return found


def initialiser(path, source, name):
    """Where the part of the source between the braces of a table begins and ends."""
    match = re.search(r"\b" + name + r"(?:\[[^\]]*\])*\s*=\s*\{", source)
    if match is None:
        sys.exit(f"{path}: no table {name}")
    depth, at = 1, match.end()
    while depth:
        depth += {"{": 1, "}": -1}.get(source[at], 0)
        at += 1
    return match.end(), at


def align(numbers, words):
    """Pairs numbers of the source with equal words of the memory, in order, as many as there can be."""
    values = [float(text) for text, _ in numbers]
    n, m = len(values), len(words)
    best = [[0] * (m + 1) for _ in range(n + 1)]
    for i in range(n - 1, -1, -1):
        row, below = best[i], best[i + 1]
        for j in range(m - 1, -1, -1):
            row[j] = below[j + 1] + 1 if values[i] == words[j] else max(below[j], row[j + 1])
    pairs, i, j = {}, 0, 0
    while i < n and j < m:
        if values[i] == words[j] and best[i][j] == best[i + 1][j + 1] + 1:
            pairs[i], i, j = j, i + 1, j + 1
        elif best[i + 1][j] >= best[i][j + 1]:
            i += 1
        else:
            j += 1
    return pairs


def hexadecimal(value):
    return struct.pack("<d", float(value)).hex()


# One number: what it belongs to, where it stands, what it is, the functions to ask, and the change as norvane_kill
# reads it.
Entry = collections.namedtuple("Entry", "owner table place literal functions change")


def plan(functions, memory):
    records = collections.defaultdict(set)  # folder to the functions whose records stand there
    for path in files("math", "_functions.cpp"):
        records[os.path.dirname(path)] |= set(re.findall(r"record::Function (\w+) *=", read(path)))
    everything = frozenset().union(*records.values())
    for path in files("math", (".h", ".cpp")):
        if path.endswith(("_functions.cpp", "_records.h")):
            continue
        text, taken = read(path), []
        source = plain(text)
        line = lambda at: f"{path}:{1 + source.count(chr(10), 0, at)}"
        standard = re.search(r'CoefficientSet coefficient_set\{\s*"([^"]+)"', text)
        owner = standard.group(1) if standard else None
        for table, (row, words) in memory.get(owner, {}).items():
            span = initialiser(path, source, table)
            taken.append(span)
            numbers = literals(source, *span)
            for i, at in align(numbers, words).items():
                literal, place = numbers[i]
                if float(literal) == 0 or (digits(literal) < 2 and "." not in literal):
                    continue
                how = ["everywhere"] if digits(literal) >= 5 else ["here"]
                if how == ["here"] and len(words) > row:
                    how = ["column"] + [hexadecimal(words[k]) if 0 <= k < len(words) else "-"
                                        for k in (at - row, at + row)]
                yield Entry(owner, table, line(place), literal, functions[owner],
                            [hexadecimal(literal), hexadecimal(last_digit_changed(literal)),
                             owner.replace(" ", "_"), table, str(8 * at)] + how)
        for literal, place in literals(source, 0, len(source)):
            if digits(literal) < 5 or any(begin <= place <= end for begin, end in taken):
                continue
            value, folder = literal.lstrip("-"), os.path.dirname(path)
            for sign in ("", "-"):
                yield Entry(path, "", line(place), sign + value, frozenset(records.get(folder, everything)),
                            [hexadecimal(sign + value), hexadecimal(sign + last_digit_changed(value)), "-", "-", "-",
                             "everywhere"])


class Killer:
    """The program that changes itself, and the cases that it asks."""

    def __init__(self, build):
        self.program = os.path.join(build, "tests", "norvane_kill")
        self.cases = []  # (function, line)
        for path in files("tests/data", ".jsonl"):
            if os.path.dirname(path) != "tests/data/calls" and "unavailable" not in path:
                self.cases += [(json.loads(line)["function"], line + "\n") for line in read(path).splitlines() if line]
        self.work = tempfile.TemporaryDirectory()
        self.forget_files()

    def forget_files(self):
        self.paths = {}

    def entries(self):
        functions, memory = {}, {}
        for line in subprocess.run([self.program, "--tables"], check=True, capture_output=True,
                                   text=True).stdout.splitlines():
            kind, name, *rest = line.split("\t")
            if kind == "set":
                owner, functions[name], memory[name] = name, frozenset(rest), {}
            else:
                data = bytes.fromhex(rest[1])
                memory[owner][name] = int(rest[0]), struct.unpack(f"<{len(data) // 8}d", data[:len(data) // 8 * 8])
        return plan(functions, memory)

    def case_file(self, wanted):
        if wanted not in self.paths:
            self.paths[wanted] = os.path.join(self.work.name, f"{len(self.paths)}.jsonl")
            with open(self.paths[wanted], "w", encoding="utf-8") as file:
                file.writelines(line for function, line in self.cases if function in wanted)
        return self.paths[wanted]

    def ask(self, entries, tests=""):
        """For each what it was: absent, unnoticed, tests, or noticed and the numbers of the lines that did."""
        lines = "".join(" ".join([self.case_file(entry.functions)] + entry.change) + "\n" for entry in entries)
        return [answer.split()[1:] for answer in
                subprocess.run([self.program, "--run"] + ([tests] if tests else []), input=lines, capture_output=True,
                               text=True, check=True).stdout.splitlines()]


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--build", default=os.path.join(TOP, "build", "release"))
    options.add_argument("--tests", action="store_true")
    options.add_argument("--only", default="")
    options.add_argument("--list")
    options.add_argument("--doc")
    options = options.parse_args()
    killer = Killer(options.build)
    entries = [entry for entry in killer.entries() if options.only in f"{entry.owner}: {entry.table}"]
    # A number that stays as it is goes unnoticed, or the cases notice something else.
    unchanged = {entry.functions: entry._replace(change=[entry.change[0], entry.change[0]] + entry.change[2:])
                 for entry in entries}.values()
    for entry, answer in zip(unchanged, killer.ask(unchanged)):
        if answer[0] == "noticed":
            sys.exit(f"the cases fail with all numbers as they are: {', '.join(sorted(entry.functions))}")
    answers = []
    for owner in dict.fromkeys(entry.owner for entry in entries):
        answers += [answer[0] for answer in killer.ask([entry for entry in entries if entry.owner == owner])]
        print(f"{len(answers)} of {len(entries)}: {owner}", file=sys.stderr, flush=True)
    if options.tests:
        suites = collections.defaultdict(set)
        for path in files("tests/math", "_test.cpp"):
            suites[os.path.dirname(path)] |= set(re.findall(r"TEST(?:_F|_P)?\((\w+),", read(path)))
        for folder, names in suites.items():
            left = [k for k, answer in enumerate(answers) if answer == "unnoticed" and
                    os.path.join("tests", os.path.dirname(entries[k].place.split(":")[0])) == folder]
            chosen = ":".join(f"*{suite}.*" for suite in sorted(names))
            for k, answer in zip(left, killer.ask([entries[k] for k in left], chosen)):
                answers[k] = answer[0]

    # "absent": not in the program with this sign, or merged with others by the compiler.
    asked = [(entry, answer) for entry, answer in zip(entries, answers) if answer != "absent"]
    counts = collections.defaultdict(collections.Counter)
    for entry, answer in asked:
        counts[entry.owner if entry.table else "numbers in the equations", entry.table][answer] += 1
    rate = lambda count: f"{100 * (1 - count['unnoticed'] / sum(count.values())):.1f} %"
    lines = ["| standard | coefficients | noticed | of each table |", "|---|---:|---:|---|"]
    owners = dict.fromkeys(owner for owner, _ in counts)
    for owner in sorted(owners):
        tables = {table: count for (name, table), count in counts.items() if name == owner}
        total = sum(tables.values(), collections.Counter())
        each = ", ".join(f"{table} {count['noticed'] + count['tests']} of {sum(count.values())}"
                         for table, count in tables.items() if table)
        lines.append(f"| {owner} | {sum(total.values())} | {rate(total)} | {each} |")
    total = sum(counts.values(), collections.Counter())
    lines.append(f"| all | {sum(total.values())} | {rate(total)} | |")
    put_between_marks(options.doc, "coefficients", "\n".join(lines) + "\n")
    if options.list:
        with open(options.list, "w", encoding="utf-8") as file:
            file.writelines(f"{entry.place}\t{entry.literal}\t{entry.owner}: {entry.table}\n"
                            for entry, answer in asked if answer == "unnoticed")


if __name__ == "__main__":
    main()
