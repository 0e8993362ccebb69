#!/usr/bin/env bash
# The reference in docs/functions must be what the records say today.
#   docs_test.sh NORVANE DOCS
set -eu
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
"$1" doc --out "$made"
diff -r "$made" "$2" || { echo "out of date: norvane doc --out docs/functions" >&2; exit 1; }
