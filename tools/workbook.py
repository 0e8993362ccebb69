#!/usr/bin/python3
"""The example workbook, made from the catalogue and the published check values.

usage: workbook.py [--calc] NORVANE FILE.xlsx FILE.jsonl...

One sheet a standard with a check value of every function, a metering run, the statuses and the components. Results are
in the cells already, so that a viewer without the add-in shows them; a spreadsheet with it calculates them anew.
--calc writes the names under which LibreOffice keeps the functions in a workbook.
"""
import collections
import datetime
import json
import os
import re
import subprocess
import sys

import xlsxwriter

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from check_cases import best_cases

# A day at a station: differential pressure, pressure and temperature of each hour.
HOURS = [(131.4, 54.12, 12.3), (128.9, 54.08, 12.1), (127.2, 54.15, 11.9), (126.8, 54.17, 11.8), (129.5, 54.11, 11.8),
         (135.0, 54.03, 11.9), (149.7, 53.88, 12.0), (168.2, 53.61, 12.2), (181.5, 53.40, 12.5), (187.3, 53.28, 12.9),
         (184.6, 53.31, 13.3), (180.1, 53.37, 13.8), (176.4, 53.42, 14.2), (173.0, 53.47, 14.5), (171.9, 53.50, 14.6),
         (174.8, 53.46, 14.6), (182.7, 53.33, 14.4), (190.2, 53.19, 14.1), (192.6, 53.14, 13.8), (185.9, 53.26, 13.5),
         (172.3, 53.49, 13.2), (158.8, 53.71, 12.9), (146.1, 53.90, 12.7), (137.5, 54.02, 12.5)]
GAS = [0.93614, 0.01023, 0.01412, 0.03105, 0.00602, 0, 0, 0, 0, 0, 0.00098, 0.00101, 0, 0, 0.00045]
FAMILY = {"AGA": "AGA", "Extended": "General", "Math": "Gas by properties"}


def column(number):
    name = ""
    number += 1
    while number:
        number, rest = divmod(number - 1, 26)
        name = chr(65 + rest) + name
    return name


def cell(row, col, fixed=False):
    return f"${column(col)}${row + 1}" if fixed else f"{column(col)}{row + 1}"


class Program:
    def __init__(self, path):
        self.path = path
        self.records = {r["id"]: r for r in json.loads(self.run("list", "--all", "--json"))}
        with open(os.path.join(os.path.dirname(os.path.abspath(path)), "norvane.json"), encoding="utf-8") as file:
            self.exports = json.load(file)
        text = self.run("components")
        self.components = [re.split(r"  +", line)[:3] for line in text.splitlines()[1:]]

    def run(self, *arguments, given=None):
        return subprocess.run([self.path, *arguments], input=given, capture_output=True, text=True, check=True,
                              encoding="utf-8").stdout

    def evaluate(self, calls):
        lines = "".join(json.dumps({"function": f, "inputs": i}) + "\n" for f, i in calls)
        done = subprocess.run([self.path, "eval"], input=lines, capture_output=True, text=True, encoding="utf-8")
        return [json.loads(line)["outputs"] for line in done.stdout.splitlines()]


