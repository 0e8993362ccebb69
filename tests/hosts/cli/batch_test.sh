#!/usr/bin/env bash
# norvane batch from outside: columns, rows that fail, threads, interruption, a full disk.
# usage: batch_test.sh NORVANE EXAMPLES_FOLDER
set -u
. "$(dirname "${BASH_SOURCE[0]}")/expect.sh"

# --- columns and rows
printf '\xEF\xBB\xBFpressure [psia],temperature,methane,"ethane"\r\n870,20,0.9,0.1\r\n"870",twenty,0.9,0.1\r\n\r\n870,20,0.9\r\n870,20,-1,2\r\n870,20,0.9,"0.1"' >"$work/in.csv"
input=$work/in.csv
expect 2 '5 rows, 3 failed \(2 of them could not be read\)' batch AGA8_M edition=2 --out "$work/answers.csv"
grep -q 'row 2: .*"temperature".*"twenty" is not a number' "$work/err" || fail "the summary names row 2"
[ "$(wc -l <"$work/answers.csv")" -eq 6 ] || fail "batch writes a header and a line for every row"
head -1 "$work/answers.csv" | grep -q '^pressure \[psia\],temperature,methane,ethane,status,z,mass density \[kg/m3\],.*,messages$' || fail "batch header"
[ "$(sed -n 2p "$work/answers.csv")" = "$(sed -n 6p "$work/answers.csv")" ] || fail "equal rows, equal answers"
input=/dev/null
expect 2 'no header line' batch AGA8_M
printf 'number,bit\n' >"$work/head.csv"
expect 0 '0 rows, all good' batch BitTest --in "$work/head.csv"
for header in 'number,number' 'number,bitt' 'number [bar]' 'number[3]' ',bit'; do
  printf '%s\n1,2\n' "$header" >"$work/bad.csv"
  expect 2 'column|header|no input' batch BitTest --in "$work/bad.csv"
done
printf 'composition[99999999999999999999]\n1\n' >"$work/bad.csv"
expect 2 'index is too large' batch AGA8_M --in "$work/bad.csv"
# Rows keep their order over all threads, and one thread gives the same bytes as several.
python3 -c 'print("number,bit"); [print(f"{i},{i % 31}") for i in range(50000)]' >"$work/many.csv"
expect 0 '50000 rows, all good' batch BitTest --in "$work/many.csv" --jobs 7 --out "$work/seven.csv"
expect 0 '50000 rows, all good' batch BitTest --in "$work/many.csv" --jobs 1 --out "$work/one.csv"
cmp -s "$work/seven.csv" "$work/one.csv" || fail "threads change the answers"
cut -d, -f1,2 "$work/seven.csv" | cmp -s - "$work/many.csv" || fail "rows lost their order"

# --- nothing is left half written
printf 'keep me' >"$work/kept.csv"
printf 'number,bit\n1,"2' >"$work/open.csv"
expect 2 'not closed' batch BitTest --in "$work/open.csv" --out "$work/quote.csv"
expect 2 'did you mean bit' batch BitTest bitt=3 --in "$work/many.csv" --out "$work/kept.csv"
[ "$(cat "$work/kept.csv")" = 'keep me' ] || fail "a refused batch leaves the old file alone"
expect 3 'No such file' batch BitTest --in "$work/many.csv" --out "$work/no/such/folder.csv"
expect 3 'folder' batch BitTest --in "$work/many.csv" --out "$work"
mkfifo "$work/pipe"
for signal in INT TERM; do
  # A shell's background jobs ignore SIGINT, and what is ignored stays so; python starts it as a terminal would.
  python3 - "$norvane" "$work" $signal <<'PYTHON' || fail "interrupted by SIG$signal"
import os, signal, subprocess, sys, time
norvane, work, name = sys.argv[1:]
signal.signal(signal.SIGINT, signal.default_int_handler)
run = subprocess.Popen([norvane, "batch", "BitTest", "--out", work + "/stopped.csv"], stdin=subprocess.PIPE,
                       stderr=subprocess.DEVNULL)
run.stdin.write(b"number,bit\n" + b"1,1\n" * 100000); run.stdin.flush()
for _ in range(200):
    if [f for f in os.listdir(work) if f.startswith("stopped.csv")]: break
    time.sleep(0.02)
else: sys.exit("no temporary file appeared")
run.send_signal(getattr(signal, "SIG" + name))
code = run.wait(30)
left = [f for f in os.listdir(work) if f.startswith("stopped.csv")]
sys.exit(f"exit {code}, left behind: {left}" if left or code == 0 else 0)
PYTHON
done

# --- output that cannot be written
"$norvane" batch BitTest --in "$work/many.csv" >/dev/full 2>"$work/err"
[ $? -eq 3 ] || fail "batch to a full standard output"
"$norvane" batch BitTest --in "$work/many.csv" --out /dev/full 2>"$work/err"
[ $? -eq 3 ] || fail "batch to a full device"
[ -c /dev/full ] || fail "batch replaced a device by a file"
(ulimit -f 8 && trap '' XFSZ && exec "$norvane" batch BitTest --in "$work/many.csv" --out "$work/limited.csv") 2>"$work/err"
[ $? -eq 3 ] || fail "batch to a file that may not grow"
ls "$work" | grep -q '^limited' && fail "a file that could not be completed is left"

finish
