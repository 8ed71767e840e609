#!/usr/bin/env bash
# The manual page and the completions as they are installed: pages_test.sh PREFIX
set -euo pipefail
prefix=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$*" >&2; exit 1; }

"$prefix/bin/orvane" --help | sed -n '/^Subcommands/,/^$/s/^  \([a-z]\+\) .*/\1/p' | sort >"$work/commands"
[ "$(wc -l <"$work/commands")" -ge 10 ] || fail "few subcommands: $(cat "$work/commands")"
for command in '' $(cat "$work/commands") 'tags add'; do
  # A path can't be broken.
  long=$("$prefix/bin/orvane" $command --help | grep -v '^  orvane run ' | grep -E '^.{80}' || true)
  [ -z "$long" ] || fail "orvane $command --help is too wide: $long"
done

warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$prefix/share/man/man1/orvane.1" 2>&1 >"$work/page")
[ -z "$warnings" ] || fail "$warnings"
! command -v mandoc >/dev/null || mandoc -Tlint -W error "$prefix/share/man/man1/orvane.1"
while read -r command; do grep -q "^ *orvane $command$" "$work/page" || fail "man: no $command"; done <"$work/commands"
grep -q '^ *-D NAME=VALUE$' "$work/page" || fail "man: no -D"

cat >"$work/complete.bash" <<'END'
source "$1"
try() { COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orvane; printf '%s\n' "${COMPREPLY[@]}"; }
try orvane '' | grep -v ^- | sort >"$2"
[ "$(try orvane run --colo)" = --color ] && [ "$(try orvane check --format j)" = json ] &&
  [ "$(try orvane tags fi)" = find ] && [ "$(try orvane decode tv)" = tvr ]
END
bash --norc "$work/complete.bash" "$prefix/share/bash-completion/completions/orvane" "$work/bash" || fail "bash: another completion"
diff "$work/commands" "$work/bash" || fail "bash: other subcommands"

# A person at zsh's prompt, who presses Tab twice.
cat >"$work/complete.zsh" <<'END'
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PS1=; fpath=($1 \$fpath); autoload -U compinit; compinit -u -D; TERM=dumb; LISTMAX=1000; echo rea''dy"
zpty -r shell seen '*ready*'
zpty -w -n shell "$2"$'\t\t'
# What it shows comes in parts, and late where the machine is busy.
rest=
repeat 100; do
  while zpty -r -t shell part; do rest+=$part; done
  [[ $rest = *$3* ]] && break
  sleep 0.2
done
print -r -- "$rest"
END
zsh -f "$work/complete.zsh" "$prefix/share/zsh/site-functions" 'orvane ' 'trace *--' >"$work/zsh"
while read -r command; do grep -q "^ *$command *--" "$work/zsh" || fail "zsh: no $command in $(cat "$work/zsh")"; done <"$work/commands"
zsh -f "$work/complete.zsh" "$prefix/share/zsh/site-functions" 'orvane check --f' format | grep -q format || fail "zsh: no --format"
