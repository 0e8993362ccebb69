#!/usr/bin/env python3
"""batch under load: rows keep their order over threads, an interrupted run says how far it came and leaves nothing, as
does one whose disk is full or whose reader goes away; memory refused at any request ends the program with whole lines
and no unfinished file."""
import json
import os
import resource
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

# Killed: nothing under the name, and the next run replaces what it finds beside it.
run = subprocess.Popen([norvane, "batch", "BitTest", "--out", "killed.csv"], stdin=subprocess.PIPE)
run.stdin.write(b"number,bit\n" + b"1,1\n" * 20000)
while not os.path.exists("killed.csv.part"):
    assert run.poll() is None
run.kill()
run.wait(30)
assert [f for f in os.listdir() if f.startswith("killed")] == ["killed.csv.part"], os.listdir()
assert batch("--out", "killed.csv").returncode == 0
assert [f for f in os.listdir() if f.startswith("killed")] == ["killed.csv"], os.listdir()

# A reader that goes away is a failed output.
run = subprocess.Popen([norvane, "batch", "BitTest"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
run.stdout.close()
try:
    run.stdin.write(rows * 3)
    run.stdin.close()
except BrokenPipeError:
    pass
assert b"cannot write standard output" in run.stderr.read() and run.wait(30) == 3, run.returncode


def full_disk():  # a limit on the size of files stands in for it
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (1024, 1024))


for arguments in (["batch", "BitTest", "--out", "full"], ["report", "BitTest", "number=5", "bit=2", "--out", "full.html"],
                  ["check", "--html", "full.html"], ["doc", "--traceability", "full.md"]):
    run = subprocess.run([norvane, *arguments], input=rows, capture_output=True, timeout=120, preexec_fn=full_disk,
                         restore_signals=False)
    assert run.returncode == 3 and b"cannot write full" in run.stderr, (arguments, run.returncode, run.stderr)
    assert not [f for f in os.listdir() if f.startswith("full")], os.listdir()

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
