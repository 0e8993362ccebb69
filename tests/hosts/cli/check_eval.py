#!/usr/bin/env python3
"""eval: answers in order, values in every form, hostile lines, a co-process that waits for each answer."""
import json
import math
import random
import subprocess
import sys

norvane = sys.argv[1]


def evaluate(lines):
    """Runs lines (bytes) through one eval; returns its exit code and the parsed answers, one a line."""
    run = subprocess.run([norvane, "eval"], input=b"\n".join(lines) + b"\n", capture_output=True, timeout=120)

    def refuse(name):
        raise ValueError(name + " is not JSON")
    answers = [json.loads(line.decode("utf-8"), parse_constant=refuse) for line in run.stdout.splitlines()]
    assert len(answers) == len(lines), (len(answers), len(lines), run.stderr[-300:])
    return run.returncode, answers


def call(function, /, **inputs):
    return json.dumps({"function": function, "inputs": inputs}).encode()


def interpolate(x, table):
    return call("InterpolationCurve", **{"input value": x, "reference values": table})


# Values in every form, and what must come back.
cases = [
    (call("BitTest", number=5, bit=0), {"Test": 1}),
    (call("bittest", NUMBER=True, bit="0"), {"Test": 1}),
    (call("Bits2Num", bits=[[1, 0, 1]], base=10), {"Num": 7}),
    (call("Bits2Num", bits=[1, 0, 1], base=10), {"Num": 1}),
    (call("Bits2Num", bits=[[1, None, False]], base=10), {"Num": 7}),
    (call("Num2Num", input_value="ff", **{"INPUT-value base": 16, "output value base": 2, "mini output length": 0}),
     {"Num": "11111111"}),
    (call("CRC32", range=["12"]), None),
    (call("CRC32", range=[12]), None),
    (interpolate(5, [[0, 0], [10, 100]]), {"value": 50, "datetime": 0, "out of range": 0}),
    (interpolate(0.1 + 0.2, [[0, 0], [1, 1]]), {"value": 0.1 + 0.2, "datetime": 0, "out of range": 0}),
    (call("FunctionList", category="general"), None),
    (call("FunctionTest", function_range=[1, "a", {"error": "#N/A"}], reference_range=[1, "a", {"error": "#n/a"}]), None),
]
MEMBERS = {"function", "ok", "status", "flags", "flag_names", "outputs", "messages", "defaulted"}
code, answers = evaluate([line for line, _ in cases])
assert code == 0, code
for (line, want), answer in zip(cases, answers):
    assert set(answer) == MEMBERS, answer
    assert answer["ok"] and answer["status"] == 0, (line, answer)
    assert want is None or answer["outputs"] == want, (line, answer, want)
assert answers[6]["outputs"] == answers[7]["outputs"], "a text that is a number counts as the number"
assert "nvBitTest" in answers[10]["outputs"]["list"]
assert answers[11]["outputs"]["result"] == [True, True, True, True], answers[11]

# Numbers come back bit for bit: conversion of a unit to itself leaves them alone.
random.seed(1)
numbers = [0.0, -0.0, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 1e22, 9007199254740993, 0.1]
numbers += [math.ldexp(random.random() - 0.5, random.randint(-1070, 1020)) for _ in range(2000)]
same = {"input unit": "K", "output unit": "K"}
code, answers = evaluate([call("ConvertUnit", **{"input value": x}, **same) for x in numbers])
assert code == 0, code
for x, answer in zip(numbers, answers):
    got = answer["outputs"]["output value"]
    assert got == float(x) and math.copysign(1, got) == math.copysign(1, x), (x, got)

# A calculation that fails is an answer with exit code 1: a status and a reason, and nothing that looks like a result.
code, answers = evaluate([call("AGA8_M", composition=[1] + [0] * 21, edition=7)])
outputs = answers[0]["outputs"]
assert code == 1 and not answers[0]["ok"] and answers[0]["flags"] & 0x04020000, answers
assert outputs.pop("status") == 1 and set(outputs.values()) == {None}, outputs
assert answers[0]["flag_names"] == ["calculation failed", "outputs replaced"], answers
assert any("edition" in message for message in answers[0]["messages"]), answers

# An id is repeated as it was given, in a refusal too.
for given in ("7", "-1.5e3", '"a\\u00e4\\""', "null", "true"):
    code, answers = evaluate([b'{"id":%s,"function":"BitTest"}' % given.encode(),
                              b'{"function":"BitTest","inputs":{"x":1},"id":%s}' % given.encode()])
    assert all(answer["id"] == json.loads(given) for answer in answers), answers

