#!/usr/bin/env bash
# What tshark, unconfigured, makes of a capture: capture_test.sh ORVANE TSHARK
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
"$1" apdu --simulate --record session 00A40000021001 00B2010C00 >/dev/null
"$1" trace session --pcap capture
shown() { "$2" -r capture -T fields -e "$1" "${@:3}" 2>log || { cat log >&2; exit 1; }; }
shown _ws.col.Info "$2" -e iso7816.apdu.sw1 -E 'separator=|' | diff - <(cat <<END
ATR, TA(1)=False TB(1)=True TC(1)=True TD(1)=False|
Select file|
Response APDU (to Select file)|0x61
Get response|
Response APDU (to Get response)|0x90
Read record, EF 1, record 1|
Response APDU (to Read record)|0x90
END
)
begun=$(date +%s -d "$(sed -n 's/.*"begun":"\([^"]*\)".*/\1/p' session)")
shown frame.time_epoch "$2" | awk -v begun="$begun" '$1 < begun || $1 > begun + 60 { exit 1 }'
