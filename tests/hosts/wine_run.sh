#!/usr/bin/env bash
# Runs a Windows program under Wine without a display, in a prefix of its own.
#   wine_run.sh PREFIX PROGRAM [ARGUMENT...]   makes the prefix when it is missing; returns the program's exit code
#   wine_run.sh PREFIX --prepare               only makes the prefix
#   wine_run.sh PREFIX --pipes PROGRAM...      with the streams as they are, for a program that takes no files for them
#   wine_run.sh PREFIX --stop                  ends the prefix's server
# Output goes through a file: Wine's background processes keep a pipe open and its reader waiting.
set -u
[ $# -ge 2 ] || { sed -n '2,6s/^# //p' "$0" >&2; exit 2; }
mkdir -p "$1" || exit 2
prefix=$(cd "$1" && pwd)
shift

export WINEPREFIX=$prefix WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=;winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY

find_program() { # first of the given commands and files that exists
  local candidate
  for candidate in "$@"; do
    candidate=$(command -v "$candidate" 2>/dev/null) && { printf '%s\n' "$candidate"; return 0; }
  done
  return 1
}
wine=$(find_program wine64 wine /usr/lib/wine/wine64) || { echo "wine is not installed" >&2; exit 2; }
server=$(find_program wineserver /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver) || server=
export WINESERVER=$server

if [ "$1" = --stop ]; then
  [ -n "$server" ] && "$server" -k >/dev/null 2>&1 </dev/null
  exit 0
fi

# Programs that start at once must not make the prefix twice.
exec 9>"$prefix.lock"
flock 9
if [ ! -f "$prefix/.prepared" ]; then
  log=$(mktemp "$prefix.log.XXXXXX")
  if timeout 300 "$wine" wineboot -i >"$log" 2>&1 </dev/null 9>&- && [ -d "$prefix/drive_c/windows/system32" ]; then
    : >"$prefix/.prepared"
  else
    cat "$log" >&2
    rm -f "$log"
    echo "the Wine prefix could not be made" >&2
    exit 2
  fi
  rm -f "$log"
fi
flock -u 9
[ "$1" = --prepare ] && exit 0
[ "$1" = --pipes ] && { shift; exec "$wine" "$@" 9>&-; }

output=$(mktemp "$prefix.out.XXXXXX")
trap 'rm -f "$output"' EXIT
"$wine" "$@" >"$output" 2>&1 </dev/null 9>&-
code=$?
cat "$output"
exit $code
