#!/usr/bin/env bash
# The verbs for clips: what ffprobe finds in their outputs, what they print, and their exit codes.
samples=$(realpath "$(dirname "$0")/../../docs/samples")
source "$(dirname "$0")/../support/toolScript.sh" "$1"
source "$support/clipScript.sh"
trap 'mountpoint -q "$work/small" && umount "$work/small"; rm -rf "$work"' EXIT

# of STREAM ENTRIES FILE: values that ffprobe finds, with commas between.
of() { ffprobe -v error -select_streams "$1" -count_frames -show_entries "stream=$2" -of csv=p=0 "$3"; }
times() { ffprobe -v error -select_streams v -show_entries frame=pts_time -of csv=p=0 "$1" | tr -d ,; }
pixels() { ffmpeg -v error -i "$1" -map 0:v -fps_mode passthrough -pix_fmt rgba -f framehash - | grep -v '^#' | sed 's/.*, *//'; }
copy=(-e black-and-white -p kex_effect_enable=0)

make -f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2 -c:v libx264 -g 20 -c:a aac plain.mp4

# A chain keeps frames, size, duration, times, and the bytes of the sound.
expect 0 '' "$tool" video plain.mp4 chain.mp4 -e hue-shift -p Hue=90 -e equalize
same "$(of v codec_name,width,height,nb_read_frames chain.mp4)" h264,160,120,50 "chain"
same "$(of v duration chain.mp4)" 2.000000 "duration"
same "$(times chain.mp4)" "$(times plain.mp4)" "times"
same "$(sound chain.mp4)" "$(sound plain.mp4)" "sound"
[ "$(likeness plain.mp4 chain.mp4)" -lt 25 ] || fail "the chain does nothing"

# A graph with a keyframed parameter: the first frame is as the source, the last is not.
cat >fade.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "hue-shift",
    "parameters": {"Hue": {"keyframes": [{"percent": 0, "value": 50}, {"percent": 100, "value": 90}]}}}]}
END
expect 0 '' "$tool" video plain.mp4 'fade%03d.png' --graph fade.json
same "$(ls fade*.png | wc -l)" 50 "a picture a frame"
make -i plain.mp4 -frames:v 1 first.png
make -sseof -0.04 -i plain.mp4 -update 1 last.png
alike fade000.png first.png 35
[ "$(likeness fade049.png last.png)" -lt 25 ] || fail "the keyframe does nothing"

# Colours: a disabled effect changes next to nothing, and the marks stay.
for format in yuv420p yuv422p yuv444p yuvj420p yuv420p10le yuv422p12le; do
    make -i plain.mp4 -frames:v 3 -an -vf scale=out_color_matrix=bt709,format=$format -colorspace bt709 -color_primaries bt709 \
        -color_trc bt709 -c:v ffv1 $format.mkv
    "$tool" video $format.mkv back-$format.mkv --codec ffv1 "${copy[@]}" 2>err.txt || fail "$format"
    alike $format.mkv back-$format.mkv 44
done
grep -q '12 bits a channel become 8' err.txt || fail "says that bits are lost: $(cat err.txt)"
make -i plain.mp4 -frames:v 5 -an -vf scale=out_range=pc:out_color_matrix=bt709 -c:v libx264 -color_range pc -colorspace bt709 \
    -color_primaries bt709 -color_trc bt709 marked.mp4
expect 0 '' "$tool" video marked.mp4 marks.mp4 -e equalize
same "$(of v color_range,color_space,color_transfer,color_primaries marks.mp4)" pc,bt709,bt709,bt709 "colour marks"
make -i plain.mp4 -frames:v 5 -an -vf scale=out_color_matrix=bt2020,format=yuv420p10le -c:v libx265 -x265-params log-level=none \
    -color_range tv -colorspace bt2020nc -color_primaries bt2020 -color_trc smpte2084 wide.mp4
expect 0 'high dynamic range is kept as it is coded' "$tool" video wide.mp4 wide-out.mp4 "${copy[@]}"
same "$(of v color_range,color_space,color_transfer,color_primaries wide-out.mp4)" tv,bt2020nc,smpte2084,bt2020 "wide colours"
alike wide.mp4 wide-out.mp4 40

