#!/usr/bin/env bash
# Losses of clips on their way through the tool: transparency, and sound that cannot be decoded.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

same() { [ "$1" = "$2" ] || fail "$3: \"$1\" instead of \"$2\""; }
make() { ffmpeg -v error -y "$@" 2>make.txt || fail "cannot make $*: $(cat make.txt)"; }
of() { ffprobe -v error -select_streams "$1" -count_frames -show_entries "stream=$2" -of csv=p=0 "$3"; }
copy=(-e black-and-white -p kex_effect_enable=0)

# The decoder that reads the transparency that WebM has beside its pictures.
decoder() { case $1 in *vp8*.webm) echo -c:v libvpx ;; *.webm) echo -c:v libvpx-vp9 ;; esac; }
# alpha CLIP: the alpha channel's bytes, all frames.
alpha() {
    # shellcheck disable=SC2046
    ffmpeg -v error $(decoder "$1") -i "$1" -fps_mode passthrough -vf format=rgba,alphaextract -f rawvideo -pix_fmt gray - |
        od -An -v -tu1 -w1
}
# sameAlpha CLIP CLIP MOST: no pixel's alpha differs by more.
sameAlpha() {
    paste <(alpha "$1") <(alpha "$2") | awk -v most="$3" -v names="$1 $2" '
        { d = $1 - $2; if (d < 0) d = -d; if (NF != 2 || d > most) bad++; if ($1 > 10 && $1 < 245) between++ }
        END { if (NR == 0 || bad || !between) { print "alpha of " names ": " bad+0 " of " NR " differ, " between+0 " between"; exit 1 } }' ||
        fail "alpha is not kept"
}

# A clip whose left half is opaque and whose right half fades in, opaque at first.
fading="color=white:s=64x48:r=10:d=0.8,format=rgba,geq=r=X*4:g=Y*5:b=N*20:a='if(lt(X,32),255,255-N*25)'"
make -f lavfi -i "$fading" -c:v ffv1 -pix_fmt bgra source.mkv
make -i source.mkv -c:v libvpx-vp9 -pix_fmt yuva420p -crf 10 -b:v 0 -cpu-used 5 vp9.webm
make -i source.mkv -c:v libvpx -pix_fmt yuva420p -auto-alt-ref 0 -crf 4 -b:v 2M vp8.webm
make -i source.mkv -c:v prores_ks -pix_fmt yuva444p10le prores.mov
make -i source.mkv -c:v qtrle -pix_fmt argb qtrle.mov
make -i source.mkv -c:v apng picture.apng
for input in vp9.webm vp8.webm prores.mov qtrle.mov source.mkv picture.apng; do
    "$tool" video $input kept.mkv --codec ffv1 "${copy[@]}" 2>err.txt || fail "$input: $(cat err.txt)"
    sameAlpha $input kept.mkv 1
done
for output in kept.webm kept-vp8.webm:libvpx kept.mov:prores_ks kept-qtrle.mov:qtrle kept.apng; do
    codec=${output#*:}
    name=${output%:*}
    "$tool" video source.mkv "$name" $([ "$codec" = "$output" ] || echo --codec "$codec") --quality 4 "${copy[@]}" 2>err.txt ||
        fail "$output: $(cat err.txt)"
    sameAlpha source.mkv "$name" 6
done
"$tool" video vp9.webm straight.webm 2>err.txt || fail "without effects: $(cat err.txt)"
sameAlpha vp9.webm straight.webm 6

# Where the output has no room for transparency, the first transparent frame causes a warning; --alpha drop drops it.
expect 0 'transparency has no place' "$tool" video source.mkv out.mp4 "${copy[@]}"
expect 0 '' "$tool" video source.mkv out.mp4 "${copy[@]}" --alpha drop
expect 0 '' "$tool" video source.mkv dropped.mkv --codec ffv1 "${copy[@]}" --alpha drop
same "$(of v pix_fmt dropped.mkv)" yuv420p "dropped"
expect 2 'knows no transparency' "$tool" video source.mkv out.mp4 "${copy[@]}" --alpha keep

# Opaque clips stay opaque, whatever the format has room for and whatever effects leave in the alpha channel.
make -f lavfi -i testsrc2=s=64x48:r=10:d=0.8 -pix_fmt rgba opaque%02d.png
make -f lavfi -i testsrc2=s=64x48:r=10:d=0.8 -pix_fmt yuv420p opaque.mkv
expect 0 '' "$tool" video opaque%02d.png opaque.webm "${copy[@]}"
same "$(of v pix_fmt opaque.webm):$(ffprobe -v error -show_entries stream_tags=alpha_mode -of csv=p=0 opaque.webm)" yuv420p: "opaque pictures"
expect 0 '' "$tool" transition zoom opaque.mkv opaque.mkv joined%02d.png --at 0.2 --duration 0.4
same "$(alpha joined%02d.png | sort -u | tr -d ' ')" 255 "a transition that leaves its alpha empty"
expect 0 '' "$tool" video opaque.mkv through%02d.png -e blank --alpha keep
same "$(alpha through%02d.png | sort -u | tr -d ' ')" 0 "what an effect makes transparent, with --alpha keep"

# Sound of an unknown codec, made by naming another in the file.
make -f lavfi -i testsrc2=s=64x48:r=10:d=1 -f lavfi -i sine=d=1 -f lavfi -i sine=f=220:d=1 -map 0 -map 1 -map 2 \
    -c:v libx264 -pix_fmt yuv420p -c:a aac -metadata:s:a:0 language=fin two.mkv
LC_ALL=C sed '0,/A_AAC/s//A_XYZ/' two.mkv >unknown.mkv
for output in out.mp4 out.mkv; do
    expect 0 'sound (track 2, fin, unknown codec) cannot be decoded and is left out' "$tool" video unknown.mkv $output "${copy[@]}"
    same "$(of a codec_name $output)" aac "the other track in $output"
done
expect 0 'cannot be decoded and is left out' "$tool" transition push unknown.mkv opaque.mkv silent.mp4 --at 0.5 --duration 0.3
# Channels that the output's encoder does not know are mixed.
make -i two.mkv -map 0:v -map 0:a:0 -c:v copy -af aformat=channel_layouts=5.1 -c:a flac six.mkv
expect 0 'encoded anew as mp3' "$tool" video six.mkv six.flv "${copy[@]}"

[ "$failures" -eq 0 ] && echo "nothing is lost in silence"
exit "$((failures > 0))"
