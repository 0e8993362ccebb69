#!/usr/bin/env python3
"""Check values of what is a sum over a table, in rational arithmetic: every row of it has a say in one of them.

usage: refereed.py FOLDER      writes iso6976.jsonl, gpa2172.jsonl and gost8_586.jsonl (tests/data/refereed)

ISO 6976, GPA 2172 with GPA 2145, and the tables of GOST 8.586.1, written down a second time as the standards say it. The
printed decimals of the tables are read from the sources; nothing else is shared with the library. A result is rounded
once, to the nearest double; 1e-14 is what the roundings of a sum of sixty products may make.
"""
import json
import math
import os
import re
import sys
from fractions import Fraction

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
AGA8_ORDER = [name.replace("_", " ") for name in """methane nitrogen carbon_dioxide ethane propane water hydrogen_sulfide
    hydrogen carbon_monoxide oxygen 2-methylpropane n-butane 2-methylbutane n-pentane n-hexane n-heptane n-octane n-nonane
    n-decane helium argon 2,2-dimethylpropane""".split()]
ALKANES = ["2-methylpentane", "3-methylpentane", "2,2-dimethylbutane", "2,3-dimethylbutane"]
ALKENES = ["ethylene", "propylene", "1-butene", "cis-2-butene", "trans-2-butene", "2-methylpropene", "1-pentene",
           "propadiene", "1,2-butadiene", "1,3-butadiene", "acetylene"]
CYCLOALKANES = ["cyclopentane", "methylcyclopentane", "ethylcyclopentane", "cyclohexane", "methylcyclohexane",
                "ethylcyclohexane"]
AROMATICS = ["benzene", "toluene", "ethylbenzene", "o-xylene"]
OTHERS = ["methanol", "methanethiol", "ammonia", "hydrogen cyanide", "carbonyl sulfide", "carbon disulfide", "neon",
          "sulfur dioxide"]
HEAVY = ["n-undecane", "n-dodecane", "n-tridecane", "n-tetradecane", "n-pentadecane"]


def table(path, name, numbers):
    """Rows of a table in a source: texts in quotation marks, then the numbers."""
    with open(os.path.join(TOP, path), encoding="utf-8") as file:
        body = re.search(name + r"\[\] = \{\n(.*?)\n\};", file.read(), re.S).group(1)
    rows = []
    for line in body.splitlines():
        code = line.split("//")[0]
        figures = re.findall(r"-?\d+\.?\d*(?:e-?\d+)?", re.sub(r'"[^"]*"', "", code))
        if figures:
            rows.append((re.findall(r'"([^"]*)"', code), [Fraction(figure) for figure in figures][:numbers]))
    return rows


def case(function, inputs, outputs, source):
    outputs = {"status": 0, **{key: float(value) for key, value in outputs.items()}}
    return {"function": function, "inputs": inputs, "outputs": outputs, "rtol": 1e-14, "source": source}


