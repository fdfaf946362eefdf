#!/usr/bin/env bash
# Further clips beside the first one, and parameters that follow its sound: what is shown, in parts as in the whole.
source "$(dirname "$0")/../support/toolScript.sh" "$1"
source "$support/clipScript.sh"

pixels() { ffmpeg -v error "$@" -map 0:v -fps_mode passthrough -pix_fmt rgba -f framehash - | grep -v '^#' | sed 's/.*, *//'; }
pictures() { pixels -pattern_type glob -i "$1/*.png"; }

# Graphs that show the second clip alone, the third one, and the second one by an effect that remembers.
cat >second.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "black-and-white", "inputs": ["source-2"], "parameters": {"kex_effect_enable": 0}}]}
END
sed s/source-2/source-3/ second.json >third.json
sed s/source-2/source/ second.json >first.json
cat >history.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "delay-grab", "inputs": ["source-2"], "parameters": {"Mode": 2, "BlockSize": 8}},
    {"id": "mixed", "effect": "push", "inputs": ["source", "delay-grab"], "start": 0.2, "duration": 1}]}
END

# shows FRAMES FIRST SECOND OPTION...: the frames of the second clip, counted from 0, beside those of the first; a
# picture that is none of them is a question mark.
shows() {
    local expected=$1 first=$2 second=$3 found
    shift 3
    rm -rf out own
    mkdir out own
    expect 0 '' "$tool" video "$first" out/%03d.png --graph second.json --with "$second" "$@"
    expect 0 '' "$tool" video "$second" own/%03d.png --graph first.json
    found=$(awk 'NR == FNR { at[$1] = FNR - 1; next } { printf("%s%s", (FNR > 1) ? " " : "", ($1 in at) ? at[$1] : "?") }' \
        <(pictures own) <(pictures out))
    same "$found" "$expected" "$second beside $first $*"
}
# clip RATE FRAMES FILE OPTION...
clip() { make -f lavfi -i "testsrc2=s=96x64:r=$1" -frames:v "$2" "${@:4}" "$3"; }

clip 25 10 r25.mp4 -g 4
clip 25 4 short.mp4
clip 25 30 long.mp4 -g 7
clip 10 10 r10.mp4
clip 60 60 r60.mp4 -g 7
clip 60 60 r60.ts -g 7
clip 25 4 short.gif

# The frame that covers the time, whatever the rates, in a part as in the whole.
shows "0 1 2 3 4 5 6 7 8 9" r25.mp4 long.mp4
shows "0 0 0 1 1 2 2 2 3 3" r25.mp4 r10.mp4
shows "0 2 5 7 10 12 15 17 20 22" r10.mp4 long.mp4
for kind in mp4 ts; do
    shows "0 2 4 7 9 12 14 16 19 21" r25.mp4 r60.$kind
    shows "12 14 16" r25.mp4 r60.$kind --frames 5-7
done
# Rates that a file's unit of time cannot tell exactly, and files that begin at any time.
clip 24 12 r24.mp4
clip 30000/1001 12 ntsc.mp4
for name in r24 ntsc; do
    make -i $name.mp4 -c copy $name.mkv
    make -itsoffset 0.0213 -i $name.mp4 -c copy late-$name.mkv
    for pair in "$name.mp4 $name.mkv" "$name.mkv $name.mp4" "late-$name.mkv $name.mkv" "$name.mkv late-$name.mkv"; do
        shows "0 1 2 3 4 5 6 7 8 9 10 11" $pair
    done
done
clip 25 16 even.mp4
make -i even.mp4 -vf "setpts='(N+floor(N/7)*3)/25/TB'" -fps_mode vfr uneven.mkv
shows "0 1 2 3 4 5 6 10 11 12 13 14 15 16 20 21" uneven.mkv long.mp4
shows "0 1 2 3 4 5 6 6 6 6 7 8 9 10 11 12" even.mp4 uneven.mkv

# After its end a clip holds, begins again, or is black; a picture stays.
shows "0 1 2 3 3 3 3 3 3 3" r25.mp4 short.mp4
shows "0 1 2 3 3 3 3 3 3 3" r25.mp4 short.mp4 --with-end hold
for kind in mp4 gif; do
    shows "0 1 2 3 0 1 2 3 0 1" r25.mp4 short.$kind --with-end loop
    shows "1 2 3" r25.mp4 short.$kind --with-end loop --frames 5-7
    shows "0 1 2 3 ? ? ? ? ? ?" r25.mp4 short.$kind --with-end black
    shows "? ? ?" r25.mp4 short.$kind --with-end black --frames 5-7
    make -f lavfi -i color=black:s=96x64 -frames:v 1 black.png
    same "$(pictures out | sort -u)" "$(pixels -i black.png)" "black after the end of short.$kind"
