# Installs Debian or Ubuntu packages that are missing; sourced by ./run and ./test.
#
#   need_packages PACKAGE...   installs what is missing when it may, else names it and ends the script with 2

need_packages() {
  command -v dpkg-query >/dev/null 2>&1 || return 0 # another distribution: the build says what it lacks
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
      as_root=(sudo -n)
    else
      printf 'These packages are missing; install them and try again:\n  apt-get install %s\n' "${missing[*]}" >&2
      exit 2
    fi
  fi
  printf 'Installing %s\n' "${missing[*]}" >&2
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update -q && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null; then
    tail -n 20 "$log" >&2
    rm -f "$log"
    printf 'These packages could not be installed: %s\n' "${missing[*]}" >&2
    exit 2
  fi
  rm -f "$log"
}

# Runs a step of the build quietly; shows its output when it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1 </dev/null; then
    tail -n 80 "$log" >&2
    rm -f "$log"
    printf 'failed: %s\n' "$*" >&2
    return 1
  fi
  rm -f "$log"
}

native_packages=(cmake ninja-build g++ git libcli11-dev nlohmann-json3-dev)
windows_packages=(g++-mingw-w64-x86-64-posix mingw-w64-tools llvm lld libwine libwine-dev)
arm64_packages=(g++-aarch64-linux-gnu)
office_packages=(libreoffice-calc python3-uno libreoffice-dev libreoffice-dev-common)
