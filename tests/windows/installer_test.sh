#!/usr/bin/env bash
# Installs, runs and uninstalls on a Windows that has nothing else of ours: installer_test.sh BUILD_FOLDER
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "$0")/../.." && pwd)
installer=$(cd "$root" && script/package windows "$1" | grep setup.exe | xargs realpath)
scratch=$(mktemp -d)
export ORVANE_WINE=$scratch/wine
trap 'WINEPREFIX=$ORVANE_WINE wineserver -k || true; rm -rf "$scratch"' EXIT
cd "$scratch"

fail() { echo "$*" >&2; exit 1; }
wine() { "$root/script/wine" "$@" | tr -d '\r'; }
user_path() { wine reg query 'HKCU\Environment' /v Path | sed -n 's/^ *Path *//p'; }
entry='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Orvane'

# A PATH longer than a text of NSIS, that ends as careless programs leave it.
wine reg add 'HKCU\Environment' /v Path /t REG_EXPAND_SZ /d "%USERPROFILE%\\bin;$(printf 'C:\\%0100d;' {1..25})" >log
before=$(user_path)
folder="$ORVANE_WINE/drive_c/Tools(1)/Orvane"

# Not half of it.
mkdir -p "$ORVANE_WINE/drive_c/Taken/orvane.dll/mine"
! "$root/script/wine" "$installer" /S '/D=C:\Taken' >log 2>&1 || fail "installed without the library"
! wine reg query "$entry" >log 2>&1 || fail "listed without the library"

for round in first again; do
  wine "$installer" /S /PATH '/D=C:\Tools(1)\Orvane' >log 2>&1 || fail "$round: $(cat log)"
  [ "$(user_path)" = "$before;C:\\Tools(1)\\Orvane" ] || fail "$round: PATH is $(user_path)"
done
wine reg query "$entry" /v DisplayVersion | grep -q ' 1\.' || fail "no version"
wine "$folder/orvane.exe" run --simulate "$folder/examples/exchange.orv" >log || fail "$(cat log)"
tail -n 1 log | grep -qx 'done  3 commands sent, 3 expectations met' || fail "$(cat log)"

# What the user has put there stays.
touch "$folder/docs/mine.txt" "$folder/dictdata.bin"
wine "$folder/uninstall.exe" /S || fail "uninstalling: exit code $?"
# A copy of it does the work and removes it at the end.
for _ in {1..100}; do [ -e "$folder/uninstall.exe" ] || break; sleep 0.2; done
[ "$(user_path)" = "$before" ] || fail "PATH is $(user_path)"
! wine reg query "$entry" >log 2>&1 || fail "still listed"
rest=$(cd "$folder" && find . -type f | sort | tr '\n' ' ')
[ "$rest" = './dictdata.bin ./docs/mine.txt ' ] || fail "left or lost: $rest"
