#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The output file: complete or absent, without a trace of an attempt.
set -u
. "$(dirname "$0")/cases.sh"

printf 'Price\n1.23\n' >good.csv
printf 'Price\n"1.23\n' >open.csv
expected='Price,tick,snapped,moved\n1.23,0.05,1.25,0.02\n'
snap='-increment 0.05 -column Price'
content_is() { same "$1" "$(printf '%b' "$2" | visible)" "$(visible <"$1")"; }
nothing_left() { same "left behind" "" "$(find . -name '.nxtick-*')"; }
skipped() { echo "skipped: $1"; }

# begin OPTION...: starts a run that reads the pipe, and returns once the run has a place for its output.
begin()
{
    (ulimit -c 0 && exec env --default-signal=HUP,QUIT "$nxtick" $snap -csv pipe "$@" 2>err) &
    process=$!
    exec 3>pipe
    printf 'Price\n1.23\n' >&3
    for _ in $(seq 500); do
        named=$(find . -name '.nxtick-*')
        [ -n "$named$(find "/proc/$process/fd" -lname '*(deleted)' 2>/dev/null)" ] && break
        sleep 0.01
    done
}
# end STATUS
end()
{
    { exec 3>&-; wait "$process"; } 2>/dev/null
    same "exit status" "$1" "$?"
}

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

# Devices are written to directly.
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

# The content of a file that is open as a descriptor stays; the rows go to the position of the descriptor.
case="names of open descriptors"
echo old >stream.csv && ln -s /dev/stdout stream-link
for name in /dev/stdout /dev/fd/3 /proc/self/fd/3 stream-link; do
    "$nxtick" $snap -csv good.csv -out "$name" >>stream.csv 3>&1 2>/dev/null
    echo after >>stream.csv
