#!/usr/bin/env bash
# Clips of more than 8 bits and of high dynamic range: --dither and --tonemap, beside what ffmpeg makes of them.
source "$(dirname "$0")/../support/toolScript.sh" "$1"
source "$support/clipScript.sh"

copy='{"effectengine": 1, "nodes": [{"effect": "black-and-white", "parameters": {"kex_effect_enable": 0}}]}'
echo "$copy" >copy.json
of() { ffprobe -v error -select_streams "$1" -show_entries "stream=$2" -of csv=p=0 "$3" | sed 's/,$//'; }
# bytes CLIP [FILTER]: its pictures as bytes of red, green and blue.
bytes() { ffmpeg -v error -i "$1" -map 0:v ${2:+-vf "$2"} -fps_mode passthrough -pix_fmt rgb24 -f rawvideo -; }

# A ramp of 10 bits has four codes for each of 8. Dithered, their mean comes through; rounded, there are steps.
make -f lavfi -i "nullsrc=s=256x64:r=25:d=0.08,format=yuv420p10le,geq=lum='400+X/16':cb=512:cr=512" -c:v ffv1 -color_range tv -colorspace bt709 ramp.mkv
expect 0 '10 bits a channel become 8' "$tool" video ramp.mkv rounded.mkv --codec ffv1
expect 0 '8 by dithering' "$tool" video ramp.mkv dithered.mkv --codec ffv1 --dither
# error CLIP: the greatest error of the mean of a code's 16 columns and 64 rows, in thousandths of a step of 8 bits.
error() {
    ffmpeg -v error -i "$1" -frames:v 1 -f rawvideo -pix_fmt yuv420p - | head -c 16384 | od -An -v -tu1 -w256 |
        awk '{ for (x = 1; x <= 256; ++x) sum[int((x - 1) / 16)] += $x }
            END { for (i = 0; i < 16; ++i) { e = sum[i] / 1024 - (400 + i) / 4; if (e < 0) e = -e; if (e > most) most = e }
                printf "%d", most * 1000 }'
}
same "$(error rounded.mkv)" 500 "a rounded ramp"
same "$(error dithered.mkv)" 0 "a dithered ramp"
# 8 bits stay as they are, and so do codes that 8 bits have.
make -i rounded.mkv -vf format=yuv420p10le -c:v ffv1 exact.mkv
expect 0 'by dithering' "$tool" video exact.mkv exact-out.mkv --codec ffv1 --dither
same "$(bytes exact-out.mkv | md5sum)" "$(bytes rounded.mkv | md5sum)" "codes that 8 bits have"
expect 0 '' "$tool" video rounded.mkv as-it-is.mkv --codec ffv1 --dither
same "$(bytes as-it-is.mkv | md5sum)" "$(bytes rounded.mkv | md5sum)" "8 bits"
# Red, green and blue take another way, and so do other sizes. Means come through, too, and white stays white.
for format in gbrp12le rgb48le; do
    make -f lavfi -i "nullsrc=s=64x64:r=25:d=0.04,format=gray16le,geq=lum=25808" -vf format=$format -c:v ffv1 deep.mkv
    for size in 64x64 40x40; do
        expect 0 'by dithering' "$tool" video deep.mkv 'deep%d.png' --dither --size $size
        mean=$(bytes deep0.png | od -An -v -tu1 -w1 | awk '{ sum += $1 } END { printf "%.1f", sum / NR }')
        same "$mean" 100.4 "the mean of $format in $size"
    done
    make -f lavfi -i "nullsrc=s=64x64:r=25:d=0.04,format=gbrp16le,geq=r=65535:g=65535:b=65535" -vf format=$format -c:v ffv1 white.mkv
    expect 0 'by dithering' "$tool" video white.mkv 'white%d.png' --dither
    same "$(bytes white0.png | od -An -v -tu1 -w1 | sort -u | xargs)" 255 "white of $format"
done

# parts CLIP OPTION...: chunks, and one thread, give the frames of the whole.
parts() {
    local clip=$1
    shift
    rm -rf whole parts one
    "$tool" render copy.json "$clip" whole "$@" 2>err.txt || fail "$clip $*: $(cat err.txt)"
    "$tool" render copy.json "$clip" parts --chunk 1/2 "$@" 2>err.txt
    "$tool" render copy.json "$clip" parts --chunk 2/2 "$@" 2>err.txt
    taskset -c 0 "$tool" render copy.json "$clip" one "$@" 2>err.txt
    same "$(hashes parts/manifest-1-of-2.json parts/manifest-2-of-2.json)" "$(hashes whole/manifest.json)" "$clip $* in parts"
    same "$(hashes one/manifest.json)" "$(hashes whole/manifest.json)" "$clip $* on one core"
    [ "$(hashes whole/manifest.json | wc -l)" -eq 12 ] || fail "$clip: frames"
}

light='max-cll=900,300:master-display=G(13250,34500)B(7500,3000)R(34000,16000)WP(15635,16450)L(10000000,50)'
make -f lavfi -i testsrc2=s=160x96:r=25:d=0.48 -vf format=yuv420p10le -c:v libx265 -color_range tv -colorspace bt2020nc -color_primaries bt2020 \
    -color_trc smpte2084 -x265-params "log-level=none:keyint=5:open-gop=1:$light" pq.mkv
make -f lavfi -i testsrc2=s=160x96:r=25:d=0.48 -vf format=yuv420p10le -c:v libx265 -color_range tv -colorspace bt2020nc -color_primaries bt2020 \
    -color_trc arib-std-b67 -x265-params log-level=none hlg.mp4
for clip in pq.mkv hlg.mp4; do
    for curve in hable mobius reinhard; do
        expect 0 'its high dynamic range is mapped to BT.709' "$tool" video $clip mapped.mkv --codec ffv1 --tonemap $curve
        same "$(of v color_range,color_space,color_transfer,color_primaries mapped.mkv)" tv,bt709,bt709,bt709 "marks after $curve"
        ffprobe -v error -show_streams mapped.mkv >marks.txt
        grep -q -i max_content marks.txt && fail "the light of the master stays behind"
        expect 0 'is mapped' "$tool" video $clip 'mapped%02d.png' --tonemap $curve
        chain="zscale=t=linear:npl=100,format=gbrpf32le,zscale=p=bt709,tonemap=$curve:desat=0,zscale=t=bt709:r=full,format=gbrp"
        same "$(bytes mapped%02d.png | md5sum)" "$(bytes $clip "$chain" | md5sum)" "$clip through $curve as ffmpeg makes it"
    done
    parts $clip --tonemap auto
done
parts pq.mkv --tonemap mobius --dither
expect 0 'is kept as it is coded' "$tool" video pq.mkv kept.mkv --codec ffv1 --tonemap none
same "$(of v color_space,color_transfer kept.mkv)" bt2020nc,smpte2084 "without a curve"
expect 0 '' "$tool" video rounded.mkv ordinary.mkv --codec ffv1 --tonemap auto
same "$(bytes ordinary.mkv | md5sum)" "$(bytes rounded.mkv | md5sum)" "clips of ordinary range"
expect 2 '--tonemap' "$tool" video pq.mkv out.mkv --tonemap sunny
expect 0 'is mapped' "$tool" transition push pq.mkv rounded.mkv joined.mkv --codec ffv1 --tonemap auto --at 0.3 --duration 0.1
same "$(of v color_space,color_transfer joined.mkv)" bt709,bt709 "a transition out of a high range"

[ "$failures" -eq 0 ] && echo "depths and ranges are right"
exit "$((failures > 0))"
