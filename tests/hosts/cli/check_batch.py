#!/usr/bin/env python3
"""batch under load: rows keep their order over threads, an interrupted run says how far it came and leaves nothing,
memory refused at any request ends the program with whole lines and no unfinished file."""
import json
import os
import signal
import subprocess
import sys
import tempfile

norvane, refuser = sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else None
os.chdir(tempfile.mkdtemp())
rows = b"number,bit\n" + b"".join(b"%d,%d\n" % (i, i % 31) for i in range(50000))


def batch(*arguments, **options):
    return subprocess.run([norvane, "batch", "BitTest", *arguments], input=rows, capture_output=True, timeout=120, **options)


one, seven = batch("--jobs", "1"), batch("--jobs", "7")
assert one.returncode == 0 and one.stderr == b"50000 rows: all good\n", one.stderr
assert one.stdout == seven.stdout, "threads change the answers"
assert b"".join(b",".join(line.split(b",")[:2]) + b"\n" for line in one.stdout.splitlines()) == \
    b"number,bit\n" + rows[11:] or one.stdout.startswith(b"number,bit,Test,messages\n")

lines = [json.dumps({"id": i, "function": "BitTest", "inputs": {"number": i, "bit": i % 31}}) for i in range(20000)]
answers = subprocess.run([norvane, "eval", "--jobs", "3"], input="\n".join(lines).encode(), capture_output=True, timeout=120)
assert [json.loads(line)["id"] for line in answers.stdout.splitlines()] == list(range(20000))

# A shell's background jobs ignore SIGINT, and what is ignored stays so; a terminal's do not.
signal.signal(signal.SIGINT, signal.default_int_handler)
for name in ("SIGINT", "SIGTERM"):
    for target in ("stopped.csv", "-"):
        run = subprocess.Popen([norvane, "batch", "BitTest", "--out", target], stdin=subprocess.PIPE,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        run.stdin.write(b"number,bit\n" + b"1,1\n" * 20000)
        run.stdin.flush()
        if target == "-":
            seen = run.stdout.readline()
        else:
            while not os.path.exists("stopped.csv.part"):
                assert run.poll() is None
            assert os.stat("stopped.csv.part").st_mode & 0o777 == 0o600, "an unfinished file is private"
        run.send_signal(getattr(signal, name))
        out, err = run.stdout.read(), run.stderr.read()
        assert run.wait(30) == -getattr(signal, name), (name, run.returncode)
        assert b"interrupted" in err and b" good" in err, err
        assert out == b"" or out.endswith(b"\n"), "an unfinished line"
        assert not [f for f in os.listdir() if f.startswith("stopped.csv")], os.listdir()

# From some request for memory on, all are refused (the first few come before the program begins).
if refuser:
    rows = rows[:2000]
    line = b'{"function":"BitTest","inputs":{"number":1,"bit":0}}\n' * 3
    for n in list(range(30, 400, 3)) + list(range(400, 12000, 131)):
        environment = {**os.environ, "LD_PRELOAD": refuser, "REFUSE_FROM": str(n)}
        run = subprocess.run([norvane, "eval"], input=line, capture_output=True, timeout=60, env=environment)
        assert run.returncode in (0, 2, 3), (n, run.returncode, run.stderr)
        assert all(json.loads(answer) for answer in run.stdout.splitlines()) and run.stdout[-1:] in (b"", b"\n"), n
        run = batch("--jobs", "4", "--out", "short.csv", env=environment)
        assert run.returncode in (0, 3), (n, run.returncode, run.stderr)
        assert [f for f in os.listdir() if f.startswith("short.csv")] == (["short.csv"] if run.returncode == 0 else []), n
        if run.returncode == 0:
            os.remove("short.csv")
