#!/usr/bin/env python3
"""The archives of ./package, from what is built: package.py deb | zip | finish.

Entries are sorted and dated by SOURCE_DATE_EPOCH, owners and modes are fixed, and nothing tells where it was built.
"""
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import time
import uuid
import zipfile
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
RELEASE, WINDOWS = TOP / "build/release", TOP / "build/windows"
STAGE, DIST = TOP / "build/package", TOP / "dist"
EPOCH = int(os.environ["SOURCE_DATE_EPOCH"])
VERSION = re.search(r"project\(Norvane VERSION (\S+)", (TOP / "CMakeLists.txt").read_text()).group(1)

# Whose code is inside the programs, and where its licence lies on the building machine.
OTHERS = {
    "CLI11 (command line)": "/usr/share/doc/libcli11-dev/copyright",
    "JSON for Modern C++ (command line)": "/usr/share/doc/nlohmann-json3-dev/copyright",
    "GCC runtime library": "/usr/share/doc/libstdc++-12-dev/copyright",
}
OTHERS_WINDOWS = {
    "GCC runtime library": "/usr/share/doc/g++-mingw-w64-x86-64-posix-runtime/copyright",
    "MinGW-w64 runtime": "/usr/share/doc/mingw-w64-x86-64-dev/copyright",
}


def run(*command, **options):
    return subprocess.run([str(part) for part in command], check=True, capture_output=True, text=True, **options).stdout


def commit():
    return run("git", "-C", TOP, "rev-parse", "HEAD").strip()


def third_party(others):
    text = "Code of others inside the programs of Norvane, with its licences.\n"
    for name, path in others.items():
        if not Path(path).exists():
            continue  # another distribution's place
        text += f"\n{'=' * 72}\n{name}\n{'=' * 72}\n\n{Path(path).read_text(encoding='utf-8')}"
    return text


def settle(folder):
    """Fixed modes and dates for everything in a folder."""
    for path in sorted(folder.rglob("*")):
        if path.is_symlink():
            os.utime(path, (EPOCH, EPOCH), follow_symlinks=False)
            continue
        executable = path.is_dir() or (path.parent.name in ("bin",) and path.suffix == "")
        path.chmod(0o755 if executable else 0o644)
        os.utime(path, (EPOCH, EPOCH))


def refuse_paths(folder):
    """Nothing that leaves the house may tell where it was built."""
    traces = [str(TOP).encode(), re.sub(r"\W", "_", str(TOP)).encode()]  # as it is, and as tools make it a symbol
    for path in folder.rglob("*"):
        if path.is_file() and not path.is_symlink() and any(trace in path.read_bytes() for trace in traces):
            sys.exit(f"package: {path.relative_to(folder)} holds the path of the building folder")


def glibc_needed(files):
    """The newest version of the C library that a symbol of the files asks for."""
    versions = {(2, 17)}
    for file in files:
        for major, minor in re.findall(r"GLIBC_(\d+)\.(\d+)", run("objdump", "-T", file)):
            versions.add((int(major), int(minor)))
    return "%d.%d" % max(versions)


def deb():
    root = STAGE / "deb"
    run("cmake", "--install", RELEASE, "--prefix", root / "usr", "--strip")
    doc = root / "usr/share/doc/norvane"
    found = sorted((root / "usr/share/doc").iterdir())
    if found != [doc]:
        found[0].rename(doc)
    for file in ("LICENSE",):
        (doc / file).unlink()
    (doc / "copyright").write_text((TOP / "LICENSE").read_text() + "\n" + third_party(OTHERS), encoding="utf-8")
    for page in (root / "usr/share/man").rglob("*.1"):
        run("gzip", "-9n", page)
    site(doc / "html")
    settle(root)
    refuse_paths(root)
    library = next((root / "usr/lib").glob("libnorvane.so.*.*"))
    size = sum(path.lstat().st_size for path in root.rglob("*") if not path.is_dir()) // 1024 + 1
    control = root / "DEBIAN"
    control.mkdir()
    (control / "control").write_text(
        f"Package: norvane\nVersion: {VERSION}\nArchitecture: {run('dpkg', '--print-architecture').strip()}\n"
        "Maintainer: The Norvane authors <norvane@localhost>\n"
        f"Installed-Size: {size}\nSection: science\nPriority: optional\n"
        f"Depends: libc6 (>= {glibc_needed([library, root / 'usr/bin/norvane'])}), libstdc++6 (>= 12), libgcc-s1\n"
        "Description: custody-transfer flow measurement calculations\n"
        " Gas equations of state, calorific values, differential-pressure meters, liquid volume\n"
        " correction and densitometers, as a command, a C library and its development files.\n")
    (control / "triggers").write_text("activate-noawait ldconfig\n")
    sums = "".join(f"{hashlib.md5(path.read_bytes()).hexdigest()}  {path.relative_to(root)}\n"
                   for path in sorted((root / "usr").rglob("*")) if path.is_file() and not path.is_symlink())
    (control / "md5sums").write_text(sums)
    settle(control)
    for path in (control, root):
        path.chmod(0o755)
        os.utime(path, (EPOCH, EPOCH))
    run("dpkg-deb", "--build", "--root-owner-group", "-Zxz", root, DIST)


