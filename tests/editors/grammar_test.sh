#!/usr/bin/env bash
# The grammar of card scripts against an example, and the words that it knows against the language's:
# grammar_test.sh FOLDER, where npm may install what it needs
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
grammar=$root/editors/vscode/syntaxes/orvane.tmLanguage.json
sed -n 's/.*{"@\(\w*\)", .*/\L\1/p' "$root/src/commands/builtin.cpp" | sort >"$1.commands"
for file in "$grammar" "$root/editors/vim/syntax/orvane.vim"; do
  sed -n 's/.*(?i)@\((.*)\)(?=.*/\1/p; s/^syntax match orvaneCall .@\\\((.*)\).ze.*/\1/p; s/^syntax match orvaneCall .@\(.*\)\\ze.*/\1/p' "$file" |
    tr -d '()\\' | tr '|' '\n' | sed 's/^\(.*\)h?$/\1\n\1h/' | sort -u | diff "$1.commands" - ||
    { echo "$file: other commands" >&2; exit 1; }
done
mkdir -p "$1"
cd "$1"
[ -d node_modules/vscode-tmgrammar-test ] ||
  npm install --no-audit --no-fund --silent vscode-tmgrammar-test@0.1.3 >npm.log 2>&1 ||
  { cat npm.log >&2; echo "skipped: npm does not bring vscode-tmgrammar-test" >&2; exit 77; }
npx --no-install vscode-tmgrammar-test -g "$grammar" "$root/tests/editors/grammar_test.orv"