done
make -i r25.mp4 -frames:v 1 still.png
for end in hold loop black; do shows "0 0 0 0 0 0 0 0 0 0" r25.mp4 still.png --with-end $end; done

# Numbered pictures run at the rate of the first clip, or at the user's; those with --timing at that clip's times.
mkdir pics
expect 0 '' "$tool" video r10.mp4 pics/%03d.png --graph first.json
shows "0 1 2 3 4 5 6 7 8 9" r10.mp4 pics/%03d.png
shows "0 0 1 1 2 2 3 3 4 4" r10.mp4 pics/%03d.png --rate 5
shows "0 2 5 7 10 12 15 17 20 22" pics/%03d.png long.mp4 --timing r10.mp4
shows "0 1 2 3 4 5 6 7 8 9" pics/%03d.png pics/%03d.png --timing r10.mp4
cat >fade.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "hue-shift",
    "parameters": {"Hue": {"keyframes": [{"time": 0, "value": 50}, {"time": 0.8, "value": 90}]}}}]}
END
rm -rf out own && mkdir out own
expect 0 '' "$tool" video pics/%03d.png out/%03d.png --graph fade.json --timing r10.mp4
expect 0 '' "$tool" video r10.mp4 own/%03d.png --graph fade.json
same "$(pictures out)" "$(pictures own)" "effects see the times of --timing"

# The second clip takes the size of the first one, in its own shape or stretched.
make -f lavfi -i testsrc=s=200x100:r=25 -frames:v 3 wide.mp4
expect 0 '' "$tool" video r25.mp4 boxed.mkv --codec ffv1 --graph second.json --with wide.mp4 --frames 0
make -i wide.mp4 -frames:v 1 -vf scale=96:48,pad=96:64:0:8 wide.png
alike boxed.mkv wide.png 25 "with black beside"
expect 0 '' "$tool" video r25.mp4 filled.mkv --codec ffv1 --graph second.json --with wide.mp4 --frames 0 --stretch
make -i wide.mp4 -frames:v 1 -vf scale=96:64 wide.png
alike filled.mkv wide.png 25 "stretched"

# Three clips, effects that remember, the sound, parts and chunks.
rm -rf out && mkdir out
expect 0 '' "$tool" video r25.mp4 out/%03d.png --graph third.json --with r10.mp4 --with long.mp4
rm -rf own && mkdir own
expect 0 '' "$tool" video long.mp4 own/%03d.png --graph first.json --frames 0-9
same "$(pictures out)" "$(pictures own)" "the third clip"
make -i long.mp4 -f lavfi -i sine=d=1 -c:v copy sounding.mp4
make -i r60.mp4 -f lavfi -i sine=880:d=1 -c:v copy other.mp4
expect 0 '' "$tool" --seed 3 video sounding.mp4 whole.mkv --codec ffv1 --graph history.json --with other.mp4
same "$(sound whole.mkv)" "$(sound sounding.mp4)" "sound"
expect 0 '' "$tool" --seed 3 video sounding.mp4 part.mkv --codec ffv1 --graph history.json --with other.mp4 --frames 17-22
same "$(pixels -i part.mkv)" "$(pixels -i whole.mkv | sed -n 18,23p)" "frames 17 to 22"
for end in hold loop; do
    with=(--with short.mp4 --with-end $end)
    expect 0 '' "$tool" render history.json long.mp4 $end-whole "${with[@]}"
    for part in 1 2 3; do
        expect 0 '' "$tool" render history.json long.mp4 $end-parts --chunk $part/3 "${with[@]}"
    done
    same "$(hashes $end-parts/manifest-{1,2,3}-of-3.json)" "$(hashes $end-whole/manifest.json)" "chunks, $end"
done
[ "$(hashes loop-whole/manifest.json)" != "$(hashes hold-whole/manifest.json)" ] || fail "the second clip does nothing"
grep -q '"name" : "short.mp4"' loop-whole/manifest.json || fail "the manifest does not name the second clip"
rm loop-whole/000004.png loop-whole/000020.png
expect 0 '' "$tool" render history.json long.mp4 loop-whole --resume --with short.mp4 --with-end loop
same "$(hashes loop-whole/manifest.json)" "$(hashes loop-parts/manifest-{1,2,3}-of-3.json)" "resumed"
expect 2 'begun with another clip' "$tool" render history.json long.mp4 loop-whole --resume --with r10.mp4 --with-end loop
expect 2 'begun with another clip' "$tool" render history.json long.mp4 loop-whole --resume --with short.mp4

