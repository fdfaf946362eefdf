#!/usr/bin/env bash
# Runs that are killed at random moments: what was there stays whole, nothing appears half-written, and the next run
# completes. A second argument says how many moments there are for each verb and signal; ten unless it is given.
moments=${2:-10}
source "$(dirname "$0")/../support/toolScript.sh" "$1"
source "$support/clipScript.sh"
export EFFECTENGINE_SEED=3 TMPDIR=$work/tmp
mkdir tmp
RANDOM=${KILL_TEST_SEED:-$$}
echo "KILL_TEST_SEED=${KILL_TEST_SEED:-$$} repeats these moments"

make -f lavfi -i testsrc2=s=320x240:r=25:d=4 -f lavfi -i sine=d=4 -c:v libx264 -preset ultrafast -g 20 -c:a aac clip.mkv
cat >look.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "glow"}, {"effect": "delay-grab"}]}
END
frames() { ffmpeg -v error -i "$1" -map 0:v -fps_mode passthrough -f framemd5 - | grep -v '^#' | md5sum; }
video() { "$tool" video clip.mkv video/out.mkv --codec ffv1 --graph look.json "$@"; }
pictures() { "$tool" video clip.mkv pictures/%03d.png --graph look.json --frames 0-39 "$@"; }
render() { "$tool" render look.json clip.mkv render "$@"; }
pipe() { "$tool" video - pipe/out.mkv --codec ffv1 --graph look.json "$@" <clip.mkv; }
declare -A done=([video]=video/out.mkv [pictures]=pictures/%03d.png [render]=render/%06d.png [pipe]=pipe/out.mkv)

# killed VERB SIGNAL: a run of it that gets the signal after a part of the time that whole runs take. Its exit code is in
# $code, which is 0 when it was faster.
killed() {
    "$1" 2>err.txt &
    local run=$!
    sleep "$(awk -v most="${took[$1]}" -v share=$RANDOM 'BEGIN { print most * share / 32768 }')"
    pkill -"$2" -P $run 2>/dev/null || kill -"$2" $run 2>/dev/null
    wait $run 2>/dev/null
    code=$?
}

declare -A took whole
for verb in video pictures render pipe; do
    mkdir $verb
    begin=$(date +%s%N)
    $verb || fail "$verb"
    took[$verb]=$(awk "BEGIN { print ($(date +%s%N) - $begin) / 1e9 }")
    whole[$verb]=$(frames "${done[$verb]}")
done
same "$(hashes render/manifest.json | wc -l)" 100 "rendered frames"

for verb in video pictures render pipe; do
    for signal in TERM:143 INT:130 KILL:137; do
        for ((i = 0; i < moments; ++i)); do
            name="$verb, ${signal%:*}"
            before=$(frames "${done[$verb]}")
            case $verb in
            render) rm -rf render && mkdir render ;; # from nothing; the others find the whole of an earlier run
            esac
            killed $verb ${signal%:*}
            [ $code -eq "${signal#*:}" ] || [ $code -eq 0 ] || fail "$name: exit code $code ($(cat err.txt))"
            left=$(find $verb tmp -mindepth 1 -name '.*' -o -mindepth 1 -path 'tmp/*' | head -3)
            [ "${signal%:*}" = KILL ] || [ -z "$left" ] || fail "$name leaves $left"
            if [ $verb = render ]; then
                for picture in render/*.png; do
                    [ -e "$picture" ] || continue # a run that ended before the first one
                    ffmpeg -v error -i "$picture" -f null - 2>&1 | grep -q . && fail "$name: $picture is not whole"
                done
                expect 0 '' render --resume
                same "$(frames "${done[$verb]}")" "${whole[$verb]}" "$name, resumed"
            else
                same "$(frames "${done[$verb]}")" "$before" "$name: what was there"
            fi
        done
    done
    [ $verb = render ] || expect 0 '' $verb
    same "$(frames "${done[$verb]}")" "${whole[$verb]}" "$verb after kills"
done

[ "$failures" -eq 0 ] && echo "killed runs do no harm"
exit "$((failures > 0))"
