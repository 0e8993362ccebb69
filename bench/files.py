#!/usr/bin/env python3
"""What a row of a file costs: bench/files.py NORVANE [OTHER] [--rows N] [--rounds N]

Makes files of AGA8_M calls, runs `norvane batch` and `norvane eval` over them on one thread, and prints for each file
the rows a second of processor time and their ratio to the first file; with a second program the same of that, and how
much faster the first one is. Programs take turns, figures are medians of the rounds.
"""
import argparse
import json
import os
import random
import resource
import statistics
import subprocess
import tempfile

GAS = [0.965222, 0.002595, 0.005956, 0.018186, 0.004596, 0, 0, 0, 0, 0, 0.000977, 0.001007, 0.000473, 0.000324, 0.000664,
       0, 0, 0, 0, 0, 0, 0]
RICH = [0.93, 0.012, 0.014, 0.03, 0.006, 1e-4, 1e-5, 5e-4, 1e-4, 1e-4, 1e-3, 1e-3, 3e-4, 2e-4, 1e-4, 5e-5, 2e-5, 1e-5,
        1e-5, 4e-4, 1e-4, 5e-5]


def state(chance):
    return round(chance.uniform(10, 100), 3), round(chance.uniform(-5, 40), 2)


def gas_near(chance, gas):
    amounts = [round(amount * chance.uniform(0.8, 1.2), 6) for amount in gas]
    return [round(1 - sum(amounts[1:]), 6)] + amounts[1:]


def write_files(norvane, rows):
    names = [line["name"] for line in json.loads(subprocess.check_output([norvane, "components", "--json"]))]
    chance = random.Random(1)
    with open("gas.csv", "w") as file:
        file.writelines(f"{amount}\n" for amount in GAS)
    with open("one.csv", "w") as one, open("quoted.csv", "w") as quoted, open("each.csv", "w") as each, \
            open("calls.jsonl", "w") as calls:
        one.write("time,pressure,temperature\n")
        quoted.write("time,pressure,temperature\n")
        each.write("time,pressure,temperature," + ",".join(names) + "\n")
        for i in range(rows):
            p, t = state(chance)
            time = f"2024-03-01T{i // 60 % 24:02}:{i % 60:02}"
            one.write(f"{time},{p},{t}\n")
            quoted.write(f'"{time}",{p},{t}\n')
            each.write(f"{time},{p},{t}," + ",".join(map(str, gas_near(chance, RICH))) + "\n")
            inputs = {"pressure": p, "temperature": t, "composition": GAS}
            calls.write(json.dumps({"function": "AGA8_M", "inputs": inputs}) + "\n")


CASES = [
    ("batch, one gas", ["batch", "AGA8_M", "composition=@gas.csv", "edition=1", "--jobs", "1", "--in", "one.csv"], None),
    ("the same, a column in quotation marks",
     ["batch", "AGA8_M", "composition=@gas.csv", "edition=1", "--jobs", "1", "--in", "quoted.csv"], None),
    ("batch, a gas a row", ["batch", "AGA8_M", "edition=1", "neo-c5 mode=1", "--jobs", "1", "--in", "each.csv"], None),
    ("eval, one gas", ["eval"], "calls.jsonl"),
]


def processor_time(norvane, arguments, source):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    with open(source or os.devnull) as stdin:
        subprocess.run([norvane, *arguments], stdin=stdin, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("norvane", nargs="+", help="the program, and perhaps another one")
    parser.add_argument("--rows", type=int, default=300000)
    parser.add_argument("--rounds", type=int, default=5)
    options = parser.parse_args()
    programs = [os.path.abspath(program) for program in options.norvane[:2]]
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        write_files(programs[0], options.rows)
        seconds = {}
        for _ in range(options.rounds):
            for case, arguments, source in CASES:
                for program in programs:
                    seconds.setdefault((case, program), []).append(processor_time(program, arguments, source))
        os.chdir("/")
    rates = {key: options.rows / statistics.median(values) for key, values in seconds.items()}
    first = CASES[0][0]
    print(f"{'':40} {'rows/s':>12} {'of the first':>12}" + (f" {'the other':>12} {'faster':>8}" if len(programs) > 1 else ""))
    for case, _, _ in CASES:
        mine = rates[case, programs[0]]
        line = f"{case:40} {mine:12,.0f} {mine / rates[first, programs[0]]:12.2f}"
        if len(programs) > 1:
            line += f" {rates[case, programs[1]]:12,.0f} {mine / rates[case, programs[1]]:7.2f}x"
        print(line)


main()
