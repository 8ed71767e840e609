#!/usr/bin/env bash
# The package in an empty folder runs the examples: package_test.sh BUILD_FOLDER
set -euo pipefail
unset CDPATH
build=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
zip=$(cd "$root" && realpath "$(script/package windows "$build")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unzip -q "$zip" -d "$folder"
cd "$folder"/orvane-*-win64

fail() { echo "$*" >&2; exit 1; }

for file in orvane.dll orvane_crypto.dll orvane.exe orvane.lib liborvane.dll.a README.md docs/windows.md \
  include/orvane.h include/orvane/crypto_provider.h licences/{libgcrypt,libgpg-error}.txt \
  examples/{python/exchange.py,node/exchange.js,csharp/Orvane.cs} simulators/wd/wdcrwx.dll \
  simulators/{winscard,dcrf32,S5009,tyreader,tykeyint,STJZZ_BSIT,sdtapi}.dll; do
  [ -s "$file" ] || fail "the package lacks $file"
done

# Nothing but the library itself and what every Windows has is asked for; only C names are offered;
# no code runs from the stack or at an address that is known before.
for module in *.dll *.exe simulators/*.dll simulators/wd/*.dll; do
  tables=$(x86_64-w64-mingw32-objdump -p "$module")
  strangers=$(grep 'DLL Name' <<<"$tables" |
    grep -v -i -x -E '\s*DLL Name: (kernel32|msvcrt|ws2_32|advapi32|user32|orvane)\.dll' || true)
  for fact in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
    grep -q "$fact" <<<"$tables" || fail "$module lacks $fact"
  done
  [ -z "$strangers" ] || fail "$module needs $strangers"
  ! sed -n '/Name Pointer\] Table/,/^$/p' <<<"$tables" | grep -E '\].* (_Z|[^ ]*@)' || fail "$module exports these"
done

# A host built with the CMake package.
cmake -S examples/c -B "$folder/host" -G Ninja -D CMAKE_TOOLCHAIN_FILE="$root/script/mingw-w64.cmake" \
  -D CMAKE_BUILD_TYPE=Release -D CMAKE_PREFIX_PATH="$PWD" >out 2>&1 || fail "$(cat out)"
cmake --build "$folder/host" >out || fail "$(cat out)"
cp "$folder/host/exchange.exe" .
"$root/script/wine" exchange.exe examples/exchange.orv | tr -d '\r' | diff "$root/tests/install/exchange.txt" - ||
  fail "the host in C: another output"

run() { "$root/script/wine" orvane.exe "$@"; }

for example in examples/*.orv; do
  run run --simulate "$example" >out || fail "$example: exit code $?: $(cat out)"
  tail -n 1 out | grep -q '^done ' || fail "$example: no closing line: $(tail -n 1 out)"
done
run tags import examples/tags.txt >/dev/null || fail "tags import: exit code $?"
[ -s dictdata.bin ] || fail "tags import wrote nothing"

# WD's simulator counts where the vendor's library would stand.
status=0
run run --simulate -r 4:WDUSB1 examples/payment.orv >/dev/null 2>&1 || status=$?
[ "$status" = 4 ] || fail "a WD reader without its library: exit code $status"
cp simulators/wd/wdcrwx.dll .
run run --simulate -r 4:WDUSB1 examples/payment.orv >/dev/null || fail "the WD simulator: exit code $?"
