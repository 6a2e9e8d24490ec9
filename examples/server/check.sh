#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# check.sh PROGRAM: ends the server under load by each signal, and finds every order in its log exactly once.
set -eum  # with job control: a shell without it makes its background programs ignore SIGINT
program=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill -KILL "$server" 2>/dev/null || :; rm -rf "$scratch"' EXIT
cd "$scratch"
unset QRX_LOG_LEVEL QRX_LOG_TO_CONSOLE

fail() { echo "check: $*" >&2; exit 1; }

# wait_for WORD...: runs a command until it succeeds, a minute at most.
wait_for()
{
    for _ in $(seq 600); do ! "$@" || return 0; sleep 0.1; done
    fail "has not come: $*"
}
logged() { grep -rqs "$1" "$QRX_LOG_DIRECTORY"; }
files() { find "$QRX_LOG_DIRECTORY" -type f | wc -l; }
has_ended() { ! kill -0 "$server" 2>/dev/null; }
has_files() { [ "$(files)" -ge "$1" ]; }

start()
{
    export QRX_LOG_DIRECTORY="$scratch/$1"
    (ulimit -t 100 && exec "$program" -feeds 3 -workers 4 -rate 20000 -control "$scratch/control") &
    server=$!
    wait_for logged 'feed 2 order 999 '
}

# finish NAME: the server has been told to end.
finish()
{
    local status=0
    wait_for has_ended
    wait "$server" || status=$?
    server=
    [ "$status" -eq 0 ] || fail "$1: ended with status $status"
    logged '\] ended' || fail "$1: the last record is missing"
    python3 "$here/records.py" "$QRX_LOG_DIRECTORY" || fail "$1"
}

for signal in TERM INT; do
    start "$signal"
    kill -"$signal" "$server"
    finish "$signal"
done

start HUP
for count in 2 3 4; do
    kill -HUP "$server"
    wait_for has_files "$count"
done
printf 'level DBG\nlevel loud\nspeed 3\n' >new && mv new control
kill -USR1 "$server"
wait_for test ! -e control
wait_for logged 'an order has come'
kill -TERM "$server"
finish HUP
logged "setting 'level' stays, 'loud' is refused" || fail "a value that is no level was not told"
logged "setting 'speed' stays" || fail "an unknown setting was not told"
