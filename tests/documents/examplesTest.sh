#!/usr/bin/env bash
# The examples do what the tool does, to the byte, and end cleanly on bad input:
# examplesTest.sh TOOL RESOURCES PICTURE_EXAMPLE FRAMES_EXAMPLE LOOK_EXAMPLE
resources=$2
picture=$3
frames=$4
look=$5
export EFFECTENGINE_RESOURCES=$resources
source "$(dirname "$0")/../support/toolScript.sh" "$1"

# 32-bit BMP files hold the same bytes as frames: bottom row first, blue to alpha, after 122 bytes.
printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >two.bmp
"$tool" apply hue-shift --size 64x48 two.bmp in.bmp || fail "the tool"

"$picture" "$resources" in.bmp 64 48 out.bmp || fail "the picture example"
"$tool" apply hue-shift -p Hue=20 in.bmp expected.bmp
cmp out.bmp expected.bmp || fail "the picture example and the tool differ"
"$picture" "$resources" missing.bmp 64 48 none.bmp 2>err.txt && fail "a missing picture is no success"
grep -q 'cannot read missing.bmp' err.txt || fail "said: $(cat err.txt)"
"$picture" "$resources" in.bmp 64 48 nowhere/out.bmp 2>err.txt && fail "a missing directory is no success"
"$picture" "$resources" in.bmp 0 48 out.bmp 2>err.txt && fail "no size is no success"

# Two frames a second: the third one is at 1 s.
tail -c +123 in.bmp >frame.raw
cat frame.raw frame.raw frame.raw | "$frames" "$resources" 64 48 2 >out.raw || fail "the frames example"
[ "$(stat -c %s out.raw)" -eq $((3 * 64 * 48 * 4)) ] || fail "three frames in, not three frames out"
"$tool" apply -e glow -p Blur=10 -e hue-shift -p Hue=20 in.bmp --time 1 expected.bmp
cmp <(tail -c $((64 * 48 * 4)) out.raw) <(tail -c +123 expected.bmp) || fail "the frames example and the tool differ"
"$frames" "$resources" 0 48 2 <frame.raw >out.raw 2>err.txt && fail "no size is no success"
grep -q 'CreateImage failed with 1' err.txt || fail "said: $(cat err.txt)"
"$frames" "$resources" 64 48 2 <frame.raw >/dev/full 2>err.txt && fail "a full disk is no success"

# The pixels of such a file as rows of red, green and blue from the top.
rgb() {
    tail -c +123 "$1" | perl -0777 -ne \
        'print map { my ($b, $g, $r) = unpack "aaa", $_; $r . $g . $b } unpack "(a4)*", $_ for reverse unpack "(a256)*", $_'
}
rgb in.bmp >frame.rgb
cat >look.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "glow", "parameters": {"Blur": 10}},
    {"effect": "hue-shift", "parameters": {"Hue": {"keyframes": [{"time": 0, "value": 0}, {"time": 2, "value": 100}]}}}]}
END
cat frame.rgb frame.rgb frame.rgb | "$look" look.json 64 48 2 5 >look.rgb || fail "the look example"
"$tool" apply --graph look.json in.bmp --time 1 expected.bmp
cmp <(tail -c $((64 * 48 * 3)) look.rgb) <(rgb expected.bmp) || fail "the look example and the tool differ"
[ "$(stat -c %s look.rgb)" -eq $((3 * 64 * 48 * 3)) ] || fail "three frames in, not three frames out"
"$look" hue-shfit 64 48 2 5 <frame.rgb 2>err.txt && fail "an unknown effect is no success"
grep -q 'did you mean "hue-shift"' err.txt || fail "said: $(cat err.txt)"
"$look" hue-shift 0 48 2 5 <frame.rgb 2>err.txt && fail "no size is no success"
"$look" hue-shift 64 48 0 5 <frame.rgb 2>err.txt && fail "no rate is no success"
"$look" hue-shift 64 48 2 5 <frame.rgb >/dev/full 2>err.txt && fail "a full disk is no success"

exit "$((failures > 0))"
