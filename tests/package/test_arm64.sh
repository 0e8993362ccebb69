#!/usr/bin/env bash
# The wheel for 64-bit ARM under an emulator, in a Python of that processor: every answer bit for bit as from the wheel
# for this one. `./test arm64` calls it, behind `./package wheels arm64`.
set -eu
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$top"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Python and what it needs from the system's own packages, unpacked side by side and not installed.
mkdir -p "$work"/{state/lists/partial,cache/archives/partial,root}
: >"$work/status"
apt=(-o APT::Architecture=arm64 -o APT::Architectures::=arm64 -o Dir::State="$work/state" -o Dir::State::status="$work/status"
  -o Dir::Cache="$work/cache" -o APT::Install-Recommends=false -o APT::Sandbox::User=root -o Debug::NoLocking=true)
apt-get "${apt[@]}" update -q >"$work/log" 2>&1 </dev/null &&
  apt-get "${apt[@]}" install -q -y --download-only python3 >>"$work/log" 2>&1 </dev/null || {
  tail -n 5 "$work/log"
  printf 'Python for 64-bit ARM could not be fetched from the package index of this system.\n'
  exit 1
}
for package in "$work"/cache/archives/*.deb; do dpkg-deb -x "$package" "$work/root"; done

newest=$(aarch64-linux-gnu-objdump -T build/arm64/libnorvane.so | grep -o 'GLIBC_2\.[0-9]*' | sort -uV | tail -1)
[ "$newest" = GLIBC_2.17 ] || { printf 'the library asks for %s\n' "$newest"; exit 1; }
python3 -m zipfile -e dist/*x86_64.whl "$work/here"
python3 -m zipfile -e dist/*aarch64.whl "$work/there"
PYTHONDONTWRITEBYTECODE=1 PYTHONPATH=$work/here python3 -S tests/package/answers.py tests/data >"$work/answers.here"
PYTHONDONTWRITEBYTECODE=1 PYTHONPATH=$work/there PYTHONHOME=$work/root/usr qemu-aarch64 -L "$work/root" \
  "$(echo "$work"/root/usr/bin/python3.*[0-9])" -S tests/package/answers.py tests/data >"$work/answers.there"
if ! cmp "$work/answers.here" "$work/answers.there"; then
  diff "$work/answers.here" "$work/answers.there" | head -5
  exit 1
fi
printf 'wheel for 64-bit ARM: %s with the same bits\n' "$(tail -1 "$work/answers.there")"