# Sizes that are odd, pictures that stand on their side or upside down, times that are uneven.
make -f lavfi -i testsrc=s=161x121:r=10:d=0.5 -pix_fmt yuv420p -c:v libvpx-vp9 odd.webm
expect 0 'odd size 161 x 121' "$tool" video odd.webm odd.mp4 -e equalize
same "$(of v width,height,nb_read_frames odd.mp4)" 161,121,5 "odd size"
expect 0 '' "$tool" video odd.webm odd-vp9.webm "${copy[@]}" --quality 5
same "$(of v width,height,pix_fmt odd-vp9.webm)" 161,121,yuv420p "odd size in 4:2:0"
alike odd.webm odd-vp9.webm 35
for turn in 90 180 270; do
    make -i plain.mp4 -frames:v 4 -an -c copy -metadata:s:v rotate=$turn turned$turn.mp4
    expect 0 '' "$tool" video turned$turn.mp4 upright$turn.mkv --codec ffv1 "${copy[@]}"
    make -i turned$turn.mp4 -c:v ffv1 shown$turn.mkv
    same "$(of v width,height upright$turn.mkv)" "$(of v width,height shown$turn.mkv)" "size upright"
    alike upright$turn.mkv shown$turn.mkv 40
done
make -i plain.mp4 -an -vf "setpts='(N+floor(N/7)*3)/25/TB'" -fps_mode vfr -frames:v 40 uneven.mkv
expect 0 '' "$tool" video uneven.mkv uneven-out.mkv -e hue-shift
same "$(times uneven-out.mkv)" "$(times uneven.mkv)" "uneven times"
expect 0 '' "$tool" video plain.mp4 small.mp4 --size 80x50 -e equalize
same "$(of v width,height small.mp4)" 80,50 "a size of the user's"

# Other kinds of output.
expect 0 'encoded anew as opus' "$tool" video plain.mp4 out.webm -e equalize
same "$(of v codec_name,nb_read_frames out.webm) $(of a codec_name out.webm)" "vp9,50 opus" "webm"
expect 0 'sound (track 2, aac) has no place' "$tool" video plain.mp4 out.gif "${copy[@]}"
same "$(of v codec_name,width,height,nb_read_frames out.gif)" gif,160,120,50 "gif"
alike plain.mp4 out.gif 28
expect 0 '' "$tool" video plain.mp4 out.mov -e equalize --codec libx264 --quality 30 --encoder-option preset=ultrafast
expect 0 '' "$tool" video out.gif again.mp4 -e equalize
same "$(of v nb_read_frames again.mp4)" 50 "from gif"

# A part of a clip is that part of the whole, also with effects that remember, and its sound fits.
for effect in equalize delay-grab water-ripple am-noise particles-snow; do
    expect 0 '' "$tool" --seed 3 video plain.mp4 whole.mkv --codec ffv1 -e $effect
    expect 0 '' "$tool" --seed 3 video plain.mp4 part.mkv --codec ffv1 -e $effect --frames 30-39
    same "$(pixels part.mkv)" "$(pixels whole.mkv | sed -n 31,40p)" "frames 30 to 39 through $effect"
done
expect 0 '' "$tool" video plain.mp4 part.mp4 -e equalize --frames 25-
same "$(of v nb_read_frames part.mp4)" 25 "frames to the end"
awk "BEGIN { exit !($(of a duration part.mp4) > 0.9 && $(of a duration part.mp4) < 1.1) }" ||
    fail "sound of a part: $(of a duration part.mp4)"

# A transition between two clips.
make -f lavfi -i testsrc=s=200x100:r=20:d=1.5 -c:v libx264 -pix_fmt yuv420p second.mp4
expect 0 '' "$tool" transition push plain.mp4 second.mp4 joined.mp4 --at 1 --duration 0.5
same "$(of v codec_name,width,height,nb_read_frames joined.mp4)" h264,160,120,58 "joined"
awk "BEGIN { d = $(of v duration joined.mp4); a = $(of a duration joined.mp4); exit !(d > 2.45 && d < 2.55 && a > 2.4 && a < 2.6) }" ||
    fail "joined: $(of v duration joined.mp4) s of pictures, $(of a duration joined.mp4) s of sound"
