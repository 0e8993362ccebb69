#!/usr/bin/env python3
"""Rows per second against cores: the plain batch, Python, DuckDB and Spark in one run, as a Markdown table.

usage: scale.py [ROWS] [--write docs/scale.md]

1,000,000 rows unless said otherwise; needs the package with its extras; Spark where pyspark is installed, the command
where it is built. --write puts the table into the page, between the lines that mark its place.

Every way calculates the same rows: AGA8_M with a pressure, a temperature and a gas of 22 amounts of its own. Times are
the best of three, of the calculation with its inputs in memory (Spark: cached) and its outputs delivered. The last two
columns count the processor time of all processes, which other work on the machine does not disturb.
"""
import argparse
import importlib.util
import json
import os
import subprocess
import sys
import tempfile
import time
import warnings
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pyarrow as pa
from pyarrow import csv

import norvane
from norvane import _arrays
from norvane._library import records

FUNCTION = "AGA8_M"
COMMAND = os.path.join(os.path.dirname(__file__), "..", "build", "release", "norvane")
os.environ.setdefault("PYSPARK_PYTHON", sys.executable)  # the workers need the package too


def data(rows):
    random = np.random.default_rng(21)
    gas = np.zeros((rows, 22))
    gas[:, 0] = random.uniform(0.80, 0.95, rows)
    gas[:, 3] = random.uniform(0.02, 0.04, rows)
    gas[:, 4] = 0.01
    gas[:, 1] = 1.0 - gas.sum(axis=1)
    return random.uniform(10, 120, rows), random.uniform(-5, 50, rows), gas


