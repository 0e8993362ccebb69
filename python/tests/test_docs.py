"""Every example of docs/python.md gives the answer that stands there."""
import doctest
import os
import re
import shutil
import subprocess
import sys
import warnings

import numpy as np
import pyarrow as pa
import pyarrow.parquet as pq
import pytest

import norvane

from conftest import GAS, TOP

GUIDE = TOP / "docs" / "python.md"


def blocks(language):
    return re.findall(rf"^```{language}\n(.*?)^```$", GUIDE.read_text(encoding="utf-8"), re.DOTALL | re.MULTILINE)


def console(block, folder, **environment):
    """Runs the commands of a block and compares; what is written to standard error counts as well."""
    bin_folder = folder / "bin"
    bin_folder.mkdir(exist_ok=True)
    if not (bin_folder / "python").exists():
        (bin_folder / "python").symlink_to(sys.executable)
        shutil.copytree(TOP / "examples", folder / "examples")
    for command, wanted in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.MULTILINE):
        command = re.sub(r"^python ", f"{sys.executable} ", command)
        done = subprocess.run(["bash", "-c", command], cwd=folder, capture_output=True, text=True,
                              env={**os.environ, **environment})
        assert done.returncode == 0, done.stderr
        yield wanted, done


def test_python():
    text = "\n".join(blocks("python"))
    test = doctest.DocTestParser().get_doctest(text, {}, "docs/python.md", str(GUIDE), 0)
    assert len(test.examples) > 20
    said = []
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", norvane.DefaultsWarning)
        doctest.DocTestRunner(optionflags=doctest.NORMALIZE_WHITESPACE).run(test, out=said.append)
    assert not said, "".join(said)


def test_commands(tmp_path):
    rows = 1000
    table = {"ts": np.arange(rows), "p": np.linspace(20, 80, rows), "t": np.full(rows, 15.0)}
    pq.write_table(pa.table({**table, **{n: np.full(rows, x) for n, x in GAS.items()}}), tmp_path / "hours.parquet")
    (block,) = (b for b in blocks("shell-session") if "norvane batch" in b)
    for wanted, done in console(block, tmp_path):
        assert done.stderr == wanted
    assert pq.read_schema(tmp_path / "out.parquet").names[:4] == ["ts", "p", "t", "z"]


def test_type_hints_are_whole():
    """The stub names every function with its inputs, and a type checker's parser reads it."""
    import ast
    from pathlib import Path

    stub = ast.parse((Path(norvane.__file__).parent / "__init__.pyi").read_text(encoding="utf-8"))
    found = {}
    for node in stub.body:
        if isinstance(node, ast.FunctionDef):
            found.setdefault(node.name, []).append([argument.arg for argument in node.args.kwonlyargs])
    from norvane._library import records

    for name, record in records.items():
        single, many = found[name]
        assert single == [i.name for i in record.inputs] + ["errors"] and many == single + ["threads"]
    assert (Path(norvane.__file__).parent / "py.typed").exists()


def test_help_is_the_record():
    with pytest.raises(SystemExit):
        from norvane.__main__ import main

        main(["--help"])
    assert "870 psia" in norvane.ISO5167_Orifice.__doc__ and "[mbar, 0 to 10000, default 390]" in norvane.ISO5167_Orifice.__doc__
