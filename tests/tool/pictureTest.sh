#!/usr/bin/env bash
# Pictures on machines without a graphics system, and files that are no pictures or damaged ones.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

printf 'P6\n3 2\n255\n\x0a\x14\x1e\xc8\x64\x32\x01\x02\x03\xff\xfe\xfd\x80\x81\x82\x10\x20\x30' >in.ppm
mkdir -p noDrivers
without_graphics() { env -u DISPLAY __EGL_VENDOR_LIBRARY_DIRS="$PWD/noDrivers" "$@"; }

# CPU effects work, and give the same files.
for size in 3x2 7x5; do
    expect 0 '' "$tool" apply am-negative --size $size in.ppm with.png
    expect 0 '' without_graphics "$tool" apply am-negative --size $size in.ppm without.png
    cmp -s with.png without.png || fail "another picture without graphics, $size"
done
expect 0 '' without_graphics "$tool" transition push in.ppm with.png half.png --at 0.5

# A Radiance file that breaks off in its pixels: the decoder would wait for more without an end.
{ printf '#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 8 +X 40\n' && printf '\2\2\0\x28\xa8\x80'; head -c 200 /dev/zero; } >cut.hdr
expect 4 'cut.hdr begins like a Radiance file' timeout 60 "$tool" apply am-negative cut.hdr out.png

# The message says what a file is that is no picture.
printf 'RIFF\x24\0\0\0WEBPVP8 %0100d' 0 >photo.webp
printf '\0\0\0\x18ftypheic%0100d' 0 >photo.heic
: >empty.png
head -c 300 /dev/zero >zeros.tga
printf '8BPS\0\1\0\0\0\0\0\0\0\3\0\0\x40\0\0\0\x40\0\0\x08\0\3%0200d' 0 >bomb.psd
timeout 3 "$tool" apply am-negative bomb.psd out.png 2>err.txt
[ $? -eq 4 ] && grep -q 'damaged or cut short: bomb.psd' err.txt || fail "a declared size alone takes room: $(cat err.txt)"
mkfifo pipe.png
expect 4 'photo.webp begins like a WebP file' "$tool" apply am-negative photo.webp out.png
expect 4 'photo.heic begins like a HEIC' "$tool" apply am-negative photo.heic out.png
expect 4 'empty.png is empty' "$tool" apply am-negative empty.png out.png
expect 4 'not a picture that can be decoded: zeros.tga' "$tool" apply am-negative zeros.tga out.png
expect 4 'not a regular file' "$tool" apply am-negative pipe.png out.png
[ ! -e out.png ] || fail "a failure wrote a picture"

# A link stays a link, a file keeps its permissions, and a protected one its contents.
"$tool" apply am-negative in.ppm real.png
ln -s real.png link.png
chmod 640 real.png
expect 0 '' "$tool" apply equalize in.ppm link.png
[ -L link.png ] && [ "$(stat -c %a real.png)" = 640 ] || fail "the link or the permissions are lost"
cmp -s real.png with.png && fail "the link's target was not written"

# A signal ends the tool even while it waits for input from a pipe.
mkfifo graph.json
sleep 20 >graph.json &
writer=$!
"$tool" apply --graph graph.json in.ppm out.png &
waiting=$!
sleep 0.5
kill -TERM $waiting
SECONDS=0
wait $waiting
[ $? -eq 143 ] || fail "not ended by the signal"
[ $SECONDS -le 3 ] || fail "ended after $SECONDS seconds"
kill $writer 2>/dev/null

exit "$((failures > 0))"
