#!/usr/bin/env bash
# The command line from outside: exit codes, texts, JSON, hostile input.
# usage: cli_test.sh NORVANE EXAMPLES_FOLDER
set -u
. "$(dirname "${BASH_SOURCE[0]}")/expect.sh"

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

# --- output that cannot be written
for arguments in 'list' 'describe AGA8_M --json' 'call BitTest number=1 bit=0' '--version' '--help'; do
  # shellcheck disable=SC2086
  "$norvane" $arguments >/dev/full 2>"$work/err"
  [ $? -eq 3 ] || fail "full standard output: norvane $arguments"
  # shellcheck disable=SC2086
  "$norvane" $arguments >&- 2>"$work/err"
  [ $? -eq 3 ] || fail "closed standard output: norvane $arguments"
done
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
expect 3 'folder|directory' doc --out "$work/row.csv/docs"

finish
