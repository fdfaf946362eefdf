#!/usr/bin/env bash
# Clips of many kinds: rendered in chunks they give the frames of the whole, and those are the frames that ffmpeg
# gives. With a directory as second argument the clips there are tried instead.
clips=${2:+$(realpath "$2")}
source "$(dirname "$0")/../support/toolScript.sh" "$1"

same() { [ "$1" = "$2" ] || fail "$3: \"$1\" instead of \"$2\""; }
make() { ffmpeg -v error -y "$@" 2>make.txt || fail "cannot make $*: $(cat make.txt)"; }
hashes() { sed -n 's/.*"sha256" : "\(.*\)".*/\1/p' "$@" 2>/dev/null; }
# sameFrames HASHES HASHES TEXT: how many lines differ.
sameFrames() { [ "$1" = "$2" ] || fail "$3: $(diff <(echo "$1") <(echo "$2") | grep -c '^[<>]') frames differ"; }

cat >copy.json <<'END_OF_GRAPH'
{"effectengine": 1, "nodes": [{"effect": "black-and-white", "parameters": {"kex_effect_enable": 0}}]}
END_OF_GRAPH

# chunks CLIP COUNT: the whole and all chunks have the same hashes and exit with 0.
chunks() {
    local part manifests=()
    rm -rf whole parts
    "$tool" render copy.json "$1" whole 2>err.txt || fail "$1: whole: $(cat err.txt)"
    for part in $(seq "$2"); do
        "$tool" render copy.json "$1" parts --chunk "$part/$2" 2>err.txt || fail "$1: chunk $part: $(cat err.txt)"
        manifests+=("parts/manifest-$part-of-$2.json")
    done
    sameFrames "$(hashes "${manifests[@]}")" "$(hashes whole/manifest.json)" "$1: chunks against the whole"
}

# check CLIP COUNT: the chunks are the whole, and the whole is what ffmpeg decodes. ffmpeg's frames go through a
# lossless copy, so that the tool converts both alike.
check() {
    chunks "$1" "$2"
    [ "$(hashes whole/manifest.json | wc -l)" -gt 0 ] || fail "$1: no frames"
    ffmpeg -v quiet -y -i "$1" -map 0:v -fps_mode passthrough -c:v ffv1 copy.mkv
    rm -rf copy
    "$tool" render copy.json copy.mkv copy 2>err.txt || fail "copy of $1: $(cat err.txt)"
    sameFrames "$(hashes whole/manifest.json)" "$(hashes copy/manifest.json)" "$1: against ffmpeg"
}

