#!/usr/bin/env bash
# What the command line does in its own way on Windows: wide arguments, bytes on the streams, files put in place.
# usage: windows_test.sh NORVANE.EXE WINE_RUN.SH WINE_PREFIX
set -u
program=$1
run=("$2" "$3" "$program")
shell=("$2" "$3" cmd /c)  # the runner gives its program no standard input; the system's shell does
windows_path=Z:${program//\//\\}
export LC_ALL=C.UTF-8  # Wine takes arguments and names in the locale's characters
work=$(mktemp -d) || exit 2
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 2
failures=0

# check NAME EXPECTED COMMAND...: the first lines of its output, byte for byte
check() {
  local name=$1 expected=$2 got
  shift 2
  got=$("$@" 2>err)
  if [ "$got" != "$expected" ]; then
    printf 'FAILED: %s\n  expected %q\n  got      %q\n' "$name" "$expected" "$got"
    failures=$((failures + 1))
  fi
}

answer='{"function":"BitTest","ok":true,"status":0,"flags":0,"flag_names":[],"outputs":{"Test":1},"messages":[],"defaulted":[]}'
check 'units beyond ASCII as arguments' '212 °F' "${run[@]}" convert 100 °C °F
check 'call' "$answer" "${run[@]}" call BitTest number=5 bit=2 --json
printf '{"function":"BitTest","inputs":{"number":5,"bit":2}}\r\nwrong\n' >lines
eval_lines() { "${shell[@]}" "$windows_path eval <lines" | head -1; }
check 'eval writes line feeds' "$answer" eval_lines
printf 'number,bit\r\n5,2\r\n5,1\r\n' >Größe.csv
printf 'old' >answers.csv
batch_rows() { "${run[@]}" batch BitTest --in Größe.csv --out answers.csv; cat answers.csv; ls | grep part; }
check 'batch replaces a file' $'2 rows: all good\nnumber,bit,Test,messages\r\n5,2,1,\r\n5,1,0,\r' batch_rows
version_platform() { "${run[@]}" --version | tail -1; }
check 'platform' 'platform Windows x86-64' version_platform
wrong_use() { "${run[@]}" call NoSuchFunction >/dev/null; echo $?; }
check 'exit code of wrong use' 2 wrong_use
[ "$failures" -eq 0 ] && printf 'all good\n'
exit $((failures > 0))
