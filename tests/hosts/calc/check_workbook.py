#!/usr/bin/python3
"""The example workbook in LibreOffice Calc: every formula parses, is calculated, and meets its published value.

usage: check_workbook.py Norvane.oxt NORVANE WORKBOOK.py FILE.jsonl... [--pdf FILE]
"""
import os
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from office import Office

FORMULA_ERRORS = 4


def cells(sheet, name):
    return sheet.getCellRangeByName(name)


def main():
    arguments = sys.argv[1:]
    pdf = arguments[arguments.index("--pdf") + 1] if "--pdf" in arguments else None
    extension, norvane, script, *files = [a for a in arguments if a not in ("--pdf", pdf)]
    failures = []
    with Office(extension) as office:
        path = os.path.join(office.folder, "examples.xlsx")
        subprocess.run(["/usr/bin/python3", script, "--calc", norvane, path, *files], check=True)
        os.chmod(path, 0o644)
        document = office.open(path)
        start, run = document.Sheets["Start"], document.Sheets["Metering run"]
        z = cells(run, "F5").Value
        cells(run, "C5").Value = 80.0
        document.calculateAll()
        if not (0.5 < cells(run, "F5").Value < z):
            failures.append(f"another pressure left Z at {z}")
        cells(run, "C5").Value = 54.12
        document.calculateAll()
        if abs(cells(run, "F5").Value - z) > 1e-14:
            failures.append(f"Z {cells(run, 'F5').Value} instead of {z}")
        checked = 0
        for sheet in document.Sheets:
            for area in sheet.queryFormulaCells(FORMULA_ERRORS).RangeAddresses:
                failures.append(f"{sheet.Name}: an error in column {area.StartColumn}, row {area.StartRow}")
            if sheet.Name in ("Start", "Metering run", "Statuses", "Components"):
                continue
            for row, (verdict,) in enumerate(cells(sheet, "J1:J2000").DataArray):
                checked += verdict == "pass"
                if verdict == "FAIL":
                    failures.append(f"{sheet.Name}: J{row + 1}: {cells(sheet, f'F{row + 1}').String} "
                                    f"instead of {cells(sheet, f'H{row + 1}').String}")
        verdicts = [row[0] for row in cells(start, "D9:D60").DataArray if "good" in str(row[0]).lower()]
        if verdicts != ["all good"] or checked < 300:
            failures.append(f"the first sheet says {verdicts} of {checked} checks")
        if pdf:
            shutil.copy(office.save(document, "examples.pdf", "calc_pdf_Export"), pdf)
        document.close(True)
    for line in failures[:20]:
        print("FAILED:", line)
    print(f"{checked} check cells of the workbook, {len(failures)} failures")
    sys.exit(bool(failures))


main()
