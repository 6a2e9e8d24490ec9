#!/usr/bin/env bash
# The output file: whole or not there, and no trace of an attempt.
set -u
. "$(dirname "$0")/cases.sh"

printf 'Price\n1.23\n' >good.csv
printf 'Price\n"1.23\n' >open.csv
expected='Price,tick,snapped,moved\n1.23,0.05,1.25,0.02\n'
snap='-increment 0.05 -column Price'
content_is() { same "$1" "$(printf '%b' "$2" | visible)" "$(visible <"$1")"; }
nothing_left() { same "left behind" "" "$(find . -name '*.tmp*')"; }

run 0 $snap -csv good.csv -out new.csv
out_is ''
content_is new.csv "$expected"

# A file that was there keeps its mode, a link stays a link, and the input may be the output.
echo old >mode.csv && chmod 600 mode.csv && ln -s mode.csv link.csv
run 0 $snap -csv good.csv -out link.csv
content_is mode.csv "$expected"
mkdir -p a/b && ln -s ../c.csv a/b/new.csv && ln -s a/b/new.csv new-link.csv
run 0 $snap -csv good.csv -out new-link.csv
content_is a/c.csv "$expected"
same "links" "symbolic link symbolic link" "$(stat -c %F new-link.csv a/b/new.csv | paste -sd' ')"
ln -s missing/x.csv dangling.csv
refused "cannot write dangling.csv: No such file or directory" $snap -csv good.csv -out dangling.csv
ln -s circle.csv circle.csv
refused "cannot write circle.csv: Too many levels of symbolic links" $snap -csv good.csv -out circle.csv
same "mode and link" "600 symbolic link" "$(stat -c %a mode.csv) $(stat -c %F link.csv)"
cp good.csv same.csv
run 0 $snap -csv same.csv -out same.csv
content_is same.csv "$expected"

# Failures of any kind leave the old file, and no new one.
echo old >kept.csv
for input in open.csv missing.csv .; do
    run 2 $snap -csv "$input" -out kept.csv
    content_is kept.csv 'old\n'
    run 2 $snap -csv "$input" -out none.csv
    same "none.csv" "" "$(ls none.csv 2>/dev/null)"
done
refused "open.csv:2: a quote is opened in this row and never closed" $snap -csv open.csv -out kept.csv
{ echo 'Note,Price'; head -c 17000000 /dev/zero | tr '\0' 'x'; } >long.csv
refused "long.csv:2: the row that begins here is longer than 16777216 bytes, the most that is read" \
    -increment 0.05 -column Price -csv long.csv -out kept.csv
head -c 16000000 long.csv | sed '$s/$/,1.23/' >fits.csv
run 0 $snap -csv fits.csv -out long.csv
same "a long row" "x,1.23,0.05,1.25,0.02" "$(tail -c 21 long.csv)"
refused "cannot write kept.csv/x: Not a directory" $snap -csv good.csv -out kept.csv/x
refused "cannot write .: Is a directory" $snap -csv good.csv -out .
nothing_left

# What is no file is written to directly.
run 0 $snap -csv good.csv -out /dev/null
same "/dev/null" "character special file" "$(stat -c %F /dev/null)"
if [ -e /dev/full ]; then
    run 2 $snap -csv good.csv -out /dev/full
    err_is "nxtick: cannot write /dev/full: No space left on device\n"
    for options in "$snap -csv good.csv" "-list" "-table NFX_1" "-table NFX_1 -price 1" "-help" "-version"; do
        case="full standard output: $options"
        "$nxtick" $options >/dev/full 2>err
        same "exit status" 2 $?
        same "message" "nxtick: cannot write stdout: No space left on device" "$(cat err)"
    done
fi

# Standard streams that are closed take no part, and no file gets their numbers.
{ echo Price; yes x | head -n 60000; } >bad.csv
case="standard error closed"
"$nxtick" $snap -out bad-out.csv <bad.csv 2>&-
same "exit status" 1 $?
same "rows" "60000 x,,," "$(tail -n +2 bad-out.csv | sort | uniq -c | sed 's/^ *//')"
case="standard output closed"
"$nxtick" $snap -csv good.csv >&- 2>err
same "exit status and message" "2 nxtick: cannot write stdout: Bad file descriptor" "$? $(cat err)"
case="standard input closed"
"$nxtick" $snap <&- 2>err
same "exit status and message" "2 nxtick: cannot read stdin: Bad file descriptor" "$? $(cat err)"

# A reader of standard error who leaves ends nothing, and a reader of the rows who leaves ends the run without a word.
case="nobody reads standard error"
{ "$nxtick" $snap -csv bad.csv -out unread.csv 2>&1; echo $? >status; } | true
same "exit status and rows" "1 60001" "$(cat status) $(wc -l <unread.csv)"
case="nobody reads the rows"
{ timeout 60 "$nxtick" $snap <bad.csv 2>rejected; echo $? >status; } | true
same "exit status" "$((128 + $(kill -l PIPE)))" "$(cat status)"
same "messages of another kind" "0" "$(grep -vc "is not a price" rejected)"

# A limit on the size of files is reported like a full disk. A build that counts coverage must not speak of its own file.
case="no file above 1 KiB"
(ulimit -c 0 -f 1 && LLVM_PROFILE_FILE=/dev/null exec "$nxtick" $snap -csv bad.csv -out kept.csv 2>&1) | tail -n 1 >err
same "exit status and message" "2 nxtick: cannot write kept.csv: File too large" "${PIPESTATUS[0]} $(cat err)"
content_is kept.csv 'old\n'
nothing_left

# Ended by a signal in the middle of the work.
mkfifo pipe
for signal in TERM HUP QUIT; do
    case="ended by SIG$signal"
    (ulimit -c 0 && exec env --default-signal=QUIT "$nxtick" $snap -csv pipe -out kept.csv 2>/dev/null) &
    process=$!
    exec 3>pipe
    printf 'Price\n1.23\n' >&3
    for _ in $(seq 500); do
        [ -n "$(find . -name 'kept.csv.tmp*')" ] && break
        sleep 0.01
    done
    same "temporary file while working" "1" "$(find . -name 'kept.csv.tmp*' | wc -l)"
    kill -s "$signal" "$process"
    wait "$process" 2>/dev/null
    status=$?
    same "exit status" "$((128 + $(kill -l "$signal")))" "$status"
    exec 3>&-
    content_is kept.csv 'old\n'
    nothing_left
done

# The log: a file where a directory is configured.
mkdir logs
printf 'Price\nx\n' >bad.csv
QRX_LOG_DIRECTORY=$scratch/logs run 1 $snap -csv bad.csv
case="log file"
same "rejected row in the log" "1" "$(cat logs/*/*.log | grep -c "bad.csv:2: 'x' is not a price")"
finish