class Book:
    def __init__(self, path, program, calc):
        self.book = xlsxwriter.Workbook(path)
        self.program, self.calc = program, calc
        epoch = int(os.environ.get("SOURCE_DATE_EPOCH", "0")) or 315532800
        self.book.set_properties({"title": "Norvane examples", "author": "The Norvane authors",
                                  "created": datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc)})
        self.book.set_calc_mode("auto")
        font = {"font_name": "Calibri", "font_size": 10, "valign": "top"}
        style = lambda **more: self.book.add_format(dict(font, **more))
        self.plain, self.wrap = style(), style(text_wrap=True)
        self.title = style(bold=True, font_size=15)
        self.heading = style(bold=True, font_size=11, font_color="#FFFFFF", bg_color="#1F4E79")
        self.head = style(bold=True, bg_color="#DDE6EF")
        self.tall_head = style(bold=True, bg_color="#DDE6EF", text_wrap=True)
        self.input = style(font_color="#0000C0", bg_color="#FFFBE6", num_format="General", align="right")
        self.default = style(font_color="#777777", italic=True, align="right")
        self.result = style(bg_color="#EEF6EE", align="right")
        self.unit = style(indent=1)
        self.functions = style(text_wrap=True, indent=1)
        self.count = style(bold=True, num_format="0", bg_color="#DDE6EF")
        self.note = style(font_color="#555555", italic=True)
        self.good = style(font_color="#00692B", bold=True, align="center")
        self.bad = style(font_color="#FFFFFF", bg_color="#C00000", bold=True)
        self.date = style(num_format="hh:mm", align="center")
        self.two, self.five = style(num_format="0.00", bg_color="#EEF6EE"), style(num_format="0.00000", bg_color="#EEF6EE")
        self.total = style(bold=True, num_format="#,##0.0", bg_color="#DDE6EF")
        self.whole = style(num_format="0", bg_color="#EEF6EE")
        self.link = style(font_color="#0000C0", underline=1)

    def sheet(self, name, widths, landscape=True):
        sheet = self.book.add_worksheet(name)
        for i, width in enumerate(widths):
            sheet.set_column(i, i, width, self.plain)
        if landscape:
            sheet.set_landscape()
        sheet.set_paper(9)
        sheet.fit_to_pages(1, 0)
        sheet.set_footer("&L&F, &A&R&P / &N")
        sheet.hide_gridlines(2)
        sheet.set_row(0, 22)
        return sheet

    def name(self, record):
        if self.calc:
            return "NORVANE.CALC.FUNCTIONS." + record["worksheet"].replace("_", "").upper()
        return "_xll." + record["worksheet"]

    def call(self, record, arguments):
        while arguments and arguments[-1] == "":
            arguments.pop()
        return f"{self.name(record)}({','.join(arguments)})"

    def array(self, sheet, first, last, formula, values, style, first_style=None):
        sheet.write_array_formula(*first, *last, "{=" + formula + "}", first_style or style, values[0])
        places = [(r, c) for r in range(first[0], last[0] + 1) for c in range(first[1], last[1] + 1)]
        for place, value in list(zip(places, values))[1:]:
            sheet.write(*place, value, style)

    def family(self, title, records, cases, answers):
        """A sheet of one standard; the number of its check cells."""
        sheet = self.sheet(title, [24, 15, 10, 2, 24, 17, 11, 16, 11, 7, 2, 18, 10, 10, 10])
        sheet.write(0, 0, title, self.title)
        sheet.write(1, 0, "Blue cells are inputs, grey ones defaults; results are array formulas (Ctrl+Shift+Enter).", self.plain)
        row, checks = 3, 0
        for record in records:
            case, answer = cases[record["id"]], answers[record["id"]]
            sheet.set_row(row, 16)
            sheet.set_row(row + 1, 16)
            for c in range(15):
                sheet.write_blank(row, c, None, self.heading)
            sheet.write(row, 0, f"{record['worksheet']}: {record['description'] or record['display']}", self.heading)
            for c, text in ((0, "Input"), (1, "Value"), (2, "Unit"), (4, "Output"), (5, "Result"), (6, "Unit"),
                            (7, "Check value"), (8, "Tolerance"), (9, "Check")):
                sheet.write(row + 1, c, text, self.head)
            top, side, arguments = row + 2, 11, []
            place, height = top, 0
            for entry in record["inputs"]:
                value = case["inputs"].get(entry["key"])
                if entry["key"] == "Name":
                    arguments.append('""')
                    continue
                sheet.write(place, 0, entry["display"] or entry["key"], self.plain)
                if isinstance(value, list):
                    rows = [v if isinstance(v, list) else [v] for v in value]
                    names = entry["key"] == "composition" and len(rows) == 22
                    sheet.write(row + 1, side, entry["display"] or entry["key"], self.head)
                    for c in range(len(rows[0])):
                        sheet.write(row + 1, side + 1 + c, "Amount" if names else "", self.head)
                    for r, cells in enumerate(rows):
                        sheet.write(top + r, side, self.program.components[r][1] if names else "", self.plain)
                        for c, amount in enumerate(cells):
                            sheet.write(top + r, side + 1 + c, amount, self.input)
                    area = f"{cell(top, side + 1)}:{cell(top + len(rows) - 1, side + len(rows[0]))}"
                    sheet.write(place, 1, area, self.default)
                    arguments.append(area)
                    height = max(height, len(rows))
                    side += 2 + len(rows[0])
                elif value is None and entry["default"] is None:
                    arguments.append("")
                else:
                    given = value is not None
                    value = value if given else entry["default"]
                    sheet.write(place, 1, value, self.input if given else self.default)
                    arguments.append(cell(place, 1))
                sheet.write(place, 2, entry["type"] if len(entry["type"]) < 10 and entry["type"] not in ("int", "num") else "",
                            self.unit)
                place += 1
            height = max(height, place - top, len(record["outputs"]))
            outputs = record["outputs"]
            self.array(sheet, (top, 5), (top + len(outputs) - 1, 5), self.call(record, arguments),
                       ["" if answer[o["key"]] is None else answer[o["key"]] for o in outputs], self.result)
            for r, output in enumerate(outputs):
                sheet.write(top + r, 4, output["display"] or output["key"], self.plain)
                sheet.write(top + r, 6, output["type"] if len(output["type"]) < 12 and output["type"] not in ("int", "num") else "",
                            self.unit)
                want = 0 if output["key"] == "status" else case["outputs"].get(output["key"])
                if not isinstance(want, (int, float)):
                    continue
                rtol = case.get("rtols", {}).get(output["key"], case.get("rtol", 0.0 if "atol" in case else 1e-9))
                limit = case.get("atols", {}).get(output["key"], case.get("atol", 0.0)) + rtol * abs(want)
                if output["key"] == "status":
                    limit = 0
                sheet.write(top + r, 7, want, self.plain)
                sheet.write(top + r, 8, float(f"{limit:.3g}") * 1.001, self.plain)
                f, p, t = cell(top + r, 5), cell(top + r, 7), cell(top + r, 8)
                sheet.write_formula(top + r, 9, f'=IF(ISNUMBER({f}),IF(ABS({f}-{p})<={t},"pass","FAIL"),"FAIL")', self.good, "pass")
                checks += 1
            sheet.write(top + height, 0, "Source: " + case.get("source", "").split(" (value")[0], self.plain)
            row = top + height + 2
        sheet.conditional_format(0, 9, row, 9, {"type": "cell", "criteria": "==", "value": '"FAIL"', "format": self.bad})
        sheet.freeze_panes(3, 0)
        return checks

    def metering(self):
        """Composition to energy a day."""
        program = self.program
        aga8, iso, orifice = (program.records[n] for n in ("AGA8_M", "ISO6976_2016_M", "ISO5167_Orifice"))
        gas = GAS + [0] * (22 - len(GAS))
        quality = {"composition": gas, "ref temp": 1, "molar mass method": 1, "cv method": 1}
        plate = {"visc": 1.1e-5, "kappa": 1.31, "pipe diam": 303.12, "pipe exp coef": 1.1e-5, "pipe ref temp": 20,
                 "dev diam": 120.04, "dev exp coef": 1.6e-5, "dev ref temp": 20, "config": 3}
        densities = program.evaluate([("AGA8_M", {"pressure": p, "temperature": t, "composition": gas, "edition": 2})
                                      for _, p, t in HOURS])
        value = program.evaluate([("ISO6976_2016_M", quality)])[0]
        rates = program.evaluate([("ISO5167_Orifice", dict(plate, dp=dp, pres=p, temp=t, dens=d["mass density"]))
                                  for (dp, p, t), d in zip(HOURS, densities)])
        sheet = self.sheet("Metering run", [8, 10, 10, 9, 9, 9, 11, 9, 11, 12, 12, 13, 2, 26, 14, 9])
        sheet.write(0, 0, "A metering run: orifice, gas quality and energy of a day", self.title)
        sheet.write(1, 0, "Density by AGA-8 (2017), calorific value by ISO 6976:2016 at 15/15 °C, mass flow by ISO 5167 "
                          "(2003). Change a blue cell.", self.plain)
        # Gas and meter, at the right.
        sheet.write(3, 13, "Composition", self.head)
        sheet.write(3, 14, "mole fraction", self.head)
        sheet.write(3, 15, "", self.head)
        for r, (_, name, *_) in enumerate(program.components):
            sheet.write(4 + r, 13, name, self.plain)
            sheet.write(4 + r, 14, gas[r], self.input)
        sheet.write(26, 13, "Sum (must be 1)", self.plain)
        sheet.write_formula(26, 14, "=SUM(O5:O26)", self.result, sum(gas))
        sheet.write_formula(26, 15, '=IF(ABS(O27-1)<0.0001,"pass","FAIL")', self.good, "pass")
        sheet.write(28, 13, "ISO 6976:2016", self.head)
        sheet.write(28, 14, "", self.head)
        sheet.write(28, 15, "", self.head)
        outputs = iso["outputs"]
        self.array(sheet, (29, 14), (28 + len(outputs), 14), self.call(iso, ['""', "O5:O26", "1", "1", "1"]),
                   [value[o["key"]] for o in outputs], self.result)
        for r, output in enumerate(outputs):
            sheet.write(29 + r, 13, output["display"], self.plain)
            sheet.write(29 + r, 15, output["type"] if len(output["type"]) < 10 and output["type"] != "num" else "", self.unit)
        meter = 30 + len(outputs)
        sheet.write(meter, 13, "Orifice, flange tappings", self.head)
        sheet.write(meter, 14, "", self.head)
        sheet.write(meter, 15, "", self.head)
        entries = {e["key"]: e for e in orifice["inputs"]}
        place = {}
        for r, (key, amount) in enumerate(plate.items()):
            entry = entries[key]
            sheet.write(meter + 1 + r, 13, entry["display"], self.plain)
            sheet.write(meter + 1 + r, 14, amount, self.input)
            sheet.write(meter + 1 + r, 15, entry["type"] if entry["type"] not in ("int", "num") else "", self.unit)
            place[key] = cell(meter + 1 + r, 14, True)
        # The hours.
        for c, text in enumerate(("Hour", "dp\nmbar", "Pressure\nbar(a)", "Temp.\n°C", "AGA-8\nstatus", "Z", "Density\nkg/m3",
                                  "Orifice\nstatus", "Mass flow\nkg/s", "Volume 15 °C\nm3/h", "Energy\nGJ/h", "Energy so far\nGJ")):
            sheet.write(3, c, text, self.tall_head)
        sheet.set_row(3, 28)
        hs, base, total = value["sup cal val mass"], value["density"], 0.0
        for h, ((dp, p, t), density, rate) in enumerate(zip(HOURS, densities, rates)):
            r = 4 + h
            sheet.write(r, 0, h / 24, self.date)
            for c, amount in ((1, dp), (2, p), (3, t)):
                sheet.write(r, c, amount, self.input)
            self.array(sheet, (r, 4), (r, 6), self.call(aga8, ['""', cell(r, 2), cell(r, 3), "$O$5:$O$26", "1", "2"]),
                       [density["status"], density["z"], density["mass density"]], self.five, self.whole)
            given = {"Name": '""', "dp": cell(r, 1), "pres": cell(r, 2), "temp": cell(r, 3), "dens": cell(r, 6), **place}
            self.array(sheet, (r, 7), (r, 8), self.call(orifice, [given.get(e["key"], "") for e in orifice["inputs"]]),
                       [rate["status"], rate["mass rate"]], self.five, self.whole)
            mass = rate["mass rate"] * 3600
            energy = mass * hs / 1000
            total += energy
            sheet.write_formula(r, 9, f"={cell(r, 8)}*3600/$O$32", self.two, mass / base)
            sheet.write_formula(r, 10, f"={cell(r, 8)}*3600*$O$36/1000", self.two, energy)
            sheet.write_formula(r, 11, f"=SUM($K$5:{cell(r, 10)})", self.two, total)
        assert [o["key"] for o in outputs][2] == "density" and [o["key"] for o in outputs][6] == "sup cal val mass"
        sheet.conditional_format(4, 4, 27, 4, {"type": "cell", "criteria": "!=", "value": 0, "format": self.bad})
        sheet.conditional_format(4, 7, 27, 7, {"type": "cell", "criteria": "!=", "value": 0, "format": self.bad})
        for c, text in ((0, "Day"), *((c, "") for c in range(1, 9)), (11, "GJ")):
            sheet.write(28, c, text, self.total)
        sheet.write_formula(28, 9, "=SUM(J5:J28)", self.total, sum(r["mass rate"] * 3600 / base for r in rates))
        sheet.write_formula(28, 10, "=SUM(K5:K28)", self.total, total)
        chart = self.book.add_chart({"type": "column"})
        chart.add_series({"name": "Energy, GJ/h", "categories": "='Metering run'!$A$5:$A$28", "gap": 40,
                          "values": "='Metering run'!$K$5:$K$28", "fill": {"color": "#1F4E79"}})
        line = self.book.add_chart({"type": "line"})
        line.add_series({"name": "Pressure, bar(a)", "categories": "='Metering run'!$A$5:$A$28", "y2_axis": True,
                         "values": "='Metering run'!$C$5:$C$28", "line": {"color": "#C55A11", "width": 2}})
        chart.combine(line)
        chart.set_title({"name": "Energy and pressure of the day", "name_font": {"size": 11}})
        chart.set_x_axis({"num_format": "hh:mm", "num_font": {"rotation": -90}})
        chart.set_y_axis({"name": "GJ/h", "num_format": "0", "major_gridlines": {"visible": True, "line": {"color": "#DDDDDD"}}})
        line.set_y2_axis({"name": "bar(a)", "num_format": "0.0"})
        chart.set_legend({"position": "bottom"})
        chart.set_size({"width": 860, "height": 340})
        sheet.insert_chart("A31", chart)

    def statuses(self):
        sheet = self.sheet("Statuses", [30, 9, 22, 70], landscape=False)
        sheet.write(0, 0, "Statuses and other coded outputs", self.title)
        sheet.write(1, 0, "The first output of a calculation is its status: other outputs have a meaning when it is 0.", self.plain)
        kinds = collections.defaultdict(list)
        for record in self.program.records.values():
            status = record["outputs"][0]
            if status["key"] == "status" and status["values"]:
                values = [(0, "", "Normal")] + [(v["value"], v["id"], v["description"]) for v in status["values"]]
                kinds[("Status", tuple(values))].append(record["id"])
        for function in self.program.exports:
            for output in function["outputs"]:
                values = re.findall(r"(?:^|; )(\d+): ([^;]+)", output["form"])
                if output["type"] == "option" and values:
                    named = tuple((int(number), "", text) for number, text in values)
                    kinds[(output["key"], named)].append(function["function"])
        row = 3
        for (kind, values), users in sorted(kinds.items(), key=lambda k: (k[0][0] != "Status", k[0][0], -len(k[1]))):
            for c, text in enumerate((kind, "Value", "Name", "Meaning")):
                sheet.write(row, c, text, self.head)
            for value, name, text in values:
                row += 1
                for c, shown in ((1, value), (2, name), (3, text)):
                    sheet.write(row, c, shown, self.unit if c == 2 else self.plain)
            row += 1
            sheet.write(row, 1, "of " + ", ".join(users[:5]) + (f" and {len(users) - 5} more" if len(users) > 5 else ""), self.note)
            row += 2

    def components(self):
        sheet = self.sheet("Components", [8, 22, 16], landscape=False)
        sheet.write(0, 0, "Order of the components in a composition", self.title)
        sheet.write(1, 0, "22 cells below or beside each other, as fractions; what is not in the gas is 0.", self.plain)
        for c, text in enumerate(("Place", "Component", "Formula")):
            sheet.write(3, c, text, self.head)
        for r, (place, name, formula) in enumerate(self.program.components):
            sheet.write(4 + r, 0, int(place) + 1, self.plain)
            sheet.write(4 + r, 1, name, self.plain)
            sheet.write(4 + r, 2, formula, self.plain)


