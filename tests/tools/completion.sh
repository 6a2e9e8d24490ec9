#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What the completions of bash and zsh offer: completion.sh NXTICK SHELL
# completions.txt has WORDS|OFFERED, the words with the one at the cursor last, and what is offered, separated by ';'.
set -u
. "$(dirname "$0")/cases.sh"
shell=$2 tools=$cases/../../tools/nxtick
export PATH=${nxtick%/*}:$PATH tools
command -v "$shell" >/dev/null || { echo "skipped: there is no $shell"; exit 77; }

cp "$cases/own.csv" "$cases"/today*.csv .
printf '\xEF\xBB\xBFDate,"Bid ""A"", last", Ask \r\n1,2,3\r\n' >quotes.csv
printf 'Date\tBid,Ask' >tabs.csv
cat >run.bash <<'END'
. "$tools/completions/nxtick"
COMP_WORDS=(nxtick "$@") COMP_CWORD=$#
_nxtick
eval "printf '%s\n' ${COMPREPLY[*]}"
END
cat >run.zsh <<'END'
# zsh's own functions offer what begins as the word at the cursor does.
offer() { for word; do [[ $word == ${(b)words[CURRENT]}* ]] && print -r -- $word; done }
compadd() { [[ $1 == -a ]] && offer ${(P)2} || offer $@ }
_describe() { offer ${${(P)2}%%:*} }
_files() { offer *(N) }
_message() { : }
words=(nxtick "$@") CURRENT=$#words
. $tools/completions/_nxtick
END
while IFS="|" read -r line offered; do
    case="$shell: $line"
    eval "set -- $line"
    same "offered" "$offered" "$("$shell" "run.$shell" "$@" 2>&1 | sed '/^run\|^cases\|^$/d' | sort | paste -sd ';')"
done <"$cases/completions.txt"

case="$shell: options"
rules=$(grep -ohE '^ +\{"[a-z-]{2,}", (true|false), ' "$tools"/*.cpp | grep -oE '[a-z][a-z-]+' | grep -vxE 'true|false' | sort -u)
same "all that the program has" "$rules" "$("$shell" "run.$shell" - | sed 's/^-//' | sort)"
finish
