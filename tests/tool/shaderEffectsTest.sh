#!/usr/bin/env bash
# Shader effects on the command line: the complete example of docs/descriptors.md, taken from there.
set -uo pipefail
tool=$1
guide=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

check() { # check "what" command...: the command succeeds
    local what=$1
    shift
    "$@" >/dev/null 2>err.txt || { echo "FAILED: $what ($(cat err.txt))" >&2; failures=$((failures + 1)); }
}

mkdir -p res/Shader
printf '[General]\nFileSystem = Shader\n' >res/resources.cfg
: >res/plugins.cfg
# The blocks of the guide that name their file in their first line.
awk '/^```/ { file = ""; inside = !inside; first = inside; next }
     inside && first { first = 0; if (match($0, /[A-Za-z]+\.(conf|frag)$/)) { file = "res/Shader/" substr($0, RSTART); next } }
     inside && file { print > file }' "$guide"
check "the guide has a descriptor" test -s res/Shader/tint.conf
check "the guide has a program" test -s res/Shader/tint.frag

"$tool" --resources res list --search Tint >out.txt
check "it is listed" grep -q '^tint  *colour ' out.txt
"$tool" --resources res describe tint >out.txt
check "defaults of numbers" grep -q '^Strength  *Strength  *float  *0.5 ' out.txt
check "defaults of arrays" grep -q '^colour  *Tint Colour  *floats  *1,0.5,0 ' out.txt
check "choices" grep -q '0 mix, 1 multiply' out.txt
check "without resources there are only the library's own" "$tool" list

# One pixel, blue-green-red 40 80 120.
printf 'BM\x3a\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x04\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x28\x50\x78\0' >in.bmp
pixel() { tail -c 4 "$1" | od -An -tu1 | tr -s ' '; }
check "it is applied" "$tool" --resources res apply tint -p Strength=1 -p colour=1,0.2,0 in.bmp out.bmp
check "all colour, not $(pixel out.bmp)" test "$(pixel out.bmp)" = " 0 51 255 255"
check "parameters count" "$tool" --resources res apply tint -p Strength=1 -p Mode=1 -p colour=0,1,0.5 in.bmp out.bmp
check "multiplied, not $(pixel out.bmp)" test "$(pixel out.bmp)" = " 20 80 0 255"

# The example of the chapter on passes. A plain picture blurs to itself: what is above the threshold is added.
check "the guide has passes" test -s res/Shader/bloom.conf
"$tool" --resources res describe soft-trail >out.txt
check "what it feeds back is its history" grep -q 'every frame since the first' out.txt
"$tool" --resources res list --json >out.txt
check "in the catalogue as well" grep -q '"history" : "from-start"' <(grep -B5 '"name" : "soft-trail"' out.txt)
check "it is applied" "$tool" --resources res apply soft-trail -p Threshold=0.25 in.bmp out.bmp
check "the light is added, not $(pixel out.bmp)" test "$(pixel out.bmp)" = " 40 96 176 255"
exit $((failures > 0))
