#!/usr/bin/env python3
"""Writes a script that runs the published check values through the automation object.

usage: make_script.py vbs|js OUTPUT norvane.json FILE.jsonl...

VBScript receives the outputs in its variables, JScript, which passes everything by value, in objects with a `value`.
Inputs that a case leaves out are left out in VBScript (their defaults apply); JScript has no gaps, so it passes the
defaults.
"""
import json
import sys

language, output = sys.argv[1:3]
with open(sys.argv[3], encoding="utf-8") as file:
    functions = {function["function"]: function for function in json.load(file)}
cases = []
for name in sys.argv[4:]:
    with open(name, encoding="utf-8") as file:
        cases += [case for case in map(json.loads, filter(str.strip, file)) if case["function"] in functions]

VBS_START = """Option Explicit
Dim object, calls, failures
calls = 0
failures = 0
Set object = CreateObject("Norvane.Functions")

Sub Check(name, got, want, limit)
  If Err.Number <> 0 Then
    failures = failures + 1
    WScript.Echo name & ": " & Hex(Err.Number) & " " & Err.Description
    Err.Clear
  ElseIf Not IsNumeric(got) Then
    failures = failures + 1
    WScript.Echo name & ": no number, expected " & want
  ElseIf Abs(got - want) > limit Then
    failures = failures + 1
    WScript.Echo name & ": " & got & ", expected " & want
  End If
End Sub
"""

# Unhandled errors end a script without a word and with exit code 0; the last line says that it ran to its end.
VBS_END = """
' A refused argument raises an error that tells which one.
Sub Refusals
  Dim status
  On Error Resume Next
  status = object.AGA5_C(Array(1, 2), 0.6)
  If Err.Number = 0 Or Err.Source <> "Norvane.Functions" Or InStr(Err.Description, "AGA5_C") = 0 Then
    failures = failures + 1
    WScript.Echo "short list: " & Hex(Err.Number) & " " & Err.Source & " " & Err.Description
  End If
  Err.Clear
  status = object.AGA5_C(Array(1, 2))
  If Err.Number <> 449 And Err.Number <> 450 Then
    failures = failures + 1
    WScript.Echo "missing argument: " & Err.Number & " " & Err.Description
  End If
  Err.Clear
  status = object.NoSuchFunction(1)
  If Err.Number <> 438 Then
    failures = failures + 1
    WScript.Echo "unknown function: " & Err.Number & " " & Err.Description
  End If
  Err.Clear
End Sub
Refusals

' Arrays as scripts make them: declared, and with two dimensions as the value of a range of cells.
Sub Arrays
  Dim i, declared(21), cells(21, 0), status, mass, volume
  On Error Resume Next
  declared(0) = 0.9
  declared(3) = "0.1"
  cells(0, 0) = 0.9
  cells(3, 0) = "0.1"
  status = object.AGA5_C(declared, 0.6, mass, volume)
  Check "declared array", status, 0, 0
  status = object.AGA5_C(cells, 0.6, i)
  Check "cells", status, 0, 0
  Check "cells and declared array", i, mass, 0
  Check "status is a number to count with", status + 1, 1, 0
End Sub
Arrays
WScript.Echo "complete, " & calls & " calls, " & failures & " failures"
If failures <> 0 Then WScript.Quit 1
"""

JS_START = """var object = new ActiveXObject("Norvane.Functions");
var calls = 0, failures = 0;

function fail(text) {
  failures += 1;
  WScript.Echo(text);
}
function check(name, got, want, limit) {
  if (typeof got != "number") fail(name + ": " + typeof got + ", expected " + want);
  else if (!(Math.abs(got - want) <= limit)) fail(name + ": " + got + ", expected " + want);
}
"""

JS_END = """
try {
  var status = object.AGA5_C([1, 2], 0.6);
  fail("short list: status " + status);
} catch (error) {
  if (error.description.indexOf("AGA5_C") < 0) fail("short list: " + error.description);
}
var gas = [];
for (var i = 0; i < 22; ++i) gas[i] = 0;
gas[0] = 1;
check("outputs left out", object.AGA5_C(gas, 0.6), 0, 0);
WScript.Echo("complete, " + calls + " calls, " + failures + " failures");
WScript.Quit(failures != 0 ? 1 : 0);
"""


def flat(value):
    return [x for row in value for x in (row if isinstance(row, list) else [row])]


def literal(value):
    return repr(float(value) if isinstance(value, float) else int(value)).replace("e", "E")


def inputs_of(function, case):
    """The arguments as texts, None where one is left out, and whether the case can be passed at all."""
    arguments = []
    for parameter in function["inputs"]:
        value = case["inputs"].get(parameter["key"])
        if value is None and (language == "js" or parameter["type"] == "range"):
            value = parameter.get("default")
        if isinstance(value, list):
            items = ", ".join(literal(x) for x in flat(value))
            arguments.append(f"Array({items})" if language == "vbs" else f"[{items}]")
        elif isinstance(value, str):
            arguments.append('"' + value.replace('"', '""' if language == "vbs" else '\\"') + '"')
        elif value is None and (language == "js" or parameter["type"] == "range"):
            return None
        else:
            arguments.append("" if value is None else literal(value))
    return arguments


def checks_of(function, case):
    rtol = case.get("rtol", 0.0 if "atol" in case else 1e-9)
    atol = case.get("atol", 0.0)
    places = {parameter["key"]: i for i, parameter in enumerate(function["outputs"])}
    for key, want in case["outputs"].items():
        if key != "status" and want is not None:
            limit = case.get("atols", {}).get(key, atol) + case.get("rtols", {}).get(key, rtol) * abs(want)
            yield key, places[key], want, limit


lines = []
for number, case in enumerate(cases):
    function = functions[case["function"]]
    arguments = inputs_of(function, case)
    if arguments is None:
        continue
    status = case["outputs"].get("status", 0)
    name = f"{case['function']} {number}"
    if language == "vbs":
        variables = [f"v{i}" for i in range(len(function["outputs"]))]
        lines.append(f"\nSub Case{number}")
        lines.append(f"  Dim status, {', '.join(variables)}")
        lines.append("  On Error Resume Next")
        lines.append(f"  status = object.{case['function']}({', '.join(arguments + variables)})")
        lines.append("  calls = calls + 1")
        if status == 1:  # a refused argument is an error here
            lines.append("  If Err.Number <> 0 Then Exit Sub")
        lines.append(f'  Check "{name} status", status, {status}, 0')
        for key, place, want, limit in checks_of(function, case):
            lines.append(f'  Check "{name} {key}", v{place}, {literal(want)}, {literal(limit)}')
        lines.append(f"End Sub\nCase{number}")
    else:
        holders = [f"v{i}" for i in range(len(function["outputs"]))]
        lines.append(f"\ncalls += 1;\ntry {{\n  {' '.join(f'var {h} = {{value: null}};' for h in holders)}")
        lines.append(f'  check("{name} status", object.{case["function"]}({", ".join(arguments + holders)}), {status}, 0);')
        for key, place, want, limit in checks_of(function, case):
            lines.append(f'  check("{name} {key}", v{place}.value, {literal(want)}, {literal(limit)});')
        lines.append("} catch (error) {")
        lines.append("}" if status == 1 else f'  fail("{name}: " + error.description);\n}}')

with open(output, "w", encoding="ascii", newline="\r\n") as file:
    file.write((VBS_START if language == "vbs" else JS_START) + "\n".join(lines))
    file.write(VBS_END if language == "vbs" else JS_END)
