"""The wheel: the same bytes from the same commit, and a library that loads on Linux since 2014."""
import hashlib
import re
import subprocess
import sys
import zipfile

import pytest

from conftest import TOP

BUILD = TOP / "build" / "release"


def made(folder, *arguments):
    done = subprocess.run([sys.executable, TOP / "python" / "build_wheel", "--out", folder, *arguments],
                          capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return TOP / done.stdout.strip()


@pytest.fixture(scope="module")
def wheel(tmp_path_factory):
    return made(tmp_path_factory.mktemp("one"))


def test_the_same_bytes(wheel, tmp_path):
    assert hashlib.sha256(made(tmp_path).read_bytes()).digest() == hashlib.sha256(wheel.read_bytes()).digest()
    with zipfile.ZipFile(wheel) as archive:
        names = archive.namelist()
        record = archive.read(next(n for n in names if n.endswith("RECORD"))).decode()
    assert {line.split(",")[0] for line in record.splitlines()} == set(names)
    assert {"norvane/libnorvane.so", "norvane/norvane.json", "norvane/__init__.pyi", "norvane/py.typed"} <= set(names)


def test_old_systems_can_load_it(wheel):
    pytest.importorskip("auditwheel")
    shown = subprocess.run([sys.executable, "-m", "auditwheel", "show", wheel], capture_output=True, text=True)
    assert shown.returncode == 0 and 'platform tag: "manylinux_2_17_x86_64"' in " ".join(shown.stdout.split())


def test_what_is_missing_is_told(tmp_path):
    done = subprocess.run([sys.executable, TOP / "python" / "build_wheel", "--build", tmp_path], capture_output=True, text=True)
    assert done.returncode != 0 and "build it first" in done.stderr


def test_the_package_needs_nothing_but_python(wheel, tmp_path):
    with zipfile.ZipFile(wheel) as archive:
        archive.extractall(tmp_path)
        metadata = archive.read(next(n for n in archive.namelist() if n.endswith("METADATA"))).decode()
    assert not re.search(r"^Requires-Dist: [^;]*$", metadata, re.MULTILINE)
    code = ("import norvane; print(norvane.AGA8_M(pressure=60, composition={'methane': 1}).status,"
            "norvane.__file__.startswith(" + repr(str(tmp_path)) + "))")
    done = subprocess.run([sys.executable, "-S", "-c", code], capture_output=True, text=True, cwd=tmp_path,
                          env={"PYTHONPATH": str(tmp_path)})
    assert done.stdout.split() == ["0", "True"], done.stderr
