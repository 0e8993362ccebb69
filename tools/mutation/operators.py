#!/usr/bin/env python3
"""Which wrong operators do the tests notice?

usage: operators.py [--build build/release] [--sample 200] [--seed 1] [--only TEXT] [--list FILE] [--doc docs/accuracy.md]

Takes a sample of the operators (+ - * / < <= > >= == != && ||, signs of constants) in the sources of math/, and makes
of each a program with that one exchanged: the file is compiled alone, with -O1, and linked in front of the library of
the build, whose targets norvane_tests and norvane_call_dump must be there. Asked are the check values and the tests of
the same folder; about what they let pass, the hash over 1,000 calls of every function: a mutant that changes no bit of
these is the same calculation, or one that they do not reach. --list writes what got past check values and tests to a
file, --doc the rates between the marks of a page.
"""
import argparse
import collections
import json
import os
import random
import re
import shlex
import subprocess
import sys
import tempfile

from coefficients import TOP, files, plain, put_between_marks, read

EXCHANGED = {"+": "-", "-": "+", "*": "/", "/": "*", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
             "&&": "||", "||": "&&"}
KINDS = {"+": "+ -", "-": "+ -", "*": "* /", "/": "* /", "==": "== !=", "!=": "== !=", "&&": "&& ||", "||": "&& ||"}
# clang-format puts blanks about operators of two sides, and none about those of one side, of pointers and templates.
OPERATOR = re.compile(r"(?<=[\w)\]] )([-+*/<>]|[<>=!]=|&&|\|\|)(?= [\w(-])|(?<=[(,=] )-(?=\d)|(?<=\()-(?=\d)")

Mutant = collections.namedtuple("Mutant", "path place old")


def mutants():
    for path in files("math", ".cpp"):
        if path.endswith("_functions.cpp") or re.search(r"_avx\d+\.cpp$", path):
            continue
        source = plain(read(path))
        for match in OPERATOR.finditer(source):
            line = source[source.rfind("\n", 0, match.start()) + 1:source.find("\n", match.start())]
            if not line.lstrip().startswith(("#", "static_assert", "template")):
                yield Mutant(path, match.start(), match.group(0) if match.group(1) else "sign")


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--build", default=os.path.join(TOP, "build", "release"))
    options.add_argument("--sample", type=int, default=200)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--only", default="")
    options.add_argument("--list")
    options.add_argument("--doc")
    options = options.parse_args()
    build = os.path.abspath(options.build)
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        commands = {os.path.relpath(entry["file"], TOP): entry for entry in json.load(file)}
    links = {}  # the last command of a target is its link
    for target in ("norvane_tests", "norvane_call_dump"):
        line = subprocess.run(["ninja", "-C", build, "-t", "commands", "tests/" + target], capture_output=True, text=True,
                              check=True).stdout.splitlines()[-1]
        links[target] = shlex.split(line.removeprefix(": && ").split(" && ")[0])

    def link(target, mutant, program):
        words = list(links[target])
        words[words.index("-o") + 1] = program
        words.insert(words.index("-o"), mutant)
        return subprocess.run(words, cwd=build, capture_output=True).returncode == 0

    def passes(*command):
        try:
            return subprocess.run(command, cwd=TOP, capture_output=True, timeout=120).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    found = [mutant for mutant in mutants() if options.only in mutant.path]
    chosen = sorted(random.Random(options.seed).sample(found, min(options.sample, len(found))))
    suites = collections.defaultdict(lambda: ["Data/Calls", "Referee"])
    for path in files("tests/math", "_test.cpp"):
        suites[os.path.dirname(path)[6:]] += re.findall(r"TEST(?:_F|_P)?\((\w+),", read(path))
    counts = collections.defaultdict(collections.Counter)
    survivors = []
    with tempfile.TemporaryDirectory() as work:
        mutated, tests, dump = (os.path.join(work, name) for name in ("mutant.o", "tests", "dump"))
        for number, mutant in enumerate(chosen):
            text = read(mutant.path)
            new = "" if mutant.old == "sign" else EXCHANGED[mutant.old]
            size = 1 if mutant.old == "sign" else len(mutant.old)
            source = os.path.join(work, os.path.basename(mutant.path))
            with open(source, "w", encoding="utf-8") as file:
                file.write(text[:mutant.place] + new + text[mutant.place + size:])
            words = shlex.split(commands[mutant.path]["command"])
            words = [word for word in words if not word.startswith("-W") and not word.endswith("ccache")]
            words[words.index("-o") + 1] = mutated
            words[words.index("-c") + 1] = source
            words += ["-O1", "-w", "-I", os.path.join(TOP, os.path.dirname(mutant.path))]
            if subprocess.run(words, cwd=build, capture_output=True).returncode != 0:
                answer = "does not compile"
            elif not link("norvane_tests", mutated, tests):
                sys.exit(f"{mutant.path}: does not link")
            else:
                chosen_tests = ":".join(f"*{suite}*" for suite in dict.fromkeys(suites[os.path.dirname(mutant.path)]))
                answer = "caught"
                if passes(tests, "--gtest_filter=" + chosen_tests, "--gtest_fail_fast", "--gtest_brief=1"):
                    link("norvane_call_dump", mutated, dump)
                    same = passes(dump, "--calls", "1000", "--expect", "tests/data/bits.txt")
                    answer = "same bits" if same else "by the hash"
            line = 1 + text.count("\n", 0, mutant.place)
            if options.list and answer in ("same bits", "by the hash"):
                code = text.splitlines()[line - 1].strip()
                survivors.append(f"{mutant.path}:{line}\t{mutant.old} to {new or 'none'}\t{answer}\t{code}\n")
                with open(options.list, "w", encoding="utf-8") as file:
                    file.writelines(survivors)
            counts[KINDS.get(mutant.old, mutant.old if mutant.old == "sign" else "< <= > >=")][answer] += 1
            print(f"{number + 1} of {len(chosen)}: {mutant.path}:{line} {mutant.old} to {new or 'none'}: {answer}",
                  file=sys.stderr, flush=True)

    lines = [f"Seed {options.seed}, {len(chosen)} of {len(found)} operators.\n",
             "| operators | compiled | by check values and tests | by the hash alone | no bit changed |",
             "|---|---:|---:|---:|---:|"]
    for kind, count in sorted(counts.items()) + [("all", sum(counts.values(), collections.Counter()))]:
        built = sum(count.values()) - count["does not compile"]
        if built:
            caught = f"{count['caught']} ({100 * count['caught'] / built:.0f} %)"
            lines.append(f"| {kind.replace('|', chr(92) + '|')} | {built} | {caught} | {count['by the hash']} | "
                         f"{count['same bits']} |")
    put_between_marks(options.doc, "operators", "\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