if [ -n "$clips" ]; then
    for clip in "$clips"/*; do check "$clip" 5; done
    [ "$failures" -eq 0 ] && echo "all clips are the same in parts"
    exit "$((failures > 0))"
fi

# A source with enough motion that a wrong reference frame shows.
source=(-f lavfi -i "testsrc2=s=96x64:r=25:d=2,noise=alls=8:allf=t:all_seed=5")
x264=(-c:v libx264 -preset veryfast -pix_fmt yuv420p -x264-params)
x265=(-c:v libx265 -preset veryfast -x265-params)

make "${source[@]}" "${x264[@]}" keyint=15:min-keyint=15:scenecut=0:open-gop=1:bframes=3 h264-open.mkv
make "${source[@]}" "${x264[@]}" keyint=15:intra-refresh=1:scenecut=0 h264-refresh.mp4
make "${source[@]}" "${x264[@]}" keyint=15:scenecut=0 h264-closed.mp4
make "${source[@]}" "${x264[@]}" keyint=1000:scenecut=0 h264-long.mp4
make "${source[@]}" "${x265[@]}" log-level=none:keyint=15:min-keyint=15:bframes=3:scenecut=0:open-gop=1 hevc-open.mp4
make -i hevc-open.mp4 -c copy hevc-open.mkv
make "${source[@]}" -c:v mpeg2video -q:v 5 -g 12 -bf 2 mpeg2.mpg
make "${source[@]}" -c:v mpeg2video -q:v 5 -g 12 -bf 2 mpeg2.ts
make "${source[@]}" -c:v mpeg4 -q:v 5 -g 12 -bf 2 mpeg4.avi
make "${source[@]}" -c:v libvpx-vp9 -b:v 200k -auto-alt-ref 6 -lag-in-frames 16 -cpu-used 6 -g 20 vp9.webm
make "${source[@]}" -c:v libaom-av1 -cpu-used 8 -b:v 200k -g 20 av1.mkv
make "${source[@]}" -c:v libtheora -q:v 6 -g 20 theora.ogv
make "${source[@]}" -c:v prores_ks prores.mov
make -i h264-open.mkv -c copy -bsf:v setts=pts='PTS+40*floor(PTS/280)':dts='DTS+40*floor(PTS/280)-120' uneven.mkv
make -ss 0.9 -i h264-closed.mp4 -c copy edited.mp4
make -itsoffset 2.5 -i h264-closed.mp4 -c copy -copyts offset.mkv
# A clip cut out of open groups of pictures: its first pictures need some that were cut off.
make -ss 0.9 -i h264-open.mkv -c copy cut.mkv
# Alternate reference frames of VP8 are packets that show nothing.
vp8=(-f lavfi -i testsrc2=s=96x64:r=25:d=2 -c:v libvpx -b:v 60k -auto-alt-ref 1 -lag-in-frames 16 -arnr-maxframes 5 -g 40)
make "${vp8[@]}" -pass 1 -f null -
make "${vp8[@]}" -pass 2 vp8.webm
[ "$(ffprobe -v error -count_packets -show_entries stream=nb_read_packets -of csv=p=0 vp8.webm)" -gt 50 ] ||
    fail "vp8.webm has no hidden frames to try"

# Streams joined end to end that tell their parameter sets once, at their start, so that later keyframes do not.
# They differ in what a decoder cannot notice: the chroma's quantiser, and nothing else.
joined() {
    local kind=$1 sets=$2 part
    shift 2
    for part in one two; do
        make "${source[@]}" "$@" $([ $part = two ] && echo "$chroma") -f "$kind" $part
        make -f "$kind" -i $part -c copy -bsf:v "filter_units=pass_types=$sets" -frames:v 1 -f "$kind" $part.sets
        make -f "$kind" -i $part -c copy -bsf:v "filter_units=remove_types=$sets" -f "$kind" $part.pictures
    done
    cat one.sets one.pictures two.sets two.pictures >joined.stream
    make -r 25 -fflags +genpts -f "$kind" -i joined.stream -c copy "joined-$kind.mp4"
}
chroma='-chromaoffset 8'
joined h264 7-8 -c:v libx264 -preset veryfast -pix_fmt yuv420p -x264-params keyint=12:scenecut=0:bframes=0
chroma='-x265-params log-level=none:keyint=12:bframes=0:cbqpoffs=6'
joined hevc 32-34 -c:v libx265 -preset veryfast -x265-params log-level=none:keyint=12:bframes=0
make -i joined-h264.mp4 -c copy joined-h264.mkv

for clip in *.mkv *.mp4 *.mpg *.ts *.avi *.webm *.ogv *.mov; do
    [ "$clip" = copy.mkv ] || check "$clip" 3
done

# Damage of the clip itself: the same frames in chunks and in the whole, one warning, and a note at each frame.
make -i h264-closed.mp4 -c copy -bsf:v "noise=amount=if(eq(n\,20)\,1\,0)" damaged.mp4
make -i hevc-open.mkv -c copy -bsf:v "noise=amount=0:drop=eq(n\,21)" lost.mkv
for clip in damaged.mp4 lost.mkv; do
    chunks $clip 4
    expect 0 'damaged at frame' "$tool" render copy.json $clip noted
    grep -q '"damaged" : true' noted/manifest.json || fail "$clip: no note of the damage"
    same "$(cat parts/manifest-*.json | grep -c '"damaged" : true')" "$(grep -c '"damaged" : true' noted/manifest.json)" "$clip: notes"
    [ "$(grep -c '"damaged" : true' noted/manifest.json)" -lt 25 ] || fail "$clip: damage without end"
    rm -r noted
done

[ "$failures" -eq 0 ] && echo "clips of all kinds are the same in parts"
exit "$((failures > 0))"
