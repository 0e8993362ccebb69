#!/usr/bin/env bash
# The same bits from every compiler: builds the calculating part with each, and holds the hashes of 10,000 calls of every
# function against tests/data/bits.txt.
#
#   tests/differential/same_bits.sh                       all compilers below that are installed
#   tests/differential/same_bits.sh "g++ -O0" ...         these
#   CALLS=1000 WORK=/tmp/bits tests/differential/same_bits.sh
#
# A program for another machine runs under its emulator. NORVANE_KERNEL=x86-64, avx2 or avx512 chooses a vector kernel.
set -u
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=${WORK:-$(mktemp -d)}
calls=${CALLS:-10000}
compilers=("$@")
[ ${#compilers[@]} -eq 0 ] && compilers=("g++ -O0" "g++ -O2" "g++ -O3" "g++ -O3 -march=x86-64-v3" "clang++-14 -O2"
  "clang++-19 -O3" "aarch64-linux-gnu-g++ -O2 -static" "x86_64-w64-mingw32-g++-posix -O2 -static")

cd "$top" || exit 2
mapfile -t all_sources < <(ls core/*.cpp units/*.cpp framework/*.cpp framework/general/*.cpp math/*/*.cpp catalogue/*.cpp)
failed=0
for compiler in "${compilers[@]}"; do
  command -v "${compiler%% *}" >/dev/null 2>&1 || { printf '%s: not installed\n' "$compiler"; continue; }
  build=$work/${compiler//[^A-Za-z0-9]/_}
  mkdir -p "$build"
  printf '#include "core/seal.h"\nconst norvane::Seal& norvane::seal() noexcept { static constexpr Seal none{}; return none; }\n' >"$build/seal.cpp"
  flags=(-std=c++20 -ffp-contract=off -I. -DNDEBUG '-DNORVANE_VERSION="0"' -DUNICODE -DNOMINMAX)
  # The vector kernels by GCC for this processor; the others calculate without.
  kernels=
  sources=()
  case $compiler in
    g++*) sources=("${all_sources[@]}") ;;
    *)
      flags+=(-DNORVANE_NO_KERNELS)
      for source in "${all_sources[@]}"; do [[ $source == *_avx* ]] || sources+=("$source"); done
      ;;
  esac
  # A source anew only when it or a header is newer than its object.
  newest=$(ls -t core/*.h units/* framework/*.h math/*/*.h catalogue/*.h tests/support/*.h | head -1)
  for source in "${sources[@]}" "$build/seal.cpp" tests/differential/call_dump.cpp; do
    object=$build/$(printf '%s' "$source" | tr '/' '_').o
    [ "$object" -nt "$source" ] && [ "$object" -nt "$newest" ] && continue
    case $source in
      *_avx2.cpp) kernels=-mavx2 ;;
      *_avx512.cpp) kernels='-mavx512f -mavx512dq -fno-math-errno' ;;
      *) kernels= ;;
    esac
    printf '%s\0' "$compiler ${flags[*]@Q} $kernels -c ${source@Q} -o ${object@Q}"
  done | xargs -0 -r -n1 -P"$(nproc)" sh -c || { failed=1; printf '%s: does not compile\n' "$compiler"; continue; }
  # shellcheck disable=SC2086
  $compiler "$build"/*.o -o "$build/call_dump" -lpthread || { failed=1; printf '%s: does not link\n' "$compiler"; continue; }
  runner=()
  case $compiler in
    aarch64*) runner=(qemu-aarch64) ;;
    x86_64-w64*) runner=(tests/hosts/wine_run.sh "$work/wine") ;;
  esac
  program=$build/call_dump
  [ -f "$program.exe" ] && program=$program.exe
  if "${runner[@]}" "$program" --calls "$calls" --expect tests/data/bits.txt; then
    printf '%s: the same bits\n' "$compiler"
  else
    printf '%s: OTHER BITS\n' "$compiler"
    failed=1
  fi
done
exit $failed