make -i joined.mp4 -frames:v 25 -c:v ffv1 -an before.mkv
make -i plain.mp4 -frames:v 25 -c:v ffv1 -an before-source.mkv
alike before.mkv before-source.mkv 35
make -sseof -0.05 -i joined.mp4 -update 1 joined-last.png
make -sseof -0.05 -i second.mp4 -update 1 -vf scale=160:80,pad=160:120:0:20 second-last.png
alike joined-last.png second-last.png 25
expect 0 '' "$tool" transition push plain.mp4 second.mp4 stretched.mp4 --at 1 --duration 0.5 --stretch
make -sseof -0.05 -i stretched.mp4 -update 1 joined-last.png
make -sseof -0.05 -i second.mp4 -update 1 -vf scale=160:120 second-last.png
alike joined-last.png second-last.png 25
make -i second.mp4 -frames:v 6 -c copy -metadata:s:v rotate=90 tall.mp4
expect 0 '' "$tool" transition push plain.mp4 tall.mp4 beside.mkv --codec ffv1 --at 1 --duration 0.1
make -sseof -0.05 -i beside.mkv -update 1 beside.png
make -sseof -0.05 -i tall.mp4 -update 1 -vf scale=60:120,pad=160:120:50:0 tall.png
alike beside.png tall.png 25
expect 2 'is no transition' "$tool" transition equalize plain.mp4 second.mp4 joined.mp4
expect 2 'ends at' "$tool" transition push plain.mp4 second.mp4 joined.mp4 --at 9
expect 0 '' "$tool" transition push plain.mp4 second.mp4 never.webm --duration 0.5 --dry-run --json
python3 -c '
import json
plan = json.load(open("out.txt"))
step = plan["steps"][0]
assert plan["duration"] == 0.5 and abs(plan["at"] + 0.5 - step["reads"][0]["seconds"]) < 1e-6, plan
assert step["action"] == "make" and (step["writes"][0]["container"], step["writes"][0]["codec"]) == ("webm", "libvpx-vp9"), step
' || fail "dry run of a transition: $(cat out.txt)"
[ -e never.webm ] && fail "a dry run writes"

# Rendering in parts: the same hashes as the whole, for effects without and with a history.
cat >history.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "hue-shift",
    "parameters": {"Hue": {"keyframes": [{"percent": 0, "value": 50}, {"percent": 100, "value": 90}]}}},
    {"effect": "delay-grab", "parameters": {"Mode": 2, "BlockSize": 8}}]}
END
# A graph on the GPU: shaders that move with time, particles that are simulated up to each frame, a look, and a CPU
# effect between them.
cat >drawn.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "glitch"}, {"effect": "particles-sparks"}, {"effect": "hue-shift"},
    {"effect": "heat-haze"}]}
END
for graph in fade history drawn; do
    expect 0 '' "$tool" render $graph.json plain.mp4 $graph-whole
    same "$(ls $graph-whole | grep -c png)" 50 "rendered pictures"
    for part in 1 2 3; do expect 0 '' "$tool" render $graph.json plain.mp4 $graph-parts/%06d.png --chunk $part/3; done
    whole=$(hashes $graph-whole/manifest.json)
    same "$(hashes $graph-parts/manifest-{1,2,3}-of-3.json)" "$whole" "$graph in parts"
    same "$(pixels $graph-parts/%06d.png)" "$whole" "$graph, hashes by ffmpeg"
    expect 0 '' "$tool" render $graph.json plain.mp4 $graph-some --frames 17-21
    same "$(hashes $graph-some/manifest-frames-17-21.json)" "$(echo "$whole" | sed -n 18,22p)" "$graph, some frames"
done
for graph in history drawn; do
    [ "$(hashes $graph-whole/manifest.json | sort -u | wc -l)" -gt 40 ] || fail "the frames of $graph are all the same"
done
cat >everything.json <<'END'
{"effectengine": 1, "nodes": [{"id": "water", "effect": "water-ripple"}]}
END
expect 2 'everything.json: node water (water-ripple) depends on every frame' "$tool" render everything.json plain.mp4 no --chunk 2/3
expect 2 'everything.json: node water (water-ripple) depends on every frame' "$tool" render everything.json plain.mp4 no --frames 3-5
[ -e no ] && fail "a refused run leaves something"
expect 0 '' "$tool" render everything.json plain.mp4 water
expect 2 'takes I/N' "$tool" render fade.json plain.mp4 no --chunk 4/3
expect 2 'has 50 frames' "$tool" render fade.json plain.mp4 no --frames 50-60
expect 5 'without loss' "$tool" render fade.json plain.mp4 no/%04d.jpg

# Killed at any moment, a run goes on where it stopped.
for graph in history everything; do
    whole=$(hashes history-whole/manifest.json)
    [ $graph = everything ] && whole=$(hashes water/manifest.json)
    for kind in KILL TERM; do
        "$tool" render $graph.json plain.mp4 killed >/dev/null 2>&1 &
        render=$!
        until [ -e killed/000012.png ] || ! kill -0 $render 2>/dev/null; do sleep 0.005; done
        kill -$kind $render 2>/dev/null
        wait $render 2>/dev/null
        [ -e killed/manifest.json ] && echo "note: the run ended before SIG$kind" >&2
        [ $kind = TERM ] && [ -n "$(ls killed/.*.png 2>/dev/null)" ] && fail "SIGTERM leaves partial pictures"
        : >killed/000003.png # lost on the way
        before=$(stat -c %Y%i killed/000005.png)
        expect 0 '' "$tool" render $graph.json plain.mp4 killed --resume
        same "$(hashes killed/manifest.json)" "$whole" "$graph resumed after SIG$kind"
        same "$(pixels killed/%06d.png)" "$whole" "pictures resumed after SIG$kind"
        same "$(stat -c %Y%i killed/000005.png)" "$before" "a finished picture stays as it is"
        rm -rf killed
    done
