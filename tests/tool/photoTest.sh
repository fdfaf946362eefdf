#!/usr/bin/env bash
# Photographs: turned upright by every verb, and carried with their EXIF data and colour profile by apply.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

letter() { # the colour of a square
    case $1 in
    A) printf '\x20\x30\x40' ;; B) printf '\x60\x40\x20' ;; C) printf '\xa0\xb0\xc0' ;;
    D) printf '\xe0\xc0\xa0' ;; E) printf '\x10\x90\x50' ;; F) printf '\x90\x10\xd0' ;;
    esac
}
number() { printf "\\x$(printf %02x "$(($1 % 256))")\\x$(printf %02x "$(($1 / 256))")\0\0"; }
# squares FILE ROW...: a BMP of squares of 8 x 8, which JPEG keeps alike wherever they stand; rows from the top.
squares() {
    local file=$1 rows=() row i
    shift
    rows=("$@")
    { printf 'BM\0\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0'; number $((${#1} * 8)); number $(($# * 8))
        printf '\1\0\x18\0'; head -c 24 /dev/zero; } >"$file"
    for ((row = $# - 1; row >= 0; row--)); do
        for ((i = 0; i < ${#1}; i++)); do for _ in {1..8}; do letter "${rows[row]:i:1}"; done; done >row
        cat row row row row row row row row >>"$file"
    done
}
exif() { printf '\xff\xe1\0\x22Exif\0\0MM\0*\0\0\0\x08\0\1\1\x12\0\3\0\0\0\1\0\x0'"$1"'\0\0\0\0\0\0'; }
# with SEGMENT FILE: a JPEG file that the tool wrote, with a segment behind its first one.
with() { head -c 20 "$2"; cat "$1"; tail -c +21 "$2"; }
# near FILE FILE: as many bytes, none 8 away from the other's; two JPEG decoders differ by roundings.
near() {
    paste <(od -An -v -tu1 -w1 -j54 "$1") <(od -An -v -tu1 -w1 -j54 "$2") \
        | awk '{ d = $1 - $2; if (NF != 2 || d > 8 || d < -8) bad = 1 } END { exit bad || NR == 0 }'
}
copy=(apply hue-shift -p kex_effect_enable=0)

stored=("ABC DEF" "CBA FED" "FED CBA" "DEF ABC" "AD BE CF" "CF BE AD" "FC EB DA" "DA EB FC")
for i in {1..8}; do
    read -ra rows <<<"${stored[i - 1]}"
    squares plain.bmp "${rows[@]}"
    "$tool" "${copy[@]}" plain.bmp plain.jpg
    exif "$i" >exif
    with exif plain.jpg >"photo$i.jpg"
    expect 0 '' "$tool" "${copy[@]}" "photo$i.jpg" "upright$i.bmp"
    cmp upright1.bmp "upright$i.bmp" || fail "orientation $i"
done
[ "$(od -An -tu4 -j18 -N8 upright6.bmp | tr -s ' ')" = " 24 16" ] || fail "the size of an upright picture"
expect 0 '' "$tool" "${copy[@]}" --size 12x20 photo6.jpg sized.bmp
[ "$(od -An -tu4 -j18 -N8 sized.bmp | tr -s ' ')" = " 12 20" ] || fail "--size is that of the upright picture"
exif 9 >exif
with exif plain.jpg >odd.jpg
expect 0 '' "$tool" "${copy[@]}" plain.jpg plain.bmp
expect 0 '' "$tool" "${copy[@]}" odd.jpg odd.bmp
cmp odd.bmp plain.bmp || fail "an orientation that there is not"
expect 0 '' "$tool" transition push photo1.jpg photo6.jpg to.bmp --at 1
cmp to.bmp upright1.bmp || fail "transition"
expect 0 '' "$tool" apply push photo1.jpg --with photo8.jpg to.bmp --time 5
cmp to.bmp upright1.bmp || fail "--with"
expect 0 '' "$tool" sheet photo1.jpg sheet1.png -e hue-shift --tile 24x16
expect 0 '' "$tool" sheet photo5.jpg sheet5.png -e hue-shift --tile 24x16
cmp sheet1.png sheet5.png || fail "sheet"

mkdir numbered
for i in {1..3}; do cp photo6.jpg "numbered/$i.jpg"; done
expect 0 '' "$tool" video numbered/%d.jpg numbered/%d.png -e hue-shift -p kex_effect_enable=0
expect 0 '' "$tool" "${copy[@]}" numbered/2.png numbered.bmp
[ "$(od -An -tu4 -j18 -N8 numbered.bmp | tr -s ' ')" = " 24 16" ] || fail "the size of numbered pictures"
near numbered.bmp upright1.bmp || fail "numbered pictures"

# A profile and EXIF data, from JPEG to PNG to JPEG.
{ printf '\0\0\0\xc8'; head -c 12 /dev/zero; printf 'RGB XYZ '; head -c 12 /dev/zero; printf acsp
    head -c 160 "$tool"; } >profile
[ "$(wc -c <profile)" -eq 200 ] || fail "the profile"
{ exif 6; printf '\xff\xe2\0\xd8ICC_PROFILE\0\1\1'; cat profile; } >metadata
read -ra rows <<<"${stored[5]}"
squares plain.bmp "${rows[@]}"
"$tool" "${copy[@]}" plain.bmp plain.jpg
with metadata plain.jpg >photo.jpg
mkdir photos
cp photo.jpg photos
exif 1 >exif
expect 0 '' "$tool" "${copy[@]}" --format png photos results
expect 0 '' "$tool" "${copy[@]}" results/photo.png again.jpg
expect 0 '' "$tool" "${copy[@]}" photo.jpg out.jpg
for result in again.jpg out.jpg; do
    tail -c +21 $result | head -c 36 | cmp - exif || fail "EXIF data of $result"
    tail -c +75 $result | head -c 200 | cmp - profile || fail "profile of $result"
done
expect 0 '' "$tool" "${copy[@]}" --strip photo.jpg bare.jpg
grep -qa -e Exif -e ICC_PROFILE bare.jpg && fail "--strip"
expect 0 '' "$tool" "${copy[@]}" bare.jpg bare.bmp
expect 0 '' "$tool" "${copy[@]}" out.jpg out.bmp
cmp bare.bmp out.bmp || fail "--strip turns upright all the same"
# A transition keeps the profile that both pictures have.
expect 0 '' "$tool" transition push photo.jpg out.jpg both.jpg
tail -c +39 both.jpg | head -c 200 | cmp - profile || fail "profile of a transition"
expect 0 '' "$tool" transition push photo.jpg bare.jpg both.jpg
grep -qa ICC_PROFILE both.jpg && fail "a profile that only one picture has"

[ "$failures" -eq 0 ]
