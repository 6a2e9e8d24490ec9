# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Sourced by the test scripts: a scratch directory and the checks.

nxtick=$1
[ -x "$nxtick" ] || { echo "$nxtick is not there"; exit 2; }
# The folder with the files of cases: accepted.txt with NAME|INPUT|OUTPUT|ON-GRID|MOVED, refused.txt with
# OPTIONS|MESSAGE, columns.txt with HEADER|COLUMN|MESSAGE, shown.txt with the options and output of runs, and rejected.txt
# with what the rows of rejected.csv lead to.
cases=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 2
unset QRX_LOG_DIRECTORY QRX_LOG_LEVEL NO_COLOR
failures=0

# same WHAT EXPECTED ACTUAL
same()
{
    [ "$2" = "$3" ] && return 0
    printf '%s\n--- %s: expected\n%s\n--- got\n%s\n' "FAILED: $case" "$1" "$2" "$3"
    failures=$((failures + 1))
}

# run EXIT-STATUS OPTION...: with standard input as given; leaves the files out and err.
run()
{
    local expected=$1 status=0
    shift
    case="nxtick $*"
    "$nxtick" "$@" >out 2>err || status=$?
    same "exit status" "$expected" "$status"
}

# Text with line ends kept, in a form that survives $(...): CR as <CR>, and a mark at the end.
visible() { sed 's/\r/<CR>/g'; printf '<END>'; }
out_is() { same "standard output" "$(printf '%b' "$1" | visible)" "$(visible <out)"; }
# The time that a run takes is not compared.
err_is()
{
    same "standard error" "$(printf '%b' "$1" | visible)" \
        "$(sed -E 's/^(time|rows a second) +[0-9.,]+( s)?$/\1/; s/  +/  /' err | visible)"
}
# A run that ends with one line on standard error and leaves nothing but the files out and err.
refused()
{
    local message=$1
    shift
    run 2 "$@" </dev/null
    out_is ''
    err_is "nxtick: $message\n"
}

finish()
{
    [ "$failures" -eq 0 ] && exit 0
    echo "$failures failed"
    exit 1
}
