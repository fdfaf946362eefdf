# What the test scripts for clips share: sourced after toolScript.sh.

same() { [ "$1" = "$2" ] || fail "$3: \"$1\" instead of \"$2\""; }
make() { ffmpeg -v error -y "$@" || fail "cannot make $*"; }
sound() { ffmpeg -v error -i "$1" -map 0:a -c copy -f md5 - ; }
hashes() { sed -n 's/.*"sha256" : "\(.*\)".*/\1/p' "$@"; }
# likeness CLIP CLIP: their signal-to-noise ratio in whole decibels, 100 for equal clips.
likeness() {
    ffmpeg -v info -i "$1" -i "$2" -lavfi "[0]format=yuv444p[a];[1]format=yuv444p[b];[a][b]psnr" -f null - 2>&1 |
        sed -n 's/.*average:\(inf\|[0-9]*\).*/\1/p' | sed 's/inf/100/'
}
# alike CLIP CLIP DECIBELS TEXT: they are at least as like as that.
alike() {
    local found
    found=$(likeness "$1" "$2")
    [ "${found:-0}" -ge "$3" ] || fail "${4:-$1 is not like $2}: ${found:-?} dB, not $3"
}
