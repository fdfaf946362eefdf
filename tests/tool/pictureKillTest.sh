#!/usr/bin/env bash
# Kills at random moments: older files stay whole, nothing half-written appears, and the next run completes.
# pictureKillTest.sh TOOL [KILLS]
source "$(dirname "$0")/../support/toolScript.sh" "$1"
kills=${2:-10}
RANDOM=${KILL_SEED:-$$}
echo "seed ${KILL_SEED:-$$}"

printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >in.bmp
"$tool" --seed 1 apply am-noise --size 1200x900 in.bmp noise.bmp
mkdir photos
for i in $(seq 24); do ln noise.bmp "photos/$i.bmp"; done
effect=(apply am-negative --format png)
before=(apply equalize --format png)
"$tool" "${effect[@]}" noise.bmp new.png
"$tool" "${before[@]}" noise.bmp old.png
signals=(INT TERM KILL)

# killed SIGNAL COMMAND...: runs the tool in a group of its own and sends the signal after up to 0.6 seconds.
killed() {
    local signal=$1 process
    shift
    setsid env --default-signal=INT "$tool" "$@" >out.txt 2>err.txt &
    process=$!
    until [ "$(readlink /proc/$process/exe)" = "$tool" ] || ! kill -0 $process 2>/dev/null; do sleep 0.01; done
    sleep "0.$(printf %03d $((RANDOM % 600)))"
    kill "-$signal" $process 2>/dev/null
    wait $process 2>/dev/null
    for _ in $(seq 50); do # its children end with it
        pgrep -g $process >/dev/null || return
        sleep 0.1
    done
    fail "processes go on after SIG$signal"
}
# check DIRECTORY FILE...: every file in the directory is one of the files, and no part of one is left.
check() {
    local directory=$1 found known
    shift
    for found in "$directory"/*; do
        [ -e "$found" ] || continue
        for known in "$@"; do cmp -s "$found" "$known" && continue 2; done
        fail "half-written: $found"
    done
    [ -z "$(find "$directory" -name '.*' -type f)" ] || fail "parts stay: $(find "$directory" -name '.*' -type f)"
}
complete() { # DIRECTORY
    [ "$(ls "$1" | wc -l)" -eq 24 ] || fail "$(ls "$1" | wc -l) results"
    check "$1" new.png
}

# A run that goes on where the one before was killed.
mkdir results
for ((i = 0; i < kills; i++)); do
    killed "${signals[i % 3]}" "${effect[@]}" -j 2 --skip-existing photos results
    check results new.png
    [ "$(ls results | wc -l)" -lt 24 ] || rm -f results/*
done
"$tool" "${effect[@]}" --skip-existing photos results 2>err.txt || fail "the run after kills: $(cat err.txt)"
complete results

# Older results are either there or replaced.
mkdir older
for i in $(seq 24); do cp old.png "older/$i.png"; done
for ((i = 0; i < kills; i++)); do
    killed "${signals[i % 3]}" "${effect[@]}" -j 2 photos older
    check older new.png old.png
    [ "$(ls older | wc -l)" -eq 24 ] || fail "an older result is gone"
done

# One picture, a strip of a transition, a sheet: the older file is whole.
"$tool" transition push noise.bmp new.png strip --frames 6
cp -r strip whole
"$tool" sheet new.png sheet.png -e am-negative -e zoom -e push
cp sheet.png sheet-whole.png
mkdir one && cp old.png one/picture.png
for ((i = 0; i < 3; i++)); do
    killed "${signals[i]}" apply am-negative noise.bmp one/picture.png
    check one new.png old.png
    killed "${signals[i]}" transition push noise.bmp new.png strip --frames 6
    diff -r strip whole || fail "a strip, SIG${signals[i]}"
    killed "${signals[i]}" sheet new.png sheet.png -e am-negative -e zoom -e push
    cmp sheet.png sheet-whole.png || fail "a sheet, SIG${signals[i]}"
done
[ -z "$(find . -name '.*.*' -type f)" ] || fail "parts stay: $(find . -name '.*.*' -type f)"

# A watch.
mkdir hot watched
for ((i = 0; i < kills; i++)); do
    for j in 1 2 3; do [ -e "hot/$((i * 3 + j)).bmp" ] || ln noise.bmp "hot/$((i * 3 + j)).bmp"; done
    killed "${signals[i % 3]}" watch am-negative hot watched --format png
    check watched new.png
done
"$tool" watch am-negative hot watched --format png 2>err.txt &
process=$!
for _ in $(seq 200); do
    [ "$(ls watched | wc -l)" -lt $((kills * 3)) ] || break
    sleep 0.1
done
kill $process
wait $process 2>/dev/null
[ "$(ls watched | wc -l)" -eq $((kills * 3)) ] || fail "the watch after kills: $(ls watched | wc -l) $(cat err.txt)"
check watched new.png

# A child that is killed costs its picture, and the others are done.
rm -f results/*
"$tool" "${effect[@]}" -j 2 --progress none photos results 2>err.txt &
process=$!
for _ in $(seq 100); do
    child=$(pgrep -P $process | head -1)
    [ -n "$child" ] && [ -n "$(ls results)" ] && break
    sleep 0.02
done
kill -9 $child
wait $process
[ $? -eq 6 ] || fail "a killed child: $(cat err.txt)"
[ "$(grep -c 'ended unexpectedly' err.txt)" -eq 1 ] && [ "$(ls results | wc -l)" -eq 23 ] || fail "$(ls results | wc -l) results: $(cat err.txt)"
check results new.png

# What a killed run left of a clip goes with the next run of that name, and nobody else's files do.
ffmpeg -v error -f lavfi -i testsrc2=size=640x360:rate=25:duration=8 clip.mp4
mkdir clips
"$tool" video clip.mp4 clips/out.mp4 -e am-negative 2>err.txt &
process=$!
until [ -n "$(find clips -name '.out.*.mp4')" ] || ! kill -0 $process; do sleep 0.01; done
kill -9 $process
wait $process 2>/dev/null
left=$(find clips -name '.out.*.mp4')
[ -n "$left" ] || fail "nothing was left to remove: $(ls -A clips)"
dead=$process
others=(clips/.out.$$.mp4 clips/.other.$dead.mp4 clips/.out.mp4 clips/.out.$dead.mkv)
touch "${others[@]}"
exec 8>"clips/.out.$((dead + 1)).mp4" # as one on another machine has it
flock 8
"$tool" video clip.mp4 clips/out.mp4 -e am-negative --frames 0-4 2>err.txt || fail "a clip after a kill: $(cat err.txt)"
[ ! -e "$left" ] || fail "$left stays"
exec 8>&-
rm "clips/.out.$((dead + 1)).mp4" || fail "a file that another machine writes was removed"
for file in "${others[@]}"; do
    [ -e "$file" ] || fail "$file was removed"
done

[ "$failures" -eq 0 ] && echo "$((kills * 3 + 9)) kills did no harm"
exit "$((failures > 0))"
