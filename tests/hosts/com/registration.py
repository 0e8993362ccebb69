#!/usr/bin/env python3
"""Registration by regsvr32 both ways, twice each, for the machine and for the user; leaves the machine registered.

usage: registration.py CLIENT MODULE -- RUN...     RUN starts a Windows program
"""
import subprocess
import sys

CLSID = "{04BBA99A-8E89-4A10-B7BE-6498EBB49239}"
LIBID = "{C473FA16-FB0F-4AA7-AF1B-8C769AE8C66E}"
IID = "{9681473B-8BD1-4A89-A3C1-8C8A3249D660}"
APPID = "{DD0B5C96-0D3B-4290-BC44-C05F438C71BB}"

client, module = sys.argv[1:3]
runner = sys.argv[4:]
failures = []


def check(what, condition, detail=""):
    if not condition:
        failures.append(what)
        print(f"not so: {what} {detail}")


def run(*arguments):
    return subprocess.run([*runner, *arguments], capture_output=True, text=True, stdin=subprocess.DEVNULL, check=False)


def regsvr32(*arguments):
    return run("regsvr32", "/s", *arguments, module).returncode


def keys(root):
    """{key: {value name: text}} of what belongs to the module below ROOT's classes."""
    found, values = {}, {}
    for line in run(client, "--keys", root).stdout.splitlines():
        if line.startswith("["):
            values = found.setdefault(line.strip("[]"), {})
        elif "=" in line:
            name, _, text = line.partition("=")
            values[name] = text
    return found


def check_registered(what, found):
    clsid = f"CLSID\\{CLSID}"
    wanted = {
        "Norvane.Functions.1": {"": "Functions Class"},
        "Norvane.Functions.1\\CLSID": {"": CLSID},
        "Norvane.Functions\\CLSID": {"": CLSID},
        "Norvane.Functions\\CurVer": {"": "Norvane.Functions.1"},
        clsid: {"": "Functions Class"},
        clsid + "\\ProgID": {"": "Norvane.Functions.1"},
        clsid + "\\VersionIndependentProgID": {"": "Norvane.Functions"},
        clsid + "\\TypeLib": {"": LIBID},
        f"AppID\\{APPID}": {"": "Norvane"},
        "AppID\\Norvane.XLL": {"AppID": APPID},
        f"Interface\\{IID}\\TypeLib": {"": LIBID, "Version": "1.0"},
        f"TypeLib\\{LIBID}\\1.0": {"": "Norvane"},
    }
    for key, values in wanted.items():
        check(f"{what}: {key}", found.get(key) == values, found.get(key))
    check(f"{what}: Programmable", clsid + "\\Programmable" in found)
    server = found.get(clsid + "\\InprocServer32", {})
    check(f"{what}: threading model", server.get("ThreadingModel") == "Free", server)
    check(f"{what}: path of the module", server.get("", "").lower().endswith("norvane.xll"), server)
    types = found.get(f"TypeLib\\{LIBID}\\1.0\\0\\win64", {})
    check(f"{what}: path of the type library", types.get("", "").lower().endswith("norvane.xll"), types)


def check_gone(what, found):
    # A key that many programs share may stay: AppID itself.
    check(f"{what}: nothing of the module is left", set(found) <= {"AppID"}, found)


def both_ways(what, root, other, install, remove):
    for time in ("once", "twice"):
        check(f"{what} registers {time}", regsvr32(*install) == 0)
        found = keys(root)
        check_registered(f"{what} {time}", found)
        if time == "once":
            first = found
        check(f"{what}: one set of keys", found == first)
    check_gone(f"{what}, elsewhere", keys(other))
    for time in ("once", "twice"):
        check(f"{what} unregisters {time}", regsvr32("/u", *remove) == 0)
        found = keys(root)
        check_gone(f"{what} unregistered {time}", found)
        check(f"{what}: the AppID root is kept", "AppID" in found)


regsvr32("/u")  # what an earlier run may have left
both_ways("for the user", "HKCU", "HKLM", ("/n", "/i:user"), ("/n", "/i:user"))
check("an unknown wish is refused", regsvr32("/n", "/i:everybody") != 0)
check_gone("refused", keys("HKLM"))
both_ways("for the machine", "HKLM", "HKCU", (), ())
check("registers again", regsvr32() == 0)
print(f"complete, {len(failures)} failures")
sys.exit(1 if failures else 0)