def processor_time():
    """Seconds that this process and all below it have computed, other languages' and ended ones too."""
    below, times = {}, {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", encoding="utf-8") as file:
                    fields = file.read().rpartition(")")[2].split()
            except OSError:  # it has ended meanwhile
                continue
            below.setdefault(int(fields[1]), []).append(int(name))
            times[int(name)] = sum(map(int, fields[11:15]))
    total, wanted = 0, [os.getpid()]
    while wanted:
        process = wanted.pop()
        total += times.get(process, 0)
        wanted += below.get(process, [])
    return total / os.sysconf("SC_CLK_TCK")


def best(work, times=3):
    """The shortest time, and the least processor time, of some runs."""
    taken, computed = [], []
    for _ in range(times):
        start, before = time.perf_counter(), processor_time()
        work()
        taken.append(time.perf_counter() - start)
        computed.append(processor_time() - before)
    return min(taken), min(computed)


def plain(p, t, gas, cores):
    """The C batch on as many threads, with nothing of Python between."""
    record = records[FUNCTION]
    batch = _arrays.batch_of(record)
    rows = len(p)
    outputs = [np.empty(rows) for _ in record.outputs]
    statuses = np.empty(rows, dtype=np.uint32)
    inputs = {"pressure": (p, 1), "temperature": (t, 1)}
    prepared = [_arrays.Prepared(*inputs[i.name]) if i.name in inputs else
                _arrays.Prepared(gas, 22, 22, 1) if i.is_list else _arrays.Prepared(None, 0) for i in record.inputs]
    if cores == 1:
        return lambda: batch.run(rows, prepared, outputs, statuses)
    pool = ThreadPoolExecutor(cores)
    edges = np.linspace(0, rows, cores + 1).astype(int).tolist()
    return lambda: list(pool.map(lambda k: batch._run(edges[k], edges[k + 1], prepared, outputs, statuses), range(cores)))


def table_of(p, t, gas):
    return pa.table({"pressure": p, "temperature": t,
                     "composition": pa.FixedSizeListArray.from_arrays(pa.array(gas.ravel()), 22)})


def in_duckdb(table, cores):
    import duckdb
    import norvane.duckdb

    connection = duckdb.connect(config={"threads": cores})
    norvane.duckdb.register(connection, [FUNCTION], messages=False)
    connection.register("given", table)
    connection.execute("create table hours as select pressure as p, temperature as t, composition::double[] as gas from given")
    return lambda: connection.execute("select sum(a.z), sum(a.mass_density) from "
                                      "(select aga8_m(p, t, gas) as a from hours)").fetchall()


def on_command(p, t, gas, cores, folder):
    """The command over a file of text, from a number's digits to a number's digits."""
    path = os.path.join(folder, "rows.csv")
    if not os.path.exists(path):
        names = [line["name"] for line in json.loads(subprocess.check_output([COMMAND, "components", "--json"]))]
        csv.write_csv(pa.table({"pressure": p, "temperature": t} | dict(zip(names, gas.T))), path)
    line = [COMMAND, "batch", FUNCTION, "--in", path, "--out", os.path.join(folder, "answers.csv"), "--jobs", str(cores)]
    return lambda: subprocess.run(line, check=True, stderr=subprocess.DEVNULL)


def on_spark(table, cores, folder, calculating):
    from pyspark.sql import SparkSession
    import norvane.spark
    import pyarrow.parquet as pq

    path = os.path.join(folder, "hours.parquet")
    if not os.path.exists(path):
        pq.write_table(table.set_column(2, "composition", table["composition"].cast(pa.list_(pa.float64()))), path,
                       row_group_size=len(table) // 16)
    session = (SparkSession.builder.master(f"local[{cores}]").config("spark.driver.bindAddress", "127.0.0.1")
               .config("spark.driver.host", "127.0.0.1").config("spark.ui.enabled", "false")
               .config("spark.driver.memory", "3g").config("spark.sql.execution.arrow.maxRecordsPerBatch", "20000")
               .config("spark.sql.files.maxPartitionBytes", "32m").getOrCreate())
    session.sparkContext.setLogLevel("ERROR")
    frame = session.read.parquet(path).repartition(4 * cores).cache()
    frame.count()
    if calculating:
        answers = norvane.spark.apply(frame, FUNCTION, keep=[], outputs=["z", "mass density"], messages=False)
    else:  # the same columns to the workers and two of doubles back
        answers = frame.mapInArrow(_moved, "z double, mass_density double")

    def run():
        answers.selectExpr("sum(z)", "sum(mass_density)").collect()

    return run, session


def _moved(batches):
    for rows in batches:
        yield pa.RecordBatch.from_arrays([rows["pressure"], rows["temperature"]], names=["z", "mass_density"])


def placed(page, table):
    """Writes the table between its marks."""
    with open(page, encoding="utf-8") as file:
        text = file.read()
    before, after = text.split("<!-- table -->\n")[0], text.split("<!-- end of table -->\n")[1]
    with open(page, "w", encoding="utf-8") as file:
        file.write(before + "<!-- table -->\n" + "\n".join(table) + "\n<!-- end of table -->\n" + after)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("rows", nargs="?", type=int, default=1_000_000)
    parser.add_argument("--write", metavar="PAGE")
    options = parser.parse_args()
    warnings.simplefilter("ignore")
    rows = options.rows
    p, t, gas = data(rows)
    table = table_of(p, t, gas)
    most = len(os.sched_getaffinity(0))
    cores = sorted({1, 2, most} | {n for n in (4, 8, 16, 32) if n < most} if most > 1 else {1})
    ways = {
        "C batch": lambda n: (plain(p, t, gas, n), None),
        "NumPy": lambda n: (lambda: norvane.AGA8_M(pressure=p, temperature=t, composition=gas, threads=n), None),
        "`norvane.apply`, Arrow": lambda n: (
            lambda: norvane.apply(table, FUNCTION, messages=False, threads=n), None),
        "DuckDB": lambda n: (in_duckdb(table, n), None),
    }
    folder = tempfile.TemporaryDirectory()
    if os.path.exists(COMMAND):
        ways["`norvane batch`, CSV"] = lambda n: (on_command(p, t, gas, n, folder.name), None)
    if importlib.util.find_spec("pyspark") is not None:
        ways["Spark"] = lambda n: on_spark(table, n, folder.name, True)
        ways["Spark, moving the rows only"] = lambda n: on_spark(table, n, folder.name, False)
    lines = []

    def say(line):
        lines.append(line)
        print(line, flush=True)

    say(f"| way | {' | '.join(f'{n} core' + ('s' if n > 1 else '') for n in cores)} | a core-second | of the C batch |")
    say("|---" + "|--:" * (len(cores) + 2) + "|")
    base = None
    for name, way in ways.items():
        speeds, effort = [], []
        for n in cores:
            work, session = way(n)
            work()
            taken, computed = best(work)
            speeds.append(rows / taken)
            effort.append(rows / max(computed, 0.01))
            if session is not None:
                session.stop()
        base = base or effort[0]
        cells = " | ".join(f"{speed:,.0f}" for speed in speeds)
        say(f"| {name} | {cells} | {effort[0]:,.0f} | {100 * effort[0] / base:.0f} % |")
    folder.cleanup()
    if options.write:
        placed(options.write, lines)


if __name__ == "__main__":
    main()