done
expect 2 'begun with another graph' "$tool" render fade.json plain.mp4 history-whole --resume

# Pictures back to a clip, with the times and the sound of the source.
expect 0 '' "$tool" video fade-whole/%06d.png assembled.mp4 --timing plain.mp4
same "$(times assembled.mp4)" "$(times plain.mp4)" "assembled times"
same "$(sound assembled.mp4)" "$(sound plain.mp4)" "assembled sound"

# The samples for farms render every frame once.
export EFFECTENGINE=$tool
for task in 1 2 3 4; do
    SLURM_ARRAY_TASK_ID=$task SLURM_ARRAY_TASK_COUNT=4 expect 0 '' "$samples/render-slurm.sh" history.json plain.mp4 slurm
done
same "$(hashes slurm/manifest-{1,2,3,4}-of-4.json)" "$(hashes history-whole/manifest.json)" "Slurm tasks"
if command -v parallel >/dev/null; then
    "$samples/render-parallel.sh" history.json plain.mp4 spread spread.mp4 5 2 >/dev/null 2>err.txt || fail "parallel: $(cat err.txt)"
    same "$(hashes spread/manifest-{1,2,3,4,5}-of-5.json)" "$(hashes history-whole/manifest.json)" "parallel jobs"
    same "$(of v nb_read_frames spread.mp4)" 50 "clip of parallel jobs"
fi

