#!/usr/bin/env bash
# The command line from outside: exit codes, texts, JSON, hostile input.
# usage: cli_test.sh NORVANE EXAMPLES_FOLDER
set -u
norvane=$1
examples=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d) || exit 2
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  printf 'FAILED: %s\n' "$*"
  [ -s "$work/out" ] && { printf '  stdout: '; head -c 600 "$work/out"; printf '\n'; }
  [ -s "$work/err" ] && { printf '  stderr: '; head -c 600 "$work/err"; printf '\n'; }
  failures=$((failures + 1))
}

# expect CODE PATTERN ARGUMENT...: exit code, and a pattern somewhere in both outputs (standard input from $input)
input=/dev/null
expect() {
  local code=$1 pattern=$2 got
  shift 2
  timeout 60 "$norvane" "$@" <"$input" >"$work/out" 2>"$work/err"
  got=$?
  [ "$got" -eq "$code" ] || fail "exit code $got instead of $code: norvane $*"
  cat "$work/out" "$work/err" | grep -qE -- "$pattern" || fail "no /$pattern/ from: norvane $*"
}

gas="composition=@$examples/gas.csv"

# --- commands and their exit codes
expect 0 'norvane [0-9]+\.[0-9]+' --version
expect 0 '^commit (unknown|[0-9a-f]+\+?)$' --version
expect 0 'Exit codes' --help
for command in list describe call eval convert doc batch; do expect 0 "norvane $command" "$command" --help; done
expect 2 'did you mean call' cal
expect 2 'subcommand is required'
expect 2 'not expected' list --no-such-option

# --- list and describe
expect 0 '^AGA8_M +AGA +AGA-8$' list
expect 0 '^AGA8_M ' list --category aga --keyword METRIC
expect 2 'did you mean.* liquid' list --keyword liquit
expect 2 'there are .*ISO' list --category nonsense
expect 0 'pressure +bar\(a\) +- +1\.01325' describe aga8_m
expect 2 'did you mean AGA8_M' describe AGA8M
python3 "$here/check_records.py" "$norvane" >"$work/out" 2>"$work/err" || fail "records as JSON"

# --- call
expect 0 '^  z +0\.88507801' call AGA8_M pressure=60 temperature=20 "$gas"
expect 0 '"mass density":46\.710191' call AGA8_M pressure=870psia temperature='68 degF' "$gas" --json
expect 0 '"z":0\.88507801' call nvaga8_m PRESSURE=60 Temperature=20 "$gas" neo_c5-MODE=addtoic5 --json
expect 2 'temperature.*absolute pressure' call AGA8_M 'pressure=60 degC'
expect 2 '"furlong" is no unit' call AGA8_M 'pressure=60 furlong'
expect 2 '"edition".*has no unit' call AGA8_M 'edition=1 bar'
expect 2 '"abc" is not a number' call AGA8_M pressure=abc
expect 2 'did you mean pressure' call AGA8_M preshure=1
expect 2 'given twice' call AGA8_M pressure=1 PRESSURE=2
expect 2 'key=value' call AGA8_M pressure
expect 2 'cannot open /no/such/file' call AGA8_M composition=@/no/such/file
expect 2 'one value, not a range' call AGA8_M 'pressure=[1,2]'
expect 1 'argument error' call AGA8_M edition=9 "$gas"
expect 1 'warning: .2. bit .32. should be lower or equal than: 31' call BitTest number=1 bit=32
expect 0 '"Num":7\b' call Bits2Num 'bits=[[1,0,1]]' --json
expect 0 '"Num":1\b' call Bits2Num 'bits=[1,0,1]' --json
printf '1,"0",1\r\n' >"$work/row.csv"
expect 0 '"Num":7\b' call Bits2Num "bits=@$work/row.csv" --json
printf '1,2\n3\n' >"$work/ragged.csv"
expect 2 'row 2: 1 values where the first row has 2' call Bits2Num "bits=@$work/ragged.csv"
expect 2 'no value' call Bits2Num bits=@/dev/null
expect 0 '^  Num +00255' call Num2Num 'input value=FF' input_value_base=16 output-value-base=10 mini_output_length=5
expect 0 'nvBits2Num' call FunctionList category=general

# --- convert
expect 0 '^212 °F$' convert 100 degC degF
expect 0 '"value":-39\.99' convert -40 degC °F --json
expect 2 'absolute pressure.*gauge pressure' convert 1 psia bar_g
expect 2 'is no unit; did you mean degC' convert 1 degX degF
expect 2 'is not a number' convert one degC degF

# --- eval: one answer a line, in order, whatever the line is
python3 "$here/check_eval.py" "$norvane" >"$work/out" 2>"$work/err" || fail "eval"

# --- batch
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
for arguments in 'list' 'describe AGA8_M --json' 'call BitTest number=1 bit=0' '--version' '--help'; do
  # shellcheck disable=SC2086
  "$norvane" $arguments >/dev/full 2>"$work/err"
  [ $? -eq 3 ] || fail "full standard output: norvane $arguments"
  # shellcheck disable=SC2086
  "$norvane" $arguments >&- 2>"$work/err"
  [ $? -eq 3 ] || fail "closed standard output: norvane $arguments"
done
"$norvane" batch BitTest --in "$work/many.csv" >/dev/full 2>"$work/err"
[ $? -eq 3 ] || fail "batch to a full standard output"
"$norvane" batch BitTest --in "$work/many.csv" --out /dev/full 2>"$work/err"
[ $? -eq 3 ] || fail "batch to a full device"
[ -c /dev/full ] || fail "batch replaced a device by a file"
(ulimit -f 8 && trap '' XFSZ && exec "$norvane" batch BitTest --in "$work/many.csv" --out "$work/limited.csv") 2>"$work/err"
[ $? -eq 3 ] || fail "batch to a file that may not grow"
ls "$work" | grep -q '^limited' && fail "a file that could not be completed is left"
"$norvane" eval <&- >"$work/out" 2>"$work/err"
[ $? -eq 3 ] || fail "eval from a closed standard input"
yes '{"function":"BitTest","inputs":{"number":1,"bit":0}}' | head -100000 | "$norvane" eval 2>"$work/err" | head -1 >"$work/out"
[ "${PIPESTATUS[2]}" -eq 3 ] || fail "eval into a pipe that closed"

# --- doc
expect 0 'pages' doc --out "$work/docs/functions"
grep -q 'bar(a)' "$work/docs/functions/AGA8_M.md" || fail "a page names units"
for link in $(grep -oE '\]\([A-Za-z0-9_]+\.md\)' "$work/docs/functions/README.md" | tr -d '])(' | sort -u); do
  [ -s "$work/docs/functions/$link" ] || fail "the index points to $link, which is not there"
done
ls "$work/docs/functions" | grep -q part && fail "doc left temporary files"
expect 3 'folder|directory' doc --out "$work/in.csv/docs"

[ "$failures" -eq 0 ] && printf 'all good\n'
[ "$failures" -eq 0 ]
