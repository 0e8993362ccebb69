#!/usr/bin/env python3
"""Published check values through the direct exports.

usage: check_values.py LIBRARY norvane.json FILE.jsonl...

Every case whose inputs can be passed (lists cannot be left out here) is called as a foreign program would call it.
"""
import collections
import ctypes
import json
import math
import sys

NOT_RUN = 0xFFFFFFFF
POINTED = {"number": ctypes.c_double, "option": ctypes.c_uint32, "text": ctypes.c_char_p}


def argument_types(function):
    types = []
    for parameter in function["inputs"]:
        if parameter["type"] == "range":
            types += [ctypes.POINTER(ctypes.c_double), ctypes.c_uint32]
        else:
            types.append(POINTED[parameter["type"]])
    return types + [ctypes.POINTER(POINTED[parameter["type"]]) for parameter in function["outputs"]]


def input_values(function, inputs):
    """The C arguments of the inputs, or None when a list is not given."""
    values = []
    for parameter in function["inputs"]:
        value = inputs.get(parameter["key"], parameter.get("default"))
        if parameter["type"] == "range":
            if not isinstance(value, list) or not value:
                return None
            flat = [x for row in value for x in (row if isinstance(row, list) else [row])]
            values += [(ctypes.c_double * len(flat))(*flat), len(flat)]
        elif parameter["type"] == "number":
            values.append(float(value or 0.0))
        elif parameter["type"] == "option":
            values.append(int(value or 0) & 0xFFFFFFFF)
        else:
            values.append(None if value is None else value.encode())
    return values


def call(library, function, values):
    exported = getattr(library, function["export"])
    exported.restype = ctypes.c_uint32
    exported.argtypes = argument_types(function)
    outputs = [POINTED[parameter["type"]]() for parameter in function["outputs"]]
    status = exported(*values, *map(ctypes.byref, outputs))
    return status, {p["key"]: o.value for p, o in zip(function["outputs"], outputs)}


def deviations(case, status, outputs):
    rtol = case.get("rtol", 0.0 if "atol" in case else 1e-9)
    atol = case.get("atol", 0.0)
    want_status = case["outputs"].get("status", 0)
    # A refused argument is status 1 to a cell, and "not run" here.
    if status != want_status and not (want_status == 1 and status == NOT_RUN):
        yield "status", status, want_status
        return
    for key, want in case["outputs"].items():
        if key == "status":
            continue
        got = outputs[key]
        limit = case.get("atols", {}).get(key, atol) + case.get("rtols", {}).get(key, rtol) * abs(want or 0.0)
        if not math.isfinite(got) or abs(got - (want or 0.0)) > limit:
            yield key, got, want


def main():
    library = ctypes.CDLL(sys.argv[1])
    with open(sys.argv[2], encoding="utf-8") as file:
        functions = {function["function"]: function for function in json.load(file)}
    tally = collections.Counter()
    failures = 0
    for name in sys.argv[3:]:
        with open(name, encoding="utf-8") as file:
            cases = [json.loads(line) for line in file if line.strip()]
        for case in cases:
            function = functions.get(case["function"])
            if function is None:
                continue
            values = input_values(function, case["inputs"])
            if values is None:
                tally["left out"] += 1
                continue
            status, outputs = call(library, function, values)
            wrong = list(deviations(case, status, outputs))
            tally["called"] += 1
            failures += bool(wrong)
            for key, got, want in wrong:
                print(f"{case['function']} {key}: {got}, expected {want} ({case.get('source', '')})")
    print(f"{tally['called']} cases called, {tally['left out']} left out, {failures} failed")
    return 1 if failures or tally["called"] == 0 else 0


sys.exit(main())
