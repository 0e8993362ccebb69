#!/usr/bin/env python3
"""Chooses the cases that notice changed coefficients.

usage: choose.py CANDIDATES OUTPUT_FOLDER [--build build/release]

CANDIDATES are the lines of norvane_refereed. Each output gets the tolerance that its calculation needs here, twice
its deviation and 5e-16 at least; one that needs more than 1e-13 is left out. Of the candidates come those, the most
telling first, that notice a coefficient which no case of tests/data notices; they are added to a file a function.
"""
import collections
import json
import math
import os
import subprocess
import sys

import coefficients


def rounded_up(value):
    unit = 10.0 ** math.floor(math.log10(value))
    return float(f"{next(k for k in (1, 1.5, 2, 3, 5, 7, 10) if k * unit >= value) * unit:.2g}")


def judged(lines, build):
    answers = subprocess.run([os.path.join(build, "norvane"), "eval"], input="".join(lines), capture_output=True,
                             text=True).stdout.splitlines()
    for line, answer in zip(map(json.loads, lines), map(json.loads, answers)):
        if not answer["ok"]:
            continue
        line["rtols"] = {}
        for key, want in list(line["outputs"].items()):
            deviation = abs(answer["outputs"][key] - want) / (abs(want) or 1.0)
            if key != "status" and deviation <= 5e-14:
                line["rtols"][key] = rounded_up(max(2 * deviation, 5e-16))
            elif key != "status":
                del line["outputs"][key]
        if line["rtols"]:
            line["source"] = line.pop("source")
            yield line


def main():
    build = os.path.join(coefficients.TOP, "build", "release")
    if "--build" in sys.argv:
        build = sys.argv.pop(1 + sys.argv.index("--build"))
        sys.argv.remove("--build")
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        candidates = list(judged(file.readlines(), build))
    texts = [json.dumps(line, separators=(",", ":")) + "\n" for line in candidates]
    functions = {line["function"] for line in candidates}
    killer = coefficients.Killer(build)
    entries = [entry for entry in killer.entries() if entry.functions & functions]
    left = [entry for entry, answer in zip(entries, killer.ask(entries)) if answer[0] == "unnoticed"]
    killer.cases = [(line["function"], text) for line, text in zip(candidates, texts)]
    killer.forget_files()
    noticed = collections.defaultdict(set)  # candidate to the coefficients that it notices
    for k, (entry, answer) in enumerate(zip(left, killer.ask(left))):
        mine = [i for i, (function, _) in enumerate(killer.cases) if function in entry.functions]
        for line in answer[1:]:
            noticed[mine[int(line) - 1]].add(k)
    chosen, missing = [], set().union(*noticed.values())
    print(f"{len(left)} coefficients are unnoticed, the candidates notice {len(missing)} of them")
    while missing:
        best = max(noticed, key=lambda i: len(noticed[i] & missing))
        chosen.append(best)
        missing -= noticed[best]
    for function in sorted(functions):
        mine = [texts[i] for i in sorted(chosen) if candidates[i]["function"] == function]
        if mine:
            with open(os.path.join(sys.argv[2], function.lower() + ".jsonl"), "a", encoding="utf-8") as file:
                file.writelines(mine)
            print(f"{function}: {len(mine)} of {sum(line['function'] == function for line in candidates)} chosen")


if __name__ == "__main__":
    main()
