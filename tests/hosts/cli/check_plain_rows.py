#!/usr/bin/env python3
"""batch calculates rows of plain numbers many at once. A quoted cell sends a row through a call of its own, and the mark
is not repeated: the answers to a file with and without such a mark in every row must be the same to the byte."""
import json
import random
import re
import subprocess
import sys

norvane = sys.argv[1]
chance = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 1)
ROWS = 30
GAS = [0.93395, 0.012, 0.014, 0.03, 0.006, 1e-4, 1e-5, 5e-4, 1e-4, 1e-4, 1e-3, 1e-3, 3e-4, 2e-4, 1e-4, 5e-5, 2e-5, 1e-5, 1e-5,
       4e-4, 1e-4, 5e-5]
STRANGE = ["0", "-0", "1e300", "-5", "1e-300", "0.30000000000000004", "123456789012345678901", "1.5", "2", " 3 ", ".5", "7."]


def batch(function, arguments, text):
    run = subprocess.run([norvane, "batch", function, *arguments], input=text.encode(), capture_output=True, timeout=60)
    return run.returncode, run.stdout, run.stderr


def number(field):
    low, high, usual = field["minimum"], field["maximum"], field["default"]
    if chance.random() < 0.03:
        return chance.choice(STRANGE)
    if field["type"] in ("int", "bool") or field["code"] >> 24 == 4:  # an enumeration
        return str(int(usual or 0) if chance.random() < 0.7 else chance.randint(int(low or 0), int(high or 2)))
    if usual:
        return repr(round(usual * chance.uniform(0.95, 1.05), chance.choice((6, 9, 17))))
    return repr(chance.uniform(low if low is not None else 0.6, high if high is not None else 0.7))


def columns_of(record):
    """Header and a maker of a row's cells."""
    makers = []
    for field in record["inputs"]:
        if field["type"] == "text" or chance.random() < 0.1:
            continue
        if field["key"] == "composition":
            # Rounded at random: the sum is sometimes off.
            for i, amount in enumerate(GAS):
                makers.append((f"composition[{i}]", lambda amount=amount: repr(round(amount, chance.choice((5, 5, 3))))))
        elif not field["array"]:
            makers.append((field["key"], lambda field=field: number(field)))
    makers += [("note", lambda: chance.choice(("", "a b", "12")))]
    chance.shuffle(makers)
    return [name for name, _ in makers], lambda: [make() for _, make in makers]


records = [record for record in json.loads(subprocess.check_output([norvane, "list", "--all", "--json"]))
           if record["group"] == "Math"]
assert len(records) > 50
good = 0
for record in records:
    header, cells = columns_of(record)
    if header == ["note"]:
        continue
    comma = chance.random() < 0.2
    separator = ";" if comma else ","
    rows = [[cell.replace(".", ",") if comma else cell for cell in cells()] for _ in range(ROWS)]
    arguments = ["--jobs", "1"] + (["--decimal=,"] if comma else [])
    arguments += chance.choice(([], [], ["--precision", "5"], ["--only-outputs"], ["--keep", "note"], ["--blank=default"]))

    def text(mark):
        lines = [separator.join(mark(cell) if i == 0 else cell for i, cell in enumerate(row)) for row in rows]
        return "\n".join([separator.join(header), "# note", *lines, ""])
    plain = batch(record["id"], arguments, text(str))
    single = batch(record["id"], arguments, text(lambda cell: f'"{cell}"'))
    assert plain == single, (record["id"], [pair for a, b in zip(plain[1:], single[1:])
                                            for pair in zip(a.splitlines(), b.splitlines()) if pair[0] != pair[1]][:2])
    good += re.search(rb"rows: (all|[1-9]\d*) good", plain[2]) is not None
assert good > len(records) // 2, f"only {good} of {len(records)} functions have a good row"
