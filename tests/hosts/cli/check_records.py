#!/usr/bin/env python3
"""Checks the shape of list --json and describe --json against each other and against what is promised."""
import json
import subprocess
import sys

norvane = sys.argv[1]
FUNCTION = {"id", "worksheet", "display", "description", "group", "category", "subcategory", "keywords", "flags",
            "hidden", "inputs", "outputs"}
INPUT = {"key", "display", "description", "type", "code", "optional", "default", "minimum", "maximum", "array"}
OUTPUT = {"key", "display", "description", "type", "code", "fallback", "tag", "values"}


def run(*arguments):
    return json.loads(subprocess.run([norvane, *arguments], capture_output=True, check=True).stdout)


shown, all_of_them = run("list", "--json"), run("list", "--all", "--json")
assert [r for r in all_of_them if not r["hidden"]] == shown
for record in all_of_them:
    assert set(record) == FUNCTION, record
    assert record["worksheet"] == "nv" + record["id"]
    assert record["hidden"] == bool(record["flags"] & 16)
    for entry in record["inputs"]:
        assert set(entry) == INPUT, (record["id"], entry)
        for bound in ("default", "minimum", "maximum"):
            assert entry[bound] is None or isinstance(entry[bound], (bool, int, float, str)), entry
    for entry in record["outputs"]:
        assert set(entry) == OUTPUT, (record["id"], entry)
        assert all(set(value) == {"id", "description", "value"} for value in entry["values"]), entry
    keys = [entry["key"] for entry in record["outputs"]]
    assert len(keys) == len(set(keys)), (record["id"], "an output key is there twice", keys)
    keys = [entry["key"].lower().replace(" ", "_").replace("-", "_") for entry in record["inputs"]]
    assert len(keys) == len(set(keys)), (record["id"], "two inputs are one key", keys)
assert run("describe", "AGA8_M", "--json") in all_of_them
names = {r["id"] for r in run("list", "--keyword", "gas", "--json")}
assert names == {r["id"] for r in shown if "gas" in r["keywords"]}
