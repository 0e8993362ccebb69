# Sourced by the tests: $norvane and $examples from the arguments, a folder $work for the test, and `expect`.
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

finish() {
  [ "$failures" -eq 0 ] && printf 'all good\n'
  exit $((failures > 0))
}
