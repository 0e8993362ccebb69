#!/usr/bin/python3
"""The documentation as static pages: guides, accuracy and a page a function, with a search that needs no server.

usage: site.py NORVANE FOLDER FILE.jsonl...

Every function's page has the reference, which the program writes, and a worked example: a published check value,
calculated while the page is made, with the call to copy for a sheet, a shell, Python and C. The example's command is run
as it stands on the page.
"""
import html
import json
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

import markdown

sys.path.insert(0, str(Path(__file__).resolve().parent))
from check_cases import best_cases

TOP = Path(__file__).resolve().parent.parent
FIRST = ["spreadsheet", "vba", "csharp", "native", "python", "cli", "automation", "scale", "accuracy"]
GUIDES = FIRST + sorted(p.stem for p in (TOP / "docs").glob("*.md") if p.stem not in FIRST)

STYLE = """
:root { color-scheme: light dark; --ink: #15202b; --soft: #5b6773; --line: #d5dce3; --back: #fff; --tint: #f3f6f9; --link: #0b5394 }
@media (prefers-color-scheme: dark) { :root { --ink: #e4e9ee; --soft: #9aa7b4; --line: #37424d; --back: #14191f; --tint: #1d242c; --link: #7db8f0 } }
* { box-sizing: border-box }
body { font: 15px/1.5 system-ui, "Segoe UI", sans-serif; color: var(--ink); background: var(--back); margin: 0 }
a { color: var(--link) } main { max-width: 1000px; margin: 0 auto; padding: 0 20px 60px }
header { border-bottom: 1px solid var(--line); background: var(--tint) }
header div { max-width: 1000px; margin: 0 auto; padding: 10px 20px; display: flex; gap: 18px; flex-wrap: wrap; align-items: center }
header b a { color: inherit; text-decoration: none; font-size: 18px }
#search { flex: 1; min-width: 180px; font: inherit; padding: 5px 9px; border: 1px solid var(--line); border-radius: 5px; background: var(--back); color: inherit }
#found { max-width: 1000px; margin: 0 auto; padding: 0 20px } #found a { display: block; padding: 3px 0 } #found span { color: var(--soft) }
h1 { font-size: 26px; margin: 26px 0 8px } h2 { font-size: 19px; margin: 28px 0 6px; break-after: avoid } h3 { font-size: 16px; break-after: avoid }
table { border-collapse: collapse; margin: 8px 0 14px; font-size: 14px; display: block; overflow-x: auto }
th, td { text-align: left; vertical-align: top; padding: 4px 10px 4px 0; border-bottom: 1px solid var(--line) }
pre, code { font: 13px/1.45 ui-monospace, Consolas, monospace } code { background: var(--tint); padding: 0 3px }
pre { background: var(--tint); border: 1px solid var(--line); border-radius: 5px; padding: 9px 12px; overflow-x: auto; position: relative } pre code { background: none; padding: 0 }
details { margin: 6px 0 } summary { cursor: pointer; font-weight: 600 } button { font: 12px system-ui, sans-serif; position: absolute; right: 6px; top: 6px; border: 1px solid var(--line); border-radius: 4px; background: var(--back); color: var(--soft); cursor: pointer }
.number { text-align: right; font-variant-numeric: tabular-nums } .source { color: var(--soft); font-size: 13px }
@page { size: A4; margin: 16mm }
@media print { header, #found, button { display: none } main { max-width: none; padding: 0 } body { font-size: 10pt; color: #000; background: #fff }
  table { display: table; font-size: 9pt } tr, pre { break-inside: avoid } pre { white-space: pre-wrap } a { color: inherit; text-decoration: none } }
"""

SCRIPT = """
const box = document.getElementById("search"), found = document.getElementById("found");
box.addEventListener("input", () => {
  const words = box.value.toLowerCase().split(/\\s+/).filter(w => w);
  found.textContent = "";
  if (!words.length) return;
  const hits = pages.map(p => ({ p, at: words.map(w => (p.t + " " + p.k).toLowerCase().indexOf(w)) }))
    .filter(h => h.at.every(i => i >= 0)).sort((a, b) => Math.max(...a.at) - Math.max(...b.at)).slice(0, 30);
  for (const { p } of hits) {
    const line = document.createElement("a"), more = document.createElement("span");
    line.href = root + p.u; line.textContent = p.t + " "; more.textContent = p.d; line.append(more); found.append(line);
  }
  if (!hits.length) found.textContent = "Nothing found.";
});
box.addEventListener("keydown", e => { if (e.key === "Enter" && found.firstChild && found.firstChild.href) location = found.firstChild.href; });
for (const block of document.querySelectorAll("pre")) {
  const button = document.createElement("button");
  button.textContent = "copy";
  button.addEventListener("click", () => {
    const text = block.querySelector("code").textContent;
    const done = () => { button.textContent = "copied"; setTimeout(() => button.textContent = "copy", 1500); };
    if (navigator.clipboard) { navigator.clipboard.writeText(text).then(done); return; }
    const area = document.createElement("textarea");
    area.value = text; document.body.append(area); area.select(); document.execCommand("copy"); area.remove(); done();
  });
  block.append(button);
}
"""