def main():
    calc = "--calc" in sys.argv
    norvane, path, *files = [a for a in sys.argv[1:] if a != "--calc"]
    program = Program(norvane)
    cases = best_cases(files, program.records)
    answers = dict(zip(cases, program.evaluate([(n, {k: v for k, v in c["inputs"].items() if v is not None})
                                                for n, c in cases.items()])))
    families = collections.defaultdict(list)
    for name in program.records:
        if name in cases and answers[name][program.records[name]["outputs"][0]["key"]] == 0:
            record = program.records[name]
            families[FAMILY.get(record["subcategory"], record["subcategory"])].append(record)
    book = Book(path, program, calc)
    overview = book.sheet("Start", [34, 12, 12, 60], landscape=False)
    book.metering()
    rows = []
    for title in sorted(families):
        safe = re.sub(r"[\[\]:*?/\\]", " ", title)[:31]
        rows.append((safe, book.family(safe, families[title], cases, answers), [r["worksheet"] for r in families[title]]))
    book.statuses()
    book.components()
    overview.write(0, 0, "Norvane examples", book.title)
    overview.write(1, 0, program.run("--version").splitlines()[0], book.plain)
    text = ("Norvane.oxt (Tools, Extensions)" if calc else "Norvane.XLL (File, Options, Add-ins, Go...)")
    for r, line in enumerate((f"Load {text}, then recalculate with {'Ctrl+Shift+F9' if calc else 'Ctrl+Alt+F9'}.",
                              "Without it the cells show the results of the program that made this workbook.",
                              "Every check cell compares a result with a published or independently calculated value, whose source stands below.")):
        overview.write(3 + r, 0, line, book.plain)
    overview.set_row(7, 16)
    for c, head in enumerate(("Sheet", "Checks", "Passed", "Functions")):
        overview.write(7, c, head, book.head)
    overview.write_url(8, 0, "internal:'Metering run'!A1", book.link, "Metering run")
    overview.write(8, 3, "composition, AGA-8, ISO 6976, orifice, energy of a day", book.wrap)
    for r, (name, checks, functions) in enumerate(rows):
        overview.write_url(9 + r, 0, f"internal:'{name}'!A1", book.link, name)
        overview.write(9 + r, 1, checks, book.plain)
        overview.write_formula(9 + r, 2, f"=COUNTIF('{name}'!J:J,\"pass\")", book.plain, checks)
        overview.write(9 + r, 3, ", ".join(functions), book.functions)
        overview.set_row(9 + r, 13.5 * (1 + len(", ".join(functions)) // 62))
    last = 9 + len(rows)
    overview.write(last, 0, "All", book.total)
    overview.write_formula(last, 1, f"=SUM(B10:B{last})", book.count, sum(r[1] for r in rows))
    overview.write_formula(last, 2, f"=SUM(C10:C{last})", book.count, sum(r[1] for r in rows))
    overview.write_formula(last, 3, f'=IF(B{last + 1}=C{last + 1},"all good","NOT ALL GOOD")', book.total, "all good")
    book.book.close()


main()
