#!/usr/bin/env bash
# No binary, built or installed, looks for libraries in the current folder: run_paths_test.sh FOLDER
# The program of the parent project that a test makes is not ours.
set -euo pipefail
{ find "$1" -type f ! -path '*/subproject/parent' \( -name '*.so*' -o -perm -u+x \) -exec readelf -dW {} + 2>/dev/null || true; } | awk '
  /^File: / { file = substr($0, 7) }
  /\((RUNPATH|RPATH)\)/ {
    gsub(/.*\[|\]$/, "")
    ++paths
    count = split($0, folders, ":")
    bad = count == 0
    for (i = 1; i <= count; ++i) bad += folders[i] !~ /^(\/|\$ORIGIN)/
    if (bad) { print file " has the run path [" $0 "]"; failed = 1 }
  }
  END { print paths + 0 " run paths"; exit failed || paths < 2 }'
