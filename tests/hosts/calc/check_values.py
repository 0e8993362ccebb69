#!/usr/bin/python3
"""Published check values in a sheet of LibreOffice Calc: written as formulas, saved, opened again, recalculated, read;
with them the formulas of the guide.

usage: check_values.py Norvane.oxt NORVANE GUIDE.md FILE.jsonl...
"""
import json
import math
import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from office import Office


def text_of(value, place):
    """A value as an argument of a formula; lists go into cells, which `place` puts there."""
    if value is None:
        return ""
    if isinstance(value, bool):
        return "TRUE()" if value else "FALSE()"
    if isinstance(value, (int, float)):
        return repr(value)
    if isinstance(value, str):
        return '"' + value.replace('"', '""') + '"'
    return place(value)


def deviations(case, record, cells):
    outputs = dict(zip((output["key"] for output in record["outputs"]), cells))
    status = record["outputs"][0]["key"]
    for key, want in case["outputs"].items():
        got = outputs[key]
        if key == "status" or want is None or isinstance(want, str):
            if want is not None and got != want:
                yield key, got, want
                if key == status:
                    return
            continue
        rtol = case.get("rtols", {}).get(key, case.get("rtol", 0.0 if "atol" in case else 1e-9))
        limit = case.get("atols", {}).get(key, case.get("atol", 0.0)) + rtol * abs(want)
        if not isinstance(got, float) or not math.isfinite(got) or abs(got - want) > limit:
            yield key, got, want


def expect(what, got, want):
    if got != want:
        print(f"FAILED: {what}: {got!r} instead of {want!r}")
    return got != want


def edges(document):
    """What a user meets beside good numbers: errors, blanks, texts, arguments left out."""
    sheet = document.Sheets[0]
    cell = sheet.getCellByPosition(500, 0)
    failures = 0
    for formula, text, error in (
            ("=_xll.nvBitTest(5;2)", "1", 0), ('=_xll.nvBitTest(5;"x")', "#VALUE!", 519),
            ("=_xll.nvBitTest(5;1/0)", "#DIV/0!", 532), ("=_xll.nvBitTest(5)", "#VALUE!", 519),
            ("=_xll.nvBitTest(5;ALL1)", "1", 0), ('=_xll.nvBitTest("5";TRUE())', "0", 0),
            ("=_xll.nvBitTest(5;2;3)", "Err:504", 504), ('=_xll.nvUnitDetails("Ω\U0001D11E")', None, None),
            ('=_xll.nvConvertUnit("";0;"°C";"K")', "273.15", 0), ("=_xll.nvAGA8_M()", "1", 0),
            ('=INDEX(_xll.nvConvertUnit("";870;"psia";"bar_a");2)', "0", 0)):
        for typed in (False, True):  # as a program sets it, and as a user types it
            if typed:
                cell.FormulaLocal = formula.replace("_xll.", "")
            else:
                cell.Formula = formula
            if text is not None:
                failures += expect(formula, (cell.String, cell.Error), (text, error))
    return failures


def guide(document, path):
    """The formulas of the guide: typed into a cell, and entered over as many cells as the guide shows results."""
    text = open(path, encoding="utf-8").read()
    sheet = document.Sheets[0]
    area, *amounts = re.search(r"```sheet\n(.*?)\n```", text, re.S)[1].split()
    sheet.getCellRangeByName(area).DataArray = tuple((float(amount),) for amount in amounts)
    failures = tried = 0
    for block in re.findall(r"```formula\n(.*?)\n```", text, re.S):
        lines = block.split("\n")
        for formula, shown in zip(lines[0::2], lines[1::2]):
            want = [float(value) for value in shown.split()]
            cell = sheet.getCellByPosition(600, 0)
            cell.FormulaLocal = formula
            row = sheet.getCellRangeByPosition(600, 2 + tried, 599 + len(want), 2 + tried)
            row.ArrayFormula = re.sub(r"\bnv(?=[A-Z])", "_xll.nv", formula).replace(",", ";")
            tried += 1
            for got, value in ((cell.Value, want[0]), *zip(row.DataArray[0], want)):
                if cell.Error or not isinstance(got, float) or abs(got - value) > 1e-12 * abs(value):
                    failures += expect(formula, got, value)
    return failures + expect("formulas in the guide", tried > 5, True)


def workbook(office):
    """A workbook with the names that Calc itself writes into workbooks; a result of an earlier calculation in it."""
    import xlsxwriter
    path = os.path.join(office.folder, "book.xlsx")
    book = xlsxwriter.Workbook(path)
    sheet = book.add_worksheet()
    sheet.write_formula("A1", "=NORVANE.CALC.FUNCTIONS.NVBITTEST(5,2)+1", None, 77)
    book.close()
    os.chmod(path, 0o644)
    document = office.open(path)
    document.calculateAll()
    failures = expect("a workbook", document.Sheets[0].getCellRangeByName("A1").Value, 2.0)
    document.close(True)
    return failures


def main():
    extension, norvane, guide_path = sys.argv[1:4]
    records = {record["id"]: record for record in
               json.loads(subprocess.run([norvane, "list", "--all", "--json"], capture_output=True, check=True).stdout)}
    cases = [json.loads(line) for path in sys.argv[4:] for line in open(path, encoding="utf-8") if line.strip()]
    failures = 0
    with Office(extension) as office:
        document = office.new()
        document.addActionLock()
        for name in ("Rows", "Columns", "Lists"):
            document.Sheets.insertNewByName(name, document.Sheets.Count)
        lists = document.Sheets["Lists"]
        used = 0

        def place(value):
            nonlocal used
            rows = value if isinstance(value[0], list) else [value]
            area = lists.getCellRangeByPosition(0, used, len(rows[0]) - 1, used + len(rows) - 1)
            area.DataArray = tuple(tuple("" if cell is None else cell for cell in row) for row in rows)
            address = f"$Lists.A{used + 1}:" + area.AbsoluteName.split(":")[1].replace("$", "").split(".")[-1]
            used += len(rows)
            return address

        def area_of(document, number, case):
            """Every second case answers in a row, the others in a column."""
            last = len(records[case["function"]]["outputs"]) - 1
            if number % 2:
                return document.Sheets["Rows"].getCellRangeByPosition(0, number, last, number)
            return document.Sheets["Columns"].getCellRangeByPosition(number // 2, 0, number // 2, last)

        for number, case in enumerate(cases):
            record = records[case["function"]]
            given = [text_of(case["inputs"].get(entry["key"]), place)
                     for entry in record["inputs"]]
            while given and not given[-1]:
                given.pop()
            area_of(document, number, case).ArrayFormula = f"=_xll.{record['worksheet']}({';'.join(given)})"
        document.removeActionLock()
        failures += edges(document) + guide(document, guide_path) + workbook(office)
        path = office.save(document, "sheet.ods", "calc8")
        document.close(True)

        document = office.open(path)
        document.calculateAll()
        for number, case in enumerate(cases):
            cells = [cell for row in area_of(document, number, case).DataArray for cell in row]
            wrong = list(deviations(case, records[case["function"]], cells))
            failures += bool(wrong)
            for key, got, want in wrong[:3]:
                print(f"FAILED: {case['function']} {key}: {got!r} instead of {want!r} ({case.get('source', '')[:60]})")
        document.close(True)
    print(f"{len(cases)} cases in Calc, {failures} failures")
    sys.exit(failures > 0)


main()
