#!/usr/bin/env bash
# orvane.lib is what Microsoft's linker takes: import_library_test.sh BUILD_FOLDER
# A short import object a function, and three objects that make the table of the DLL's imports. LLVM's
# linker, which reads what Microsoft's does, links a program with it.
set -euo pipefail
unset CDPATH
build=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
lib=$build/orvane.lib
folder=$build/tests/import_library
mkdir -p "$folder"
fail() { echo "$*" >&2; exit 1; }

[ "$(llvm-ar t "$lib" | sort -u)" = orvane.dll ] || fail "members: $(llvm-ar t "$lib")"
functions=$(sed -n 's/^  //p' "$root/src/orvane.def" | sort)
facts=$(llvm-readobj "$lib")
[ "$(grep -c 'Format: COFF-import-file' <<<"$facts")" = "$(wc -l <<<"$functions")" ] || fail "$facts"
! grep 'Type:' <<<"$facts" | grep -v 'Type: code' || fail "not all are functions"
! grep 'Name type:' <<<"$facts" | grep -v 'Name type: name' || fail "not all come by their names"
diff <(sed -n 's/^Symbol: //p' <<<"$facts" | sort) <(sort <<<"$functions"$'\n'"$(sed 's/^/__imp_/' <<<"$functions")") ||
  fail "other symbols"
diff <(llvm-nm "$lib" 2>/dev/null | sed -n 's/.* [A-Z] \(.*\(DESCRIPTOR\|THUNK\).*\)/\1/p' | tr -d '\177' | sort -u) \
  <(printf '%s\n' __IMPORT_DESCRIPTOR_orvane __NULL_IMPORT_DESCRIPTOR orvane_NULL_THUNK_DATA) || fail "no table of imports"

cat >"$folder/program.c" <<'C'
#include <orvane.h>
int start(void) {
  char text[512];
  return RunScript("12 34", text) == KindExpression && text[3] == '4' ? 0 : 1;
}
C
x86_64-w64-mingw32-gcc -c -O1 -fno-stack-protector -I"$root/include" -o "$folder/program.o" "$folder/program.c"
lld-link -nologo -subsystem:console -entry:start -nodefaultlib "-out:$build/linked_by_lld.exe" "$folder/program.o" "$lib"
"$root/script/wine" "$build/linked_by_lld.exe" || fail "the program's exit code is $?"
