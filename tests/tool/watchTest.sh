#!/usr/bin/env bash
# Hot folders: what is done, when, and once.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >in.bmp
"$tool" apply am-negative in.bmp expected.bmp
"$tool" apply equalize -p kex_effect_enable=0 expected.bmp other.bmp # another picture, whose result is another one
"$tool" apply am-negative other.bmp expected2.bmp
watching=
trap 'kill -9 $watching 2>/dev/null; rm -rf "$work"' EXIT

# begin ARGUMENTS...: starts a watch; its words go to log.
begin() {
    env --default-signal=INT "$tool" watch "$@" >out.txt 2>log & # scripts ignore it in the background
    watching=$!
}
# finish SIGNAL: ends it; it says in log what was done.
finish() {
    kill "-$1" $watching
    wait $watching
    local code=$?
    watching=
    [ $code -gt 128 ] || fail "not ended by SIG$1: $code $(cat log)"
}
# soon COMMAND...: it succeeds within some seconds.
soon() {
    for _ in $(seq 150); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.1
    done
    fail "not soon: $* ($(cat log))"
}
shows() { grep -qF -- "$1" log; }

for poll in '' '--poll 0.2'; do
    rm -rf hot results
    mkdir -p hot/early
    cp in.bmp hot/before.bmp
    cp in.bmp hot/early/inner.bmp
    begin am-negative -r hot results $poll
    soon cmp results/before.bmp expected.bmp
    soon cmp results/early/inner.bmp expected.bmp
    cp in.bmp hot/copied.bmp
    cp in.bmp hidden.bmp && mv hidden.bmp hot/moved.bmp
    mkdir -p hot/late/deep && cp in.bmp hot/late/deep/found.bmp
    soon cmp results/copied.bmp expected.bmp
    soon cmp results/moved.bmp expected.bmp
    soon cmp results/late/deep/found.bmp expected.bmp

    mkdir hot/first && sleep 0.3 && mv hot/first hot/second && cp in.bmp hot/second/renamed.bmp
    soon cmp results/second/renamed.bmp expected.bmp
    rm -r hot/second results/second

    # A slow writer is waited for; hidden and temporary names and other files are no pictures.
    exec 7>hot/slow.bmp
    head -c 30 in.bmp >&7
    cp in.bmp hot/.hidden.bmp
    cp in.bmp hot/a.bmp.part
    cp in.bmp hot/b.tmp.bmp
    cp in.bmp hot/words.txt
    cp in.bmp hot/after.bmp
    soon cmp results/after.bmp expected.bmp
    sleep 0.7
    shows slow.bmp && fail "a file was read while it was written: $(cat log)"
    tail -c +31 in.bmp >&7
    exec 7>&-
    soon cmp results/slow.bmp expected.bmp
    [ "$(cd results && find . -type f | LC_ALL=C sort | tr '\n' ' ')" = './after.bmp ./before.bmp ./copied.bmp ./early/inner.bmp ./late/deep/found.bmp ./moved.bmp ./slow.bmp ' ] \
        || fail "results: $(find results -type f)"

    # A file that is replaced is done again, a bad one is reported once for each version.
    cp other.bmp hot/copied.bmp
    soon cmp results/copied.bmp expected2.bmp
    printf 'no picture' >hot/bad.bmp
    soon shows bad.bmp
    printf 'none either' >hot/bad.bmp
    cp in.bmp hot/last.bmp
    soon cmp results/last.bmp expected.bmp
    soon eval '[ "$(grep -c "^effectengine: not a picture.*bad.bmp" log)" -eq 2 ]'
    sleep 0.5
    [ "$(grep -c '^effectengine: not a picture.*bad.bmp' log)" -eq 2 ] || fail "reported again: $(cat log)"
    cp in.bmp hot/bad.bmp
    soon cmp results/bad.bmp expected.bmp
    printf 'a picture no more' >hot/last.bmp
    soon eval '[ "$(grep -c "not a picture.*last.bmp" log)" -eq 1 ]'
    finish TERM
    tail -2 log | head -1 | grep -q 'effectengine: [0-9]* done, 1 failed:' || fail "no summary: $(cat log)"

    # What came in the meantime is done by the next watch, and nothing else.
    rm hot/last.bmp hot/bad.bmp
    cp in.bmp hot/meantime.bmp
    truncate -s 40 results/after.bmp
    touch -d '-1 hour' results/moved.bmp
    begin -e am-negative -r --progress json hot results $poll
    soon cmp results/meantime.bmp expected.bmp
    soon cmp results/after.bmp expected.bmp
    soon eval '[ "$(grep -c \"in\" out.txt)" -eq 3 ]'
    finish INT
    tail -1 out.txt | python3 -c '
import json, sys
s = json.load(sys.stdin)
assert (s["done"], s["skipped"], s["failed"]) == (3, 5, []), s' || fail "after a restart: $(cat out.txt log)"
done

# A worker that dies takes neither the watch nor its picture's successors with it.
rm -rf hot results && mkdir hot
"$tool" apply blank --size 4000x4000 in.bmp large.bmp 2>err.txt
begin vertigo hot results --format png
ln large.bmp hot/large.bmp
soon eval 'pgrep -P $watching >child'
kill -9 $(cat child)
soon shows 'large.bmp: the process that worked on it ended unexpectedly'
cp in.bmp hot/next.bmp
soon test -e results/next.png
rm -rf large.bmp hot/large.bmp

# Two files of one name: the first one counts, the other is refused.
cp in.bmp hot/twin.bmp
soon test -e results/twin.png
cp results/next.png hot/twin.png
soon shows 'both hot/twin.bmp and hot/twin.png would become results/twin.png'
# The folder goes: the watch ends with what it has to say.
rm -rf hot
wait $watching
[ $? -eq 3 ] || fail "the folder is gone: $(cat log)"
shows 'the folder is gone: hot' || fail "$(cat log)"
watching=

expect 3 'no such folder' "$tool" watch am-negative nowhere results
mkdir -p hot/inner
expect 2 'into the folder that is watched' "$tool" watch am-negative hot hot/../hot
expect 2 'lies in the one for results' "$tool" watch am-negative -r hot/inner hot
expect 2 'needs {name}' "$tool" watch am-negative --rename '{index}.{ext}' hot results
expect 2 'watch takes' "$tool" watch am-negative hot
cp in.bmp hot/new.bmp
expect 0 '' "$tool" watch am-negative --dry-run hot fresh
grep -q '^make *hot/new.bmp' out.txt && [ ! -e fresh ] || fail "a dry run: $(cat out.txt)"

# Results inside of the folder are no pictures to be done.
begin am-negative -r hot hot/results
soon cmp hot/results/new.bmp expected.bmp
sleep 0.5
finish TERM
[ "$(find hot -name new.bmp | wc -l)" -eq 2 ] || fail "results of results: $(find hot)"

[ "$failures" -eq 0 ] && echo "hot folders work"
exit "$((failures > 0))"
