#!/usr/bin/env bash
# The exported functions have the shape that is written down: abi_test.sh FOLDER [write]
# FOLDER is for what it makes. "write" writes src/orvane.abi anew, for a new major version.
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "$0")/.." && pwd)
for tool in abidw abidiff gcc; do
  command -v $tool >/dev/null || { echo "skipped: there is no $tool"; exit 77; }
done
mkdir -p "$1"
cd "$1"
# A library of the header's functions with empty bodies: the real one is compiled with the same header,
# and its releases have no debug information to read.
gcc -E -P "$root/include/orvane.h" | tr '\n' ' ' | sed 's/;/;\n/g' |
  sed '/visibility("default")/s/;$/ { __builtin_trap(); }/' >orvane.c
gcc -g -shared -fPIC -Wl,-soname,liborvane.so.1 -o liborvane.so orvane.c
[ "${2:-}" != write ] || abidw --no-show-locs --no-corpus-path --no-comp-dir-path --no-elf-needed \
  --no-parameter-names --out-file "$root/src/orvane.abi" liborvane.so
abidiff "$root/src/orvane.abi" liborvane.so
