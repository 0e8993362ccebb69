#!/usr/bin/env python3
"""The declarations for VBA and C# against norvane.json: every export, with its parameters in their order and way.

usage: check_declarations.py Norvane.bas Norvane.cs norvane.json
"""
import json
import re
import sys

bas, cs = (open(path, encoding="ascii").read() for path in sys.argv[1:3])
functions = json.load(open(sys.argv[3], encoding="utf-8"))

# VBA: no line beyond 1023 characters, at most 24 continuations, declarations before the first procedure.
assert max(map(len, bas.split("\n"))) < 1023
assert max(len(run.split("\n")) for run in re.findall(r"(?:[^\n]* _\n)+", bas)) <= 25
joined = re.sub(r" _\n\s*", " ", bas)
assert joined.rindex("Declare PtrSafe") < re.search(r"^(Public|Private) (Sub|Function)", joined, re.M).start()
assert "Declare Function" not in joined
declared = dict(re.findall(r'Declare PtrSafe Function (Norvane_\w+) Lib "Norvane.XLL" \((.*?)\) As Long\n', joined))
imported = dict(re.findall(r"ExactSpelling = true\)\]\s+public static extern uint (Norvane_\w+)\(([^)]*)\);", cs))
assert set(declared) == set(imported) == {f["export"] for f in functions}

for function in functions:
    vba, csharp = [], []
    for entry in function["inputs"]:
        kind = entry["type"]
        vba += {"number": ["ByVal Double"], "option": ["ByVal Long"], "range": ["ByRef Double", "ByVal Long"]}[kind]
        csharp += {"number": ["double"], "option": ["uint"], "range": ["double[]", "uint"]}[kind]
    for entry in function["outputs"]:
        vba.append("ByRef Long" if entry["type"] == "option" else "ByRef Double")
        csharp.append("out uint" if entry["type"] == "option" else "out double")
    name = function["export"]
    given = [re.fullmatch(r"(ByVal|ByRef) \w+ As (\w+)", p).groups() for p in declared[name].split(", ")]
    assert [" ".join(pair) for pair in given] == vba, name
    assert [p.rsplit(" ", 1)[0] for p in re.sub(r"\s+", " ", imported[name]).strip().split(", ")] == csharp, name
    # The functions around them take a quantity always, and may leave out trailing options alone.
    taken = re.search(rf"Public Function {function['function']}\((.*?)\) As {function['function']}_Result\n", joined)[1]
    optional = [p for p in taken.split(", ") if p.startswith("Optional")]
    assert all(" As Long = " in p for p in optional) and taken.endswith(", ".join(optional)), name
print(f"{len(functions)} exports declared as they are")