# Hostile lines are answered in their place; the good line after each is answered as ever.
good = call("BitTest", number=1, bit=0)
hostile = [
    (b"", "empty"), (b"   ", "empty"), (b"null", "object"), (b"[]", "object"), (b"42", "object"), (b'"x"', "object"),
    (b"{", "JSON"), (b"}", "JSON"), (b"{}", "function"), (b'{"function":1}', "text"), (b'{"function":null}', "text"),
    (b'{"function":"BitTest","inputs":[]}', "object"), (b'{"function":"BitTest","inputs":null}', "object"),
    (b'{"inputs":{}}', "function"), (b'{"function":"BitTest"} x', "JSON"), (b'{"function":"BitTest"}\0{}', "zero"),
    (b'{"function":"BitTest","function":"CRC16"}', "twice"), (b'{"function":"BitTest","input":{}}', "inputs"),
    (b'{"function":"BitTset"}', "BitTest"), (b'{"function":"' + b"A" * 100000 + b'"}', "no function"),
    (b'{"function":"BitTest","inputs":{"nmber":1}}', "number"),
    (b'{"function":"BitTest","inputs":{"number":1,"NUMBER":2}}', "twice"),
    (b'{"function":"BitTest","inputs":{"number":{"error":"#WHAT"}}}', "error value"),
    (b'{"function":"BitTest","inputs":{"number":{"err":1}}}', "object"), (b'{"id":[],"function":"BitTest"}', "id"),
    (b'{"id":1,"id":2,"function":"BitTest"}', "twice"), (b'{"function":"BitTest","inputs":{"number":null}}', "blank"),
    (b'{"function":"BitTest","inputs":{"number":"many"}}', "not a number"),
    (b'{"function":"AGA8_M","inputs":{"composition":{"methane":{"ethane":1}}}}', "object"),
    (b'{"function":"AGA8_M","inputs":{"composition":{"methane":[1]}}}', "one value"),
    (b'{"function":"AGA8_M","inputs":{"composition":[0.9,null,0.1]}}', "blank"),
    (b'{"function":"BitTest","inputs":{"number":{}}}', "object"),
    (b'{"function":"BitTest","inputs":{"number":[[[1]]]}}', "list"),
    (b'{"function":"BitTest","inputs":{"number":[[1,2],[3]]}}', "length"),
    (b'{"function":"BitTest","inputs":{"number":[1,[2]]}}', "mixed"),
    (b'{"function":"BitTest","inputs":{"number":[[1],2]}}', "mixed"),
    (b'{"function":"BitTest","inputs":{"number":NaN}}', "JSON"), (b'{"function":"BitTest","inputs":{"number":1e999}}', "JSON"),
    (b'{"function":"BitTest","inputs":{"number":"\xff\xfe"}}', "JSON"), (b'\xff', "JSON"),
    (b'{"function":"\\ud800"}', "JSON"), (b"[" * 200000, "object"),
    (b'{"function":"BitTest","inputs":{"number":' + b"[" * 200000, "list"),
    (b'{"outputs":' + b'{"a":' * 100000, "JSON"),
    (b'{"function":"BitTest","inputs":{' + b",".join(b'"k%d":1' % i for i in range(20000)) + b"}}", "no input"),
]
lines = [line for entry in hostile for line in (entry[0], good)]
code, answers = evaluate(lines)
assert code == 2, code
for (line, word), bad, after in zip(hostile, answers[0::2], answers[1::2]):
    assert set(bad) - {"id"} == {"ok", "error"} and bad["ok"] is False and word in bad["error"] and len(bad["error"]) < 1000, (line[:80], bad)
    assert after["outputs"] == {"Test": 1}, (line[:80], after)

# A line longer than any memory should hold is refused, and its rest is skipped.
code, answers = evaluate([b'{"function":"CRC32","inputs":{"range":[' + b"1," * (36 << 20) + b"1]}}", good])
assert "longer than" in answers[0]["error"] and answers[1]["outputs"] == {"Test": 1}, answers

# A co-process gets each answer before it asks the next; a last line needs no line feed.
process = subprocess.Popen([norvane, "eval"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
for bit in (0, 1, 0):
    process.stdin.write(call("BitTest", number=1, bit=bit) + b"\n")
    process.stdin.flush()
    assert json.loads(process.stdout.readline())["outputs"] == {"Test": 1 - bit}
rest, _ = process.communicate(good, timeout=30)
assert json.loads(rest)["outputs"] == {"Test": 1}
