#!/usr/bin/env bash
# Pipelines do what the tool does, to the byte, and the commands of the documents work as they stand:
# pipelineTest.sh TOOL DOCUMENT
document=$(realpath "$2")
source "$(dirname "$0")/../support/toolScript.sh" "$1"

ffmpeg -loglevel error -f lavfi -i testsrc2=size=160x120:rate=25:duration=2 -c:v ffv1 -pix_fmt bgr0 in.mkv
frames='filesrc location=in.mkv ! matroskademux ! avdec_ffv1'

# One frame alone, earlier frames too, drawn ones, and times that depend on the duration.
for effect in glow hue-shift am-tilt-shift echo vertigo toon am-get-color; do
    mkdir "$effect"
    "$tool" video in.mkv "$effect/%03d.png" -e "$effect" || fail "the tool with $effect"
    ffmpeg -loglevel error -i "$effect/%03d.png" -f rawvideo -pix_fmt rgb24 "$effect.tool"
    # shellcheck disable=SC2086
    gst-launch-1.0 -q $frames ! "ee-$effect" ! video/x-raw,format=BGRx ! filesink location="$effect.bgrx" \
        || fail "the pipeline with $effect"
    ffmpeg -loglevel error -f rawvideo -pix_fmt bgr0 -s 160x120 -i "$effect.bgrx" -f rawvideo -pix_fmt rgb24 "$effect.gst"
    cmp "$effect.tool" "$effect.gst" || fail "$effect differs"
done

cat >look.json <<'END'
{"effectengine": 1, "nodes": [{"id": "soft", "effect": "blur"}, {"id": "negative", "effect": "am-negative"}]}
END
ffmpeg -loglevel error -i in.mkv -c:v libx264 -pix_fmt yuv420p in.mp4
ffmpeg -loglevel error -f lavfi -i mandelbrot=size=160x120:rate=25 -t 2 -c:v libx264 -pix_fmt yuv420p other.mp4
commands=0
while IFS= read -r line; do
    commands=$((commands + 1))
    bash -c "timeout 60 $line" >out.txt 2>&1 || fail "$line: $(cat out.txt)"
    output=$(grep -Eo '[a-z]+\.webm' <<<"$line")
    # A live source may drop some.
    count=$(ffprobe -v error -count_packets -show_entries stream=nb_read_packets -of csv=p=0 "$output")
    [ "${count:-0}" -ge 25 ] || fail "$line: $count frames"
done < <(grep '^gst-launch-1.0' "$document")
[ "$commands" -eq 5 ] || fail "$commands commands in the document"

# Errors have words.
expect_error() {
    local text=$1
    shift
    "$@" >out.txt 2>&1 && fail "no error: $*"
    grep -qF "$text" out.txt || fail "no \"$text\": $(cat out.txt)"
}
expect_error "no such file" timeout 30 gst-launch-1.0 videotestsrc ! videoconvert ! ee-look file=missing.json ! fakesink

exit "$((failures > 0))"