# Damage of the second clip is warned of, and noted.
make -i long.mp4 -c copy -bsf:v "noise=amount=if(eq(n\,10)\,1\,0)" damaged.mp4
expect 0 'damaged.mp4: damaged at frame' "$tool" render history.json long.mp4 noted --with damaged.mp4
grep -q '"damaged" : true' noted/manifest.json || fail "no note of the damage"

# Parameters that follow the sound: around a burst of bass they move, elsewhere they rest; parts hear the whole.
cat >beat.json <<'END'
{"effectengine": 2, "nodes": [{"effect": "hue-shift", "parameters": {"Hue": {"audio": {"band": "bass", "to": [50, 90]}}}}]}
END
cat >rest.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "hue-shift", "parameters": {"Hue": 50}}]}
END
make -i long.mp4 -f lavfi -i "aevalsrc='0.5*sin(2*PI*60*t)*exp(-pow((t-0.6)/0.03,2))+0.5*sin(2*PI*2000*t)*exp(-pow((t-0.2)/0.05,2)):s=48000:d=1.2'" \
    -c:v copy -c:a pcm_s16le beat.mkv
expect 0 '' "$tool" render beat.json beat.mkv beat-whole
expect 0 '' "$tool" render rest.json beat.mkv rest-whole
moved=$(paste <(hashes beat-whole/manifest.json) <(hashes rest-whole/manifest.json) | awk '$1 != $2 { printf "%s%d", n++ ? " " : "", NR - 1 }')
case " $moved " in
*" 14 15 16 "*) ;;
*) fail "the burst at frame 15 moves frames $moved" ;;
esac
for quiet in 0 4 8 22 26 29; do [[ " $moved " != *" $quiet "* ]] || fail "frame $quiet moves without bass"; done
for part in 1 2 3; do expect 0 '' "$tool" render beat.json beat.mkv beat-parts --chunk $part/3; done
same "$(hashes beat-parts/manifest-{1,2,3}-of-3.json)" "$(hashes beat-whole/manifest.json)" "chunks that follow the sound"
rm -rf out own && mkdir out own
expect 0 '' "$tool" video beat.mkv out/%03d.png --graph beat.json
same "$(pictures out)" "$(pixels -pattern_type glob -i 'beat-whole/*.png')" "video and render hear the same"
expect 0 '' "$tool" video beat-whole/%06d.png out/%03d.png --graph beat.json --timing beat.mkv
expect 0 '' "$tool" video beat-whole/%06d.png own/%03d.png --graph rest.json --timing beat.mkv
[ "$(pictures out)" != "$(pictures own)" ] || fail "the sound of --timing is not heard"
expect 0 'long.mp4: no sound to follow' "$tool" render beat.json long.mp4 silent
same "$(hashes silent/manifest.json)" "$(hashes rest-whole/manifest.json)" "level 0 without sound"

# Other numbers of clips than the graph's, and clips that cannot be used.
expect 2 'the graph needs 2 clips; video has 1 (--with names a second one)' "$tool" video r25.mp4 no.mp4 --graph second.json
expect 2 'the graph needs 1 clip; video has 2' "$tool" video r25.mp4 no.mp4 --with r10.mp4
expect 2 'the graph needs 3 clips; video has 2' "$tool" video r25.mp4 no.mp4 --graph third.json --with r10.mp4
expect 2 'second.json needs 2 clips; render has 1' "$tool" render second.json r25.mp4 no
expect 2 'first.json needs 1 clip; render has 2' "$tool" render first.json r25.mp4 no --with r10.mp4
expect 3 'no such file: missing.mp4' "$tool" video r25.mp4 no.mp4 --graph second.json --with missing.mp4
expect 4 'second.json' "$tool" video r25.mp4 no.mp4 --graph second.json --with second.json
expect 2 'is the input' "$tool" video r25.mp4 r10.mp4 --graph second.json --with r10.mp4
[ -e no.mp4 ] || [ -e no ] && fail "a refused run leaves something"

[ "$failures" -eq 0 ] && echo "further clips keep time with the first"
exit "$((failures > 0))"