def root(value):
    """Square root to 40 digits."""
    return Fraction(math.isqrt(value.numerator * 10 ** 80 // value.denominator), 10 ** 40)


def gas(names, seed):
    """Amounts of 0.001 to 0.06 for all, that add up to 1 but for rounding."""
    raw = [1 + (seed * 7919 * (i + 1) + 31 * i * i) % 53 for i in range(len(names))]
    return {name: round(amount / sum(raw), 6) for name, amount in zip(names, raw)}


def iso6976(edition):
    path = f"math/gas/iso6976_{edition}_table.h"
    tables = [table(path, f"table{i}", 12) for i in range(1, 6 if edition == 1995 else 4)]
    names = [texts[0] for texts, _ in tables[0]]
    lists = {"composition": AGA8_ORDER, "alkanes": ALKANES + (HEAVY if edition == 2016 else []), "alkenes": ALKENES}
    if edition == 1995:
        lists.update({"cycloalkanes": CYCLOALKANES, "aromatics": AROMATICS})
    else:
        lists["ring compounds"] = CYCLOALKANES + AROMATICS
    lists["others"] = OTHERS
    atomic = {1995: "12.011 1.00794 15.9994 14.00674 32.066", 2016: "12.0107 1.00794 15.9994 14.0067 32.065"}[edition]
    atomic = [Fraction(mass) for mass in atomic.split()]
    R = Fraction({1995: "8.31451", 2016: "8.3144621"}[edition])
    air = Fraction({1995: "28.9626", 2016: "28.96546"}[edition])
    z_air = {1995: {0: "0.99941", 15: "0.99958", 20: "0.99963"},
             2016: {0: "0.999419", 15: "0.999595", 15.55: "0.999601", 20: "0.999645"}}[edition]
    burnt = [25, 20, 15, 0] if edition == 1995 else [0, 15, 15.55, 20, 25]
    metered = list(z_air)
    vaporisation = [Fraction(h) for h in "45.064 44.431 44.408 44.222 44.013".split()]
    options = [(15, 15), (0, 0), (15, 0), (25, 0), (20, 20), (25, 20)] + [(15.55, 15.55)] * (edition == 2016)
    for option, (t1, t2) in enumerate(options, 1):
        for mass_method in (1, 2):
            for method in (1, 2) if edition == 1995 else (1,):
                amounts = gas(names, 10 * option + 2 * mass_method + method)
                total = sum(Fraction(amount) for amount in amounts.values())
                x = [Fraction(amounts[name]) / total for name in names]
                mass = [row[6] if mass_method == 2 else sum(n * m for n, m in zip(row, atomic)) + row[5]
                        for _, row in tables[0]]
                k1, k2 = burnt.index(t1), metered.index(t2)
                s = [row[k2 + (3 if edition == 1995 else 0)] for _, row in tables[1]]
                superior = [row[k1] for _, row in tables[2]]
                inferior = ([row[4 + k1] for _, row in tables[2]] if edition == 1995 else
                            [h - row[1] / 2 * vaporisation[k1] for h, (_, row) in zip(superior, tables[0])])
                dot = lambda values: sum(a * b for a, b in zip(x, values))
                M, Z = dot(mass), 1 - dot(s) ** 2
                density = Fraction("101.325") / (R * (Fraction(str(t2)) + Fraction("273.15"))) / Z  # kmol/m3
                molar = dot(superior), dot(inferior)
                by_mass, by_volume = [h / M for h in molar], [h * density for h in molar]
                if method == 2:
                    weighed = [a * m for a, m in zip(x, mass)]
                    by_mass = [sum(w * row[first + k1] for w, (_, row) in zip(weighed, tables[3])) / M
                               for first in (0, 4)]
                    by_volume = [dot([row[first + option - 1] for _, row in tables[4]]) / Z for first in (0, 6)]
                relative = M / air * Fraction(z_air[t2]) / Z
                inputs = {key: [amounts[name] for name in members] for key, members in lists.items()}
                inputs.update({"ref temp": option, "molar mass method": mass_method, "cv method": method})
                yield case(f"ISO6976ex_{edition}_M", inputs, {
                    "sup cal value": by_volume[0], "density": M * density, "compressibility": Z,
                    "rel density": relative, "molar mass": M, "sup cal val mass": by_mass[0],
                    "sup cal val mole": molar[0], "inf cal value": by_volume[1], "inf cal val mass": by_mass[1],
                    "inf cal val mole": molar[1], "wobbe": by_volume[0] / root(relative)},
                    f"ISO 6976:{edition}, all components, in rational arithmetic")


def gpa2172():
    path = "math/gas/gpa2145_table.h"
    saturation = [Fraction("0.017444202504082743")] * 3 + [Fraction("0.01744692433315188")]
    editions = {"C": (Fraction("14.696"), ["customary_2000", "customary_2003", "customary_2016", "customary_2016"],
                      saturation, "0.005 0.00678 0.00523 0.00537"),
                "M": (Fraction("101.325"), ["metric_2003", "metric_2003", "metric_2016", "metric_2016"],
                      [Fraction("0.016834937083641748")] * 4, "0.00259 0.00259 0.00201 0.00201")}
    water = AGA8_ORDER.index("water")
    for system, (P, tables, saturations, air) in editions.items():
        for edition in range(1, 5):
            rows = [row for _, row in table(path, tables[edition - 1], 6)]
            for family in ("GPA2172_96_", "GPA2172_"):
                amounts = list(gas(AGA8_ORDER, 3 * edition + len(family)).values())
                x = [Fraction(amount) for amount in amounts]
                x[AGA8_ORDER.index("n-pentane")] += x.pop()
                total, dry_total, x_s = sum(x), sum(x) - x[water], saturations[edition - 1]
                wet = [a / total for a in x]
                dry = [a / dry_total if i != water else Fraction(0) for i, a in enumerate(x)]
                saturated = [x_s if i == water else (1 - x_s) * a for i, a in enumerate(dry)]
                outputs = {}
                for basis, y, x_w in (("wet", wet, wet[water]), ("dry", dry, Fraction(0)), ("sat", saturated, x_s)):
                    M, G, gross, by_mass, net, b = [sum(a * row[k] for a, row in zip(y, rows)) for k in range(6)]
                    s_air = x_w * rows[water][5] + (1 - x_w) * Fraction(air.split()[edition - 1])
                    Z = 1 - P * b * b
                    outputs.update({f"{basis} ghv vol": gross / Z, f"{basis} molar mass": M, f"{basis} ideal sg": G,
                                    f"{basis} real rd": G * (1 - P * s_air * s_air) / Z, f"{basis} compr": Z,
                                    f"{basis} ghv mass": by_mass, f"{basis} nhv": net / Z})
                yield case(family + system, {"composition": amounts, "edition": edition, "neo-c5 mode": 2}, outputs,
                           "GPA 2172 with the tables of GPA 2145, all components, in rational arithmetic")


def gost8_586():
    path = "math/flow/gost8_586_table.h"
    with open(os.path.join(TOP, path), encoding="utf-8") as file:
        text = file.read()
    for number, (a, printing) in enumerate(re.findall(r'u"[^"]*",\s*([^P]*), Printing::(\w+)\}', text), 1):
        a = [Fraction(figure.strip()) for figure in a.split(",")]
        if printing == "missing":
            continue
        t = Fraction(320, 1000)
        yield case("GOST8_586_2005_SteelExpansionFactor", {"material": number, "temperature": 320},
                   {"exp coef": (a[0] + a[1] * t + a[2] * t * t) / 10 ** 6},
                   "GOST 8.586.1-2005, table G.1, in rational arithmetic")
    for number, (_, row) in enumerate(table(path, "pipe_walls", 2), 1):
        if row[0]:
            yield case("GOST8_586_2005_Roughness", {"pipe type": number},
                       {"roughness": row[0], "avg roughness": row[1]}, "GOST 8.586.1-2005, table D.1")


def main():
    for name, cases in (("iso6976", [*iso6976(1995), *iso6976(2016)]), ("gpa2172", gpa2172()),
                        ("gost8_586", gost8_586())):
        with open(os.path.join(sys.argv[1], name + ".jsonl"), "w", encoding="utf-8") as file:
            file.writelines(json.dumps(line, separators=(",", ":")) + "\n" for line in cases)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main()