# Ctrl-C and kill leave nothing half-written, and what was there stays.
make -stream_loop 100 -i plain.mp4 -c copy long.mp4
echo precious >kept.mp4
for kind in INT:130 TERM:143; do
    for target in kept.mp4 'frames/%04d.png'; do
        mkdir -p frames
        env --default-signal=INT "$tool" video long.mp4 "$target" -e equalize 2>err.txt &
        run=$!
        until ls -A . frames | grep -q '^\.\(kept\|effectengine\)' || ! kill -0 $run 2>/dev/null; do sleep 0.01; done
        kill -${kind%:*} $run || fail "ended before it was stopped: $(cat err.txt)"
        wait $run
        same $? ${kind#*:} "exit code after ${kind%:*}"
        [ -z "$(ls -A . frames | grep '^\.[a-z]')" ] || fail "partial files stay: $(ls -A . frames | grep '^\.[a-z]')"
        [ -z "$(ls frames)" ] || fail "half of the pictures stay"
    done
done
same "$(cat kept.mp4)" precious "a stopped run touched the output"

# Progress for programs.
expect 0 '' "$tool" video plain.mp4 out.mp4 -e equalize --progress json
grep -q '^{"unit":"frames","done":50,"total":50,"rate":[0-9.]*,"remaining":0.0}$' out.txt || fail "progress: $(tail -1 out.txt)"

# Where the time went: every stage's busy and waiting time is the run's, and the busiest one is named.
expect 0 '' "$tool" video plain.mp4 out.mp4 -e equalize --progress json --stats
tail -1 out.txt | python3 -c '
import json, sys
stats = json.load(sys.stdin)["stats"]
assert stats["frames"] == 50 and stats["processorSeconds"] > 0 and stats["cores"] > 0, stats
stages = stats["stages"]
assert list(stages) == ["effects", "read", "write"], stats
assert stats["bottleneck"] == max(stages, key=lambda name: stages[name]["busy"]), stats
for stage in stages.values():
    assert stage["busy"] > 0 and abs(stage["busy"] + stage["waiting"] - stats["seconds"] * 20) < 0.1, stats
    assert abs(sum(stage.get("steps", {"all": stage["busy"]}).values()) - stage["busy"]) < 0.01, stats
' || fail "--stats as JSON: $(tail -1 out.txt)"
expect 0 '' "$tool" render fade.json plain.mp4 told --stats
grep -q '^50 frames in ' out.txt && grep -q '^read .*decode .*convert' out.txt && grep -q 'wait for this' out.txt ||
    fail "--stats: $(cat out.txt)"

# PNG pictures: two sizes of the same pixels, which others read as well.
expect 0 '' "$tool" render fade.json plain.mp4 smaller --compression small
diff told/manifest.json smaller/manifest.json >diff.txt || fail "--compression changes pixels: $(head -3 diff.txt)"
[ "$(du -sb smaller | cut -f1)" -lt "$(du -sb told | cut -f1)" ] || fail "--compression small is not smaller"
for kind in told smaller; do
    ffmpeg -v error -i $kind/%06d.png -f framehash -hash sha256 -pix_fmt rgba - | grep -o '[0-9a-f]\{64\}' >ffmpeg.txt
    grep -o '[0-9a-f]\{64\}' $kind/manifest.json | diff - ffmpeg.txt >diff.txt || fail "ffmpeg reads other pixels: $kind"
done
# An option of the codec is for the codec, which makes the same pictures of it.
expect 0 '' "$tool" video plain.mp4 told/%06d.png --graph fade.json
expect 0 '' "$tool" video plain.mp4 smaller/%06d.png --graph fade.json --encoder-option pred=paeth
same "$(ffmpeg -v error -i told/%06d.png -f md5 -)" "$(ffmpeg -v error -i smaller/%06d.png -f md5 -)" "pictures by the codec"
expect 2 '--compression is for numbered PNG' "$tool" video plain.mp4 out.mp4 --compression small -e equalize
expect 2 '--compression is for numbered PNG' "$tool" video plain.mp4 told/%d.tif --compression fast -e equalize
expect 2 'are for clips' "$tool" transition push told/000000.png told/000001.png no.png --stats
expect 2 'are for clips' "$tool" transition push told/000000.png told/000001.png no.png --compression small
expect 2 '--compression' "$tool" render fade.json plain.mp4 no --compression tiny

# Bad inputs, bad options and bad outputs end with their exit codes.
printf 'no clip' >text.mp4
head -c 5000 plain.mp4 >cut.mp4
mkdir folder.mp4
expect 3 'no such file: missing.mp4' "$tool" video missing.mp4 out.mp4 -e equalize
expect 3 'no such file: none/%04d.png' "$tool" video none/%04d.png out.mp4 -e equalize
expect 4 'text.mp4' "$tool" video text.mp4 out.mp4 -e equalize
expect 4 'cut.mp4' "$tool" video cut.mp4 out.mp4 -e equalize
expect 4 'is a directory' "$tool" video folder.mp4 out.mp4 -e equalize
make -f lavfi -i sine=d=1 only.wav
expect 4 'no pictures in only.wav' "$tool" video only.wav out.mp4 -e equalize
expect 5 'must end as' "$tool" video plain.mp4 out.xyz -e equalize
expect 5 'no such directory' "$tool" video plain.mp4 nowhere/out.mp4 -e equalize
expect 5 'is a directory' "$tool" video plain.mp4 folder.mp4 -e equalize
expect 2 'is the input' "$tool" video plain.mp4 ./plain.mp4 -e equalize
expect 2 'did you mean' "$tool" video plain.mp4 out.mp4 -e equalise
expect 2 'no encoder' "$tool" video plain.mp4 out.mp4 --codec nonsense -e equalize
expect 2 'no option "nonsense"' "$tool" video plain.mp4 out.mp4 --encoder-option nonsense=1 -e equalize
expect 2 'cannot hold' "$tool" video second.mp4 out.webm --codec libx264 -e equalize
expect 2 '--frames takes' "$tool" video plain.mp4 out.mp4 --frames 9-3 -e equalize
expect 2 'needs 2' "$tool" video plain.mp4 out.mp4 -e push

expect 0 '' "$tool" codecs
grep -q '^h264 .*write: libx264' out.txt || fail "codecs: $(cat out.txt)"

# A full disk, where one can be made.
if [ "$(id -u)" -eq 0 ] && mkdir small && mount -t tmpfs -o size=200k none small 2>/dev/null; then
    expect 7 'no room' "$tool" video plain.mp4 small/out.mkv --codec ffv1 -e equalize
    expect 7 'no room' "$tool" video plain.mp4 small/out.mp4 --quality 0 -e equalize
    expect 7 'no room' "$tool" video plain.mp4 small/%03d.png -e equalize
    [ -z "$(ls -A small)" ] || fail "partial files stay on the full disk: $(ls -A small)"
    expect 7 'no room' "$tool" render fade.json plain.mp4 small
    [ -z "$(ls small/.*.png 2>/dev/null)" ] || fail "a partial picture stays on the full disk"
    umount small
fi

[ "$failures" -eq 0 ] && echo "all promises about clips hold"
exit "$((failures > 0))"