def zip_folder(folder, archive):
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as out:
        for path in sorted(folder.rglob("*"), key=lambda p: p.relative_to(folder).as_posix()):
            if not path.is_file():
                continue
            entry = zipfile.ZipInfo(path.relative_to(folder).as_posix(), time.gmtime(EPOCH)[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100644 << 16
            entry.create_system = 3
            out.writestr(entry, path.read_bytes())


def windows_text(text):
    return text.replace("\r\n", "\n").replace("\n", "\r\n")


def windows_zip():
    name = f"norvane-{VERSION}-windows-x64"
    root = STAGE / "zip"
    folder = root / name

    def put(source, target):
        place = folder / target
        place.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, place)
        return place

    def put_text(text, target):
        place = folder / target
        place.parent.mkdir(parents=True, exist_ok=True)
        place.write_text(windows_text(text), encoding="utf-8", newline="")

    run("x86_64-w64-mingw32-strip", put(WINDOWS / "norvane.exe", "norvane.exe"))
    put(WINDOWS / "Norvane.XLL", "Norvane.XLL")
    put(WINDOWS / "include/norvane.h", "include/norvane.h")
    put(WINDOWS / "norvane.lib", "lib/norvane.lib")
    put(WINDOWS / "libnorvane.dll.a", "lib/libnorvane.dll.a")
    put(RELEASE / "norvane.json", "lib/norvane.json")
    for source in (RELEASE / "Norvane.bas", RELEASE / "Norvane.cs"):
        put_text(source.read_text(encoding="ascii"), source.name)
    for source in sorted((TOP / "packaging/windows").glob("*.cmd")):
        put_text(source.read_text(encoding="ascii"), "register/" + source.name)
    put_text((TOP / "packaging/windows/start.html").read_text(encoding="utf-8").replace("@VERSION@", VERSION),
             "Start here.html")
    put_text((TOP / "LICENSE").read_text(), "LICENSE.txt")
    put_text(third_party(dict(OTHERS, **OTHERS_WINDOWS)), "THIRD-PARTY.txt")
    put_text((TOP / "CHANGELOG.md").read_text(encoding="utf-8"), "CHANGELOG.md")
    for source in sorted((TOP / "examples").rglob("*")):
        if source.is_file():
            put(source, source.relative_to(TOP))
    site(folder / "docs")
    workbook(folder / "Norvane examples.xlsx")
    refuse_paths(folder)
    sums = "".join(f"{hashlib.sha256(path.read_bytes()).hexdigest()}  {path.relative_to(folder).as_posix()}\r\n"
                   for path in sorted(folder.rglob("*")) if path.is_file())
    (folder / "SHA256SUMS.txt").write_text(sums, newline="")
    zip_folder(root, DIST / f"{name}.zip")


def workbook(target, *options):
    """The example workbook; Debian's own interpreter has the library that writes it."""
    run("/usr/bin/python3", TOP / "tools/workbook.py", *options, RELEASE / "norvane", target,
        *sorted((TOP / "tests/data").glob("*.jsonl")))


def site(target):
    """The documentation as pages, in place of its sources."""
    shutil.rmtree(target, ignore_errors=True)
    run("/usr/bin/python3", TOP / "tools/site.py", RELEASE / "norvane", target, *sorted((TOP / "tests/data").glob("*.jsonl")))


def oxt():
    """The add-in for LibreOffice Calc, for this system and, when that is built, for Windows."""
    folder = STAGE / "oxt"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    generated = RELEASE / "generated/calc"
    types = sorted(Path("/usr/lib/libreoffice/program").rglob("types.rdb")) + sorted(
        Path("/usr/lib/libreoffice/program").rglob("offapi.rdb"))
    run("/usr/lib/libreoffice/sdk/bin/unoidl-write", *types, generated / "functions.idl", folder / "functions.rdb")
    for name in ("CalcAddIns.xcu", "functions.json"):
        shutil.copyfile(generated / name, folder / name)
    for name in ("norvane_addin.py", "description.txt"):
        shutil.copyfile(TOP / "hosts/calc" / name, folder / name)
    (folder / "description.xml").write_text((TOP / "hosts/calc/description.xml").read_text().replace("@VERSION@", VERSION))
    (folder / "META-INF").mkdir()
    shutil.copyfile(TOP / "hosts/calc/manifest.xml", folder / "META-INF/manifest.xml")
    (folder / "LICENSE.txt").write_text((TOP / "LICENSE").read_text() + "\n" + third_party(OTHERS), encoding="utf-8")
    (folder / "linux-x86_64").mkdir()
    run("strip", "-o", folder / "linux-x86_64/Norvane.so", RELEASE / "Norvane.so")
    if (WINDOWS / "Norvane.XLL").exists():
        (folder / "windows-x86_64").mkdir()
        shutil.copyfile(WINDOWS / "Norvane.XLL", folder / "windows-x86_64/Norvane.XLL")
    refuse_paths(folder)
    zip_folder(folder, DIST / "Norvane.oxt")
    workbook(DIST / "Norvane examples for Calc.xlsx", "--calc")


def spdx_package(path, identifier, relations):
    digest = lambda kind, data: {"algorithm": kind, "checksumValue": hashlib.new(kind.lower(), data).hexdigest()}
    data = path.read_bytes()
    package = {
        "SPDXID": f"SPDXRef-{identifier}", "name": path.name, "versionInfo": VERSION, "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False, "licenseConcluded": "MIT", "licenseDeclared": "MIT", "copyrightText":
        "Copyright (c) The Norvane authors", "checksums": [digest("SHA256", data)], "supplier": "Organization: Norvane"}
    files = []
    if zipfile.is_zipfile(path):
        with zipfile.ZipFile(path) as archive:
            files = [(info.filename, archive.read(info)) for info in archive.infolist() if not info.is_dir()]
    elif path.suffix == ".deb":
        root = STAGE / "deb"
        files = [(p.relative_to(root).as_posix(), p.read_bytes()) for p in sorted((root / "usr").rglob("*"))
                 if p.is_file() and not p.is_symlink()]
    entries = []
    for number, (name, content) in enumerate(files):
        entry = f"SPDXRef-{identifier}-file-{number}"
        entries.append({"SPDXID": entry, "fileName": "./" + name, "licenseConcluded": "NOASSERTION",
                        "copyrightText": "NOASSERTION",
                        "checksums": [digest("SHA1", content), digest("SHA256", content)]})
        relations.append({"spdxElementId": package["SPDXID"], "relationshipType": "CONTAINS",
                          "relatedSpdxElement": entry})
    return package, entries


INCLUDED = {"CLI11": "BSD-3-Clause", "nlohmann-json": "MIT", "libstdc++": "GPL-3.0-or-later WITH GCC-exception-3.1"}


def release_notes():
    """What the changelog says of this version, numeric changes first as there, below the identity of what calculates."""
    changes = (TOP / "CHANGELOG.md").read_text(encoding="utf-8")
    found = re.search(rf"^## {re.escape(VERSION)}\b.*?\n(.*?)(?=^## |\Z)", changes, re.M | re.S)
    if found is None:
        sys.exit(f"CHANGELOG.md has no section {VERSION}")
    identity = run(RELEASE / "norvane", "--version").strip()
    return f"# Norvane {VERSION}\n\nThe calculation names itself in every host and report:\n\n```\n{identity}\n```\n\n{found[1].strip()}\n"


def finish():
    """The list of contents (SPDX 2.3) and the checksums of everything in dist."""
    relations, packages, files = [], [], []
    for number, path in enumerate(sorted(DIST.iterdir())):
        package, entries = spdx_package(path, f"package-{number}", relations)
        packages.append(package)
        files += entries
        relations.append({"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
                          "relatedSpdxElement": package["SPDXID"]})
    built = len(packages)
    for name, licence in INCLUDED.items():
        identifier = "SPDXRef-included-" + re.sub("[^A-Za-z0-9.-]", "", name)
        packages.append({"SPDXID": identifier, "name": name, "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
                         "licenseConcluded": licence, "licenseDeclared": licence, "copyrightText": "NOASSERTION"})
        for package in packages[:built]:
            if package["name"].endswith(".xlsx") or (name != "libstdc++" and not package["name"].endswith((".deb", ".zip"))):
                continue  # the command alone holds what reads its arguments and JSON
            relations.append({"spdxElementId": package["SPDXID"], "relationshipType": "DEPENDS_ON",
                              "relatedSpdxElement": identifier})
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": f"norvane-{VERSION}",
        "documentNamespace": uuid.uuid5(uuid.NAMESPACE_OID, f"norvane {VERSION} {commit()}").urn,
        "creationInfo": {"created": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(EPOCH)),
                         "creators": ["Organization: Norvane", f"Tool: norvane-package-{VERSION}"],
                         "comment": f"commit {commit()}"},
        "packages": packages, "files": files, "relationships": relations}
    (DIST / f"norvane-{VERSION}.spdx.json").write_text(json.dumps(document, indent=1) + "\n")
    (DIST / f"norvane-{VERSION}-notes.md").write_text(release_notes(), encoding="utf-8")
    sums = "".join(f"{hashlib.sha256(path.read_bytes()).hexdigest()}  {path.name}\n" for path in sorted(DIST.iterdir()))
    (DIST / "SHA256SUMS").write_text(sums)
    print(sums, end="")


{"deb": deb, "zip": windows_zip, "oxt": oxt, "finish": finish}[sys.argv[1]]()
