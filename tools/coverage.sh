#!/usr/bin/env bash
# Line and branch coverage of the calculating part by the native tests: builds the preset "coverage", runs the tests and
# prints a table a file. Branches that only an exception takes are not counted.
set -u
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd) || exit 2
cd "$top" || exit 2
. tools/packages.sh
need_packages "${native_packages[@]}" libgtest-dev gcovr
quietly cmake --preset coverage || exit 2
quietly cmake --build build/coverage -j "$(nproc)" --target norvane_tests norvane_command || exit 2
find build/coverage -name '*.gcda' -delete
quietly build/coverage/tests/norvane_tests --gtest_brief=1 || exit 1
quietly build/coverage/norvane check || exit 1
for folder in math units framework core; do
  printf '\n== %s\n' "$folder"
  gcovr --root . --object-directory build/coverage --filter "$folder/" --branches --exclude-throw-branches \
    --exclude-unreachable-branches -s 2>/dev/null | sed -n '6,$p'
done