done
content_is stream.csv "old\n$(for _ in 1 2 3 4; do printf %s "${expected}after\n"; done)"
for name in stdin:- stdin:/dev/stdout good.csv:-; do
    case="the input is the output: $name"
    options="-csv ${name%:*}" && [ "${name%:*}" = stdin ] && options=
    out=stdout && [ "${name#*:}" = - ] || out=${name#*:}
    "$nxtick" $snap $options $([ "$out" = stdout ] || echo "-out $out") <good.csv >>good.csv 2>err
    same "exit status" 2 $?
    err_is "nxtick: cannot write $out: it is the input file; to replace that, name it with -out\n"
    content_is good.csv 'Price\n1.23\n'
done

# Closed standard streams are not used, and no file takes their descriptors.
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

# The run goes on without a reader of standard error. Without a reader of the rows it ends silently.
case="nobody reads standard error"
{ "$nxtick" $snap -csv bad.csv -out unread.csv 2>&1; echo $? >status; } | true
same "exit status and rows" "1 60001" "$(cat status) $(wc -l <unread.csv)"
case="nobody reads the rows"
{ timeout 60 "$nxtick" $snap <bad.csv 2>rejected; echo $? >status; } | true
same "exit status" "$((128 + $(kill -l PIPE)))" "$(cat status)"
same "messages of another kind" "0" "$(grep -vc "is not a price" rejected)"

# A limit on the size of files is reported like a full disk. A build that counts coverage must not report on its own file.
case="no file above 1 KiB"
(ulimit -c 0 -f 1 && LLVM_PROFILE_FILE=/dev/null exec "$nxtick" $snap -csv bad.csv -out kept.csv 2>&1) | tail -n 1 >err
same "exit status and message" "2 nxtick: cannot write kept.csv: File too large" "${PIPESTATUS[0]} $(cat err)"
content_is kept.csv 'old\n'
nothing_left

# Ended by a signal in the middle of the work.
mkfifo pipe
for signal in TERM HUP QUIT KILL; do
    case="ended by SIG$signal"
    begin -out kept.csv
    status=$((128 + $(kill -l "$signal")))
    kill -s "$signal" "$process"
    end "$status"
    content_is kept.csv 'old\n'
    # Where the file system needs a name, the file stays: a killed process cannot remove it.
    [ "$signal" = KILL ] && [ -n "$named" ] && rm "$named" && skipped "nothing left behind by SIGKILL"
    nothing_left
done

# The file at the start decides: what other programs put under the name during the run is kept.
case="a link to another file takes the name"
begin -out fresh.csv
ln -s kept.csv fresh.csv
end 2
err_is "nxtick: cannot write fresh.csv: another program has made it meanwhile\n"
content_is kept.csv 'old\n'
case="another file takes the name"
echo first >taken.csv
begin -out taken.csv
echo second >second.csv && mv second.csv taken.csv
end 2
err_is "nxtick: cannot write taken.csv: another program has removed or replaced it meanwhile\n"
content_is taken.csv 'second\n'
nothing_left

# The file keeps its access rights.
if python3 -c 'import os, struct
entries = ((1, 6, -1), (2, 4, 1), (4, 0, -1), (16, 4, -1), (32, 0, -1))
os.setxattr("good.csv", "system.posix_acl_access", struct.pack("<I", 2) + b"".join(struct.pack("<HHi", *e) for e in entries))
' 2>/dev/null; then
    cp good.csv input.csv
    list() { python3 -c 'import os; print(os.getxattr("good.csv", "system.posix_acl_access"))'; }
    before=$(list)
    run 0 $snap -csv input.csv -out good.csv
    same "access list" "$before" "$(list)"
    mv input.csv good.csv
else
    skipped "access lists"
fi

# Without a file beside it, the file is written in place, and only when all is well.
if [ "$(id -u)" -eq 0 ]; then
    chmod 755 . && ordinary="env LLVM_PROFILE_FILE=/dev/null setpriv --reuid=65534 --regid=65534 --clear-groups"
    echo old >owner.csv && chmod 640 owner.csv && chown 65534:65534 owner.csv
    run 0 $snap -csv good.csv -out owner.csv
    content_is owner.csv "$expected"
    same "owner and mode" "65534 65534 640" "$(stat -c '%u %g %a' owner.csv)"

    mkdir -m 1777 sticky && ln -s ../kept.csv sticky/planted.csv && chown -h 65534 sticky/planted.csv
    refused "cannot write sticky/planted.csv: Permission denied" $snap -csv good.csv -out sticky/planted.csv

    echo old >mounted.csv && cp mounted.csv mount.csv
    case="a mount of its own"
    if unshare -m sh -c 'mount --bind mounted.csv mount.csv && { "$@"; true; }' sh "$nxtick" $snap -csv good.csv -out mount.csv 2>err; then
        same "told" "nxtick: mount.csv is written in place, since it cannot be replaced: Device or resource busy" "$(head -n 1 err)"
        content_is mounted.csv "$expected"
    else
        skipped "a mount of its own"
    fi
else
    ordinary=
    skipped "owners, sticky directories, mounts"
fi
if $ordinary "$nxtick" -version >/dev/null 2>&1; then
    mkdir fixed && echo 'old and longer than what comes' >fixed/file.csv
    [ -z "$ordinary" ] || chown 65534 fixed/file.csv
    chmod a-w fixed
    case="a directory that cannot be written"
    $ordinary "$nxtick" $snap -csv open.csv -out fixed/file.csv 2>err
    content_is fixed/file.csv 'old and longer than what comes\n'
    $ordinary "$nxtick" $snap -out fixed/file.csv <good.csv 2>err
    same "told" "nxtick: fixed/file.csv is written in place, since no file can be made beside it: Permission denied" "$(head -n 1 err)"
    content_is fixed/file.csv "$expected"
    $ordinary "$nxtick" $snap -out fixed/new.csv <good.csv 2>err
    same "exit status and message" "2 nxtick: cannot write fixed/new.csv: Permission denied" "$? $(cat err)"
    chmod u+w fixed
else
    skipped "a directory that cannot be written"
fi

# The log: a file where a directory is configured.
mkdir logs
printf 'Price\nx\n' >bad.csv
QRX_LOG_DIRECTORY=$scratch/logs run 1 $snap -csv bad.csv
case="log file"
same "rejected row in the log" "1" "$(cat logs/*/*.log | grep -c "bad.csv:2: 'x' is not a price")"
finish
