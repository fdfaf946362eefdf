#!/usr/bin/env bash
# One graph gives the same pixels through the host library, apply, video and render: sameBytesTest.sh TOOL LOOK_EXAMPLE
source "$(dirname "$0")/../support/toolScript.sh" "$1"
look=$2

raw() { ffmpeg -v error "$@" -f rawvideo -pix_fmt rgb24 -; }
sameBytes() { cmp "$1" "$2" || fail "$3"; }

ffmpeg -v error -f lavfi -i testsrc2=size=96x64:rate=10:duration=0.8 -vf format=gbrp -c:v ffv1 clip.mkv
raw -i clip.mkv >frames.rgb
mkdir frames
ffmpeg -v error -i clip.mkv -start_number 0 frames/%d.png
cat >look.json <<'END'
{"effectengine": 2, "nodes": [
    {"id": "dots", "effect": "am-binary", "inputs": ["source"]},
    {"id": "soft", "effect": "blur", "inputs": ["source"], "mix": {"keyframes": [
        {"time": 0, "value": 0, "interpolation": "cubic-in-out"}, {"time": 0.4, "value": 1}], "repeat": "ping-pong"}},
    {"id": "turn", "effect": "hue-shift", "inputs": ["soft"],
        "parameters": {"Hue": {"keyframes": [{"percent": 0, "value": 0}, {"percent": 100, "value": 100}]}},
        "mask": {"node": "dots", "invert": true, "feather": 3}},
    {"id": "grain", "effect": "am-whirl", "inputs": ["turn"], "mix": 0.5}]}
END

EFFECTENGINE_SEED=5 "$look" look.json 96 64 10 0.8 <frames.rgb >library.rgb || fail "the host library"
[ "$(stat -c %s library.rgb)" -eq $((8 * 96 * 64 * 3)) ] || fail "not eight frames"
cmp -s library.rgb frames.rgb && fail "the graph changes nothing"
mkdir video
expect 0 '' "$tool" --seed 5 video clip.mkv video/%d.png --graph look.json
raw -start_number "$(basename "$(ls video | sort -n | head -1)" .png)" -i video/%d.png >video.rgb
sameBytes video.rgb library.rgb "video and the host library differ"
expect 0 '' "$tool" --seed 5 render look.json clip.mkv rendered
raw -start_number 0 -i rendered/%06d.png >render.rgb
sameBytes render.rgb library.rgb "render and the host library differ"
for i in 0 1 2 3 4 5 6 7; do
    expect 0 '' "$tool" --seed 5 apply --graph look.json "frames/$i.png" "applied-$i.png" --time "0.$i" --total 0.8
    raw -i "applied-$i.png"
done >apply.rgb
sameBytes apply.rgb library.rgb "apply and the host library differ"

exit "$((failures > 0))"