def short(value):
    """20 for 20.0, in lists too."""
    if isinstance(value, list):
        return [short(v) for v in value]
    return int(value) if isinstance(value, float) and value.is_integer() and abs(value) < 1e15 else value


class Site:
    def __init__(self, norvane, folder, files):
        self.norvane, self.folder = os.path.abspath(norvane), Path(folder)
        self.version = self.run("--version").splitlines()[0]
        self.records = {r["id"]: r for r in json.loads(self.run("list", "--json"))}
        exports = Path(self.norvane).parent / "norvane.json"
        self.exports = {f["function"]: f for f in json.loads(exports.read_text(encoding="utf-8"))}
        self.cases = best_cases(files, self.records)
        self.search = []

    def run(self, *arguments):
        return subprocess.run([self.norvane, *arguments], check=True, capture_output=True, text=True,
                              encoding="utf-8").stdout

    def write(self, path, title, body):
        root = "../" * path.count("/")
        text = (f'<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n'
                f'<meta name="viewport" content="width=device-width, initial-scale=1">\n<title>{html.escape(title)} - Norvane</title>\n'
                f'<link rel="stylesheet" href="{root}site.css">\n</head>\n<body>\n<header><div><b><a href="{root}index.html">Norvane</a></b>'
                f'<a href="{root}functions/README.html">Functions</a><a href="{root}accuracy.html">Accuracy</a>'
                f'<input id="search" type="search" placeholder="Search functions, standards, quantities" aria-label="Search"></div></header>\n'
                f'<div id="found"></div>\n<main>\n{body}\n<p class="source">{html.escape(self.version)}</p>\n</main>\n'
                f'<script>const root = "{root}";</script>\n<script src="{root}search.js"></script>\n</body>\n</html>\n')
        place = self.folder / path
        place.parent.mkdir(parents=True, exist_ok=True)
        place.write_text(text, encoding="utf-8")

    @staticmethod
    def convert(text, anchors=True):
        body = markdown.markdown(text, extensions=["tables", "fenced_code", "sane_lists"] + (["toc"] if anchors else []))
        # A page of the site for a page of the folder; what lies elsewhere in the project is named, not linked.
        body = re.sub(r'href="((?!https?:)[^"#]+)\.md(#[^"]*)?"', lambda m: f'href="{m[1]}.html{m[2] or ""}"', body)
        return re.sub(r'<a href="\.\./(?!functions/)[^"]*">(.*?)</a>', r"\1", body)

    # The worked example.
    def given(self, record, case):
        return [(e, case["inputs"].get(e["key"])) for e in record["inputs"]
                if e["key"] != "Name" and case["inputs"].get(e["key"]) is not None]

    def shell(self, record, case):
        words = ["norvane", "call", record["id"]]
        for entry, value in self.given(record, case):
            if isinstance(value, list):
                value = json.dumps(value, separators=(",", ":"))
            words.append(shlex.quote(f"{entry['key'].replace(' ', '_')}={value if isinstance(value, str) else str(value)}"))
        return " ".join(words)

    @staticmethod
    def literal(value):
        if isinstance(value, list):
            rows = [row if isinstance(row, list) else [row] for row in value]
            return "{" + ";".join(",".join(repr(v) for v in row) for row in rows) + "}"
        if isinstance(value, bool):
            return "TRUE" if value else "FALSE"
        return '"' + value.replace('"', '""') + '"' if isinstance(value, str) else repr(value)

    def sheet(self, record, case):
        arguments = ['""' if e["key"] == "Name" else
                     "" if case["inputs"].get(e["key"]) is None else self.literal(case["inputs"][e["key"]])
                     for e in record["inputs"]]
        while arguments and arguments[-1] == "":
            arguments.pop()
        return f"={record['worksheet']}({','.join(arguments)})"

    def python(self, record, case):
        name = lambda key: re.sub(r"[^a-z0-9]+", "_", key.lower()).strip("_")
        arguments = ",\n    ".join(f"{name(e['key'])}={value!r}" for e, value in self.given(record, case))
        return f"import norvane\n\nprint(norvane.{record['id']}(\n    {arguments}))"

    def c(self, record, case):
        export = self.exports.get(record["id"])
        if export is None:
            return None
        before, arguments = [], []
        for entry in export["inputs"]:
            value = case["inputs"].get(entry["key"], entry.get("default"))
            if entry["type"] == "range":
                flat = [v for row in value or [] for v in (row if isinstance(row, list) else [row])]
                if flat:
                    before.append(f"const double {entry['name']}[] = {{{', '.join(map(repr, flat))}}};")
                arguments += [entry["name"] if flat else "NULL", str(len(flat))]
            else:
                arguments.append(repr(value or 0) if entry["type"] == "number" else str(int(value or 0)))
        outputs = {kind: [o["name"] for o in export["outputs"] if (o["type"] == "option") == (kind == "uint32_t")]
                   for kind in ("double", "uint32_t")}
        before += [f"{kind} {', '.join(names)};" for kind, names in outputs.items() if names]
        arguments += ["&" + o["name"] for o in export["outputs"]]
        first = export["outputs"][0]
        shown = f'printf("%u %.15g\\n", (unsigned)status, (double){first["name"]});'
        return ("#include <norvane.h>\n#include <stdio.h>\n\nint main(void) {\n  " + "\n  ".join(before) +
                f"\n  uint32_t status = {export['export']}({', '.join(arguments)});\n  {shown}\n  return 0;\n}}")

    def example(self, record):
        case = self.cases.get(record["id"])
        if case is None:
            return ""
        case = dict(case, inputs={k: short(v) for k, v in case["inputs"].items() if v is not None})
        command = self.shell(record, case)
        path = os.path.dirname(self.norvane) + os.pathsep + os.environ["PATH"]
        answer = subprocess.run(["bash", "-c", command], check=True, capture_output=True, text=True, encoding="utf-8",
                                env=dict(os.environ, PATH=path)).stdout
        line = json.dumps({"function": record["id"], "inputs": case["inputs"]}) + "\n"
        done = subprocess.run([self.norvane, "eval"], input=line, capture_output=True, text=True, encoding="utf-8")
        outputs = json.loads(done.stdout)["outputs"]
        rows = ""
        for output in record["outputs"]:
            want = case["outputs"].get(output["key"], "")
            rows += (f"<tr><td>{html.escape(output['display'] or output['key'])}</td>"
                     f"<td class=number>{html.escape(str(outputs[output['key']]))}</td>"
                     f"<td class=number>{html.escape('' if want is None else str(want))}</td></tr>\n")
        source = case.get("source", "")
        blocks = [("Sheet", self.sheet(record, case)), ("Shell", command), ("Python", self.python(record, case)),
                  ("C", self.c(record, case))]
        copies = "".join(f"<details{' open' if title == 'Shell' else ''}><summary>Copy as {title}</summary>"
                         f"<pre><code>{html.escape(text)}</code></pre></details>\n" for title, text in blocks if text is not None)
        return (f"<h2 id=example>Worked example</h2>\n<p class=source>{html.escape(source)}</p>\n"
                f"<table><thead><tr><th>Output</th><th class=number>Calculated</th><th class=number>Check value</th></tr></thead><tbody>\n{rows}</tbody></table>\n"
                f"{copies}<details><summary>The command's answer</summary><pre><code>{html.escape(answer)}</code></pre></details>\n")

    def make(self):
        reference = self.folder / "reference.tmp"
        self.run("doc", "--out", str(reference))
        for page in sorted(reference.glob("*.md")):
            text = page.read_text(encoding="utf-8")
            title = re.sub(r"[\\`]", "", text.split("\n", 1)[0].lstrip("# "))
            body = self.convert(text)
            record = self.records.get(page.stem)
            if record is not None:
                body += self.example(record)
                self.search.append({"t": title, "u": f"functions/{page.stem}.html", "d": record["description"],
                                    "k": " ".join([record["worksheet"], record["subcategory"], *record["keywords"],
                                                   record["description"]] + [o["display"] for o in record["outputs"]])})
            else:
                self.search.append({"t": title, "u": f"functions/{page.stem}.html", "d": "", "k": title})
            self.write(f"functions/{page.stem}.html", title, body)
            page.unlink()
        reference.rmdir()
        lines = ""
        for name in GUIDES:
            page = TOP / "docs" / f"{name}.md"
            if not page.exists():
                continue
            text = page.read_text(encoding="utf-8")
            title = text.split("\n", 1)[0].lstrip("# ")
            heads = re.findall(r"^## (.*)", text, re.M)
            self.search.append({"t": title, "u": f"{name}.html", "d": "guide", "k": " ".join([title, *heads])})
            self.write(f"{name}.html", title, self.convert(text))
            lines += f'<li><a href="{name}.html">{html.escape(title)}</a></li>\n'
        families = {}
        for record in self.records.values():
            families.setdefault(record["subcategory"], []).append(record)
        body = "<h1>Norvane</h1>\n<p>Calculations for custody-transfer flow measurement.</p>\n<h2>Guides</h2>\n<ul>" + lines + "</ul>\n<h2>Functions</h2>\n"
        for family in sorted(families):
            body += f"<h3>{html.escape(family)}</h3>\n<table><tbody>\n"
            for record in families[family]:
                body += (f'<tr><td><a href="functions/{record["id"]}.html">{record["id"]}</a></td>'
                         f"<td>{html.escape(record['description'])}</td></tr>\n")
            body += "</tbody></table>\n"
        self.write("index.html", "Documentation", body)
        (self.folder / "site.css").write_text(STYLE.lstrip(), encoding="utf-8")
        (self.folder / "search.js").write_text("const pages = " + json.dumps(self.search, ensure_ascii=False) + ";\n" +
                                               SCRIPT.lstrip(), encoding="utf-8")
        print(f"{len(self.search)} pages in {self.folder}")


if __name__ == "__main__":
    Path(sys.argv[2]).mkdir(parents=True, exist_ok=True)
    Site(sys.argv[1], sys.argv[2], sys.argv[3:]).make()
