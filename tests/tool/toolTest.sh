#!/usr/bin/env bash
# The host tool from outside: what it writes, what it says, how it ends.
set -uo pipefail
tool=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# expect CODE TEXT command...: the exit code, and exactly one line on stderr that holds TEXT (none for code 0).
expect() {
    local code=$1 text=$2
    shift 2
    "$@" >out.txt 2>err.txt
    local got=$?
    [ "$got" -eq "$code" ] || fail "exit code $got instead of $code: $* ($(cat err.txt))"
    if [ "$code" -eq 0 ]; then
        [ -s err.txt ] && fail "said something: $* ($(cat err.txt))"
    else
        [ "$(wc -l <err.txt)" -eq 1 ] || fail "not one line: $* ($(cat err.txt))"
        grep -qF -- "$text" err.txt || fail "no \"$text\": $* ($(cat err.txt))"
    fi
}

# A 2 x 1 picture without any library: blue-green-red 10 20 30 and 200 100 50, as a 24-bit BMP.
printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >in.bmp
bmp_bytes() { tail -c 8 "$1" | od -An -tu1 | tr -s ' '; }

expect 0 '' "$tool" list
[ "$(grep -c . out.txt)" -ge 6 ] || fail "list is short"
expect 0 '' "$tool" list --search equalize
[ "$(wc -l <out.txt)" -eq 1 ] || fail "search finds one"
expect 0 '' "$tool" describe hue-shift
grep -q '^Hue .*95' out.txt || fail "describe shows the default"
expect 0 '' "$tool" --help
grep -q 'Exit codes' out.txt || fail "help documents exit codes"

expect 0 '' "$tool" apply black-and-white in.bmp grey.bmp
[ "$(bmp_bytes grey.bmp)" = " 20 20 20 255 116 116 116 255" ] || fail "grey bytes:$(bmp_bytes grey.bmp)"
expect 0 '' "$tool" apply DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A in.bmp guid.bmp
cmp -s grey.bmp guid.bmp || fail "name and GUID differ"
expect 0 '' "$tool" apply -e hue-shift -p kex_effect_enable=0 -e black-and-white in.bmp chain.bmp
cmp -s grey.bmp chain.bmp || fail "a parameter belongs to the effect before it"
for kind in png jpg jpeg tga PNG; do
    expect 0 '' "$tool" apply equalize in.bmp "out.$kind"
    expect 0 '' "$tool" apply blank "out.$kind" again.bmp
done
expect 0 '' "$tool" apply black-and-white --size 5x7 in.bmp sized.bmp
[ "$(od -An -tu4 -j18 -N8 sized.bmp | tr -s ' ')" = " 5 7" ] || fail "size"

expect 2 'did you mean "equalize"' "$tool" apply equalise in.bmp out.png
expect 2 'no parameter "Hew"' "$tool" apply hue-shift -p Hew=1 in.bmp out.png
for bad in Hue=nan Hue=1.5 Hue= Hue=1x Hue=99999999999; do
    expect 2 'takes a whole number' "$tool" apply hue-shift -p "$bad" in.bmp out.png
done
expect 2 'name=value' "$tool" apply hue-shift -p Hue in.bmp out.png
expect 2 'takes 2 numbers' "$tool" apply highlight -p iMouse=1 in.bmp out.png
expect 2 'takes a number' "$tool" apply highlight -p Radius=inf in.bmp out.png
expect 2 '--size takes' "$tool" apply equalize --size 0x5 in.bmp out.png
expect 2 'apply takes' "$tool" apply equalize in.bmp
expect 2 'effectengine --help' "$tool" nonsense
expect 3 'no such file: missing.png' "$tool" apply equalize missing.png out.png
mkdir folder folder.png
expect 4 'is a directory' "$tool" apply equalize folder out.png
printf 'no picture' >text.png
expect 4 'not a picture' "$tool" apply equalize text.png out.png
"$tool" apply equalize in.bmp whole.png
head -c 40 whole.png >cut.png
expect 4 'cut.png' "$tool" apply equalize cut.png cut-out.png
expect 5 'must end in' "$tool" apply equalize in.bmp out.xyz
expect 5 'no such directory' "$tool" apply equalize in.bmp nowhere/out.png
expect 5 'is a directory' "$tool" apply equalize in.bmp folder.png

# Transitions: one frame, a strip, and what is no transition.
expect 0 '' "$tool" list --kind transition
[ "$(wc -l <out.txt)" -eq 63 ] || fail "63 transitions"
expect 0 '' "$tool" transition push in.bmp grey.bmp frame.bmp --at 1
cmp -s frame.bmp grey.bmp || fail "a transition ends with the second picture"
expect 0 '' "$tool" transition row-whisk in.bmp grey.bmp strip --frames 3
[ "$(ls strip)" = "$(printf 'frame-%04d.png\n' 0 1 2)" ] || fail "three frames: $(ls strip)"
expect 2 'is no transition' "$tool" transition equalize in.bmp grey.bmp frame.bmp
expect 2 'needs 2 pictures' "$tool" apply push in.bmp frame.bmp
expect 2 '--at' "$tool" transition push in.bmp grey.bmp frame.bmp --at 1.5
expect 3 'no such file' "$tool" transition push in.bmp missing.bmp frame.bmp

# Lookup tables.
printf 'LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n' >identity.cube
expect 0 '' "$tool" lut check identity.cube
expect 0 '' "$tool" lut info identity.cube
grep -q 'size *2 x 2 x 2' out.txt || fail "lut info shows the size"
expect 0 '' "$tool" apply cube-lut -p CubeLutFile=identity.cube in.bmp lut.bmp
expect 0 '' "$tool" apply black-and-white -p kex_effect_enable=0 in.bmp copy.bmp
cmp -s lut.bmp copy.bmp || fail "an identity table changes nothing"
printf 'LUT_1D_SIZE 2\n0 0 0\n1 1 1\n' >line.cube
expect 4 'line.cube:1' "$tool" lut check line.cube
expect 3 'no such file' "$tool" lut check missing.cube

# A warning names the parameter and does not stop the work.
"$tool" apply hue-shift -p Hue=500 in.bmp warned.png 2>err.txt || fail "a value outside the range is allowed"
grep -q 'Hue=500' err.txt || fail "warning"

# Nothing half-written stays, and an existing file survives a failed write.
cp whole.png kept.png
expect 4 'cut.png' "$tool" apply equalize cut.png kept.png
cmp -s whole.png kept.png || fail "a failed run touched the output"
[ -z "$(find . -name '.*.png' -o -name '.*.bmp')" ] || fail "partial files stay: $(find . -name '.*.*')"

# A full disk, where one can be made.
if [ "$(id -u)" -eq 0 ] && mkdir small && mount -t tmpfs -o size=64k none small 2>/dev/null; then
    "$tool" apply --size 600x600 -e equalize in.bmp big.bmp
    expect 7 'no room' "$tool" apply equalize big.bmp small/out.bmp
    [ -z "$(ls -A small)" ] || fail "a partial file stays on the full disk"
    umount small
fi

[ "$failures" -eq 0 ] && echo "all of the tool's promises hold"
exit "$((failures > 0))"
