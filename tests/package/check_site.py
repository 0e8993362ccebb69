#!/usr/bin/python3
"""The documentation as pages: every link leads somewhere, every function has its page, the examples in C compile and
give what the page says.

usage: check_site.py SITE INCLUDE LIBRARY_FOLDER NORVANE
"""
import html
import json
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

site, include, library, norvane = map(os.path.abspath, sys.argv[1:5])
pages = {p.relative_to(site).as_posix(): p.read_text(encoding="utf-8") for p in Path(site).rglob("*.html")}
for name, text in pages.items():
    for link in re.findall(r'href="([^"]+)"', text):
        if re.match("https?:", link):
            continue
        target, _, anchor = html.unescape(link).partition("#")
        place = os.path.normpath(os.path.join(os.path.dirname(name), target)) if target else name
        assert place in pages or os.path.isfile(os.path.join(site, place)), (name, link)
        if anchor and place in pages:
            assert anchor in set(re.findall(r'id="?([\w-]+)', pages[place])), (name, link)
shown = json.loads(subprocess.run([norvane, "list", "--json"], capture_output=True, check=True).stdout)
search = (Path(site) / "search.js").read_text(encoding="utf-8")
entries = json.loads(search.split("const pages = ", 1)[1].split(";\n", 1)[0])
assert {f"functions/{r['id']}.html" for r in shown} <= {e["u"] for e in entries} <= set(pages)

tried = 0
with tempfile.TemporaryDirectory() as folder:
    for record in shown[::7]:
        page = pages[f"functions/{record['id']}.html"]
        source = re.search(r"<summary>Copy as C</summary><pre><code>(.*?)</code>", page, re.S)
        if source is None:
            continue
        path = os.path.join(folder, "example")
        Path(path + ".c").write_text(html.unescape(source[1]))
        subprocess.run(["cc", "-Wall", "-Werror", "-o", path, path + ".c", "-I", include, "-L", library, "-lnorvane"], check=True)
        status, first = subprocess.run([path], env=dict(os.environ, LD_LIBRARY_PATH=library), check=True, text=True,
                                       capture_output=True).stdout.split()
        values = re.findall(r"<td class=number>([^<]*)</td><td class=number>", page)
        assert float(status) == float(values[0]) and abs(float(first) - float(values[1])) <= 1e-13 * abs(float(first)), record["id"]
        tried += 1
assert tried > 8
print(f"{len(pages)} pages, {tried} examples in C")
