#!/usr/bin/env bash
# Installs into a fresh prefix and uses the result as other projects do: CMake package, pkg-config, tool.
set -euo pipefail
build=$1
source=$(cd "$(dirname "$0")" && pwd)
examples=$source/../../docs/examples
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
cmake -S "$source/consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DHOST_SOURCES="$source/hostInC.c;$examples/picture.c;$examples/frames.cpp" \
    -DLOOK_SOURCES="$source/lookInC.c;$examples/look.c" >/dev/null
cmake --build "$work/consumer" >/dev/null
"$work/consumer/hostInC" "$prefix/share/effectengine/" "$work"
"$work/consumer/lookInC" "$prefix/share/effectengine" "$work"
"$source/../documents/examplesTest.sh" "$prefix/bin/effectengine" "$prefix/share/effectengine/" \
    "$work/consumer/picture" "$work/consumer/frames" "$work/consumer/look"

export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name effectengine.pc)")
[ -s "$(pkg-config --define-prefix --variable=graphschema effectengine)" ]
# The prefix in the file is the configured one; pkg-config moves it with the file.
read -ra flags < <(pkg-config --define-prefix --cflags --libs effectengine)
cc -std=c11 -pedantic -Wall -Werror "$source/hostInC.c" "${flags[@]}" -o "$work/plain"
libraries=$(dirname "$(find "$prefix" -name libEffectEngine.so)")
LD_LIBRARY_PATH=$libraries "$work/plain" "$prefix/share/effectengine/" "$work"
# The host library is linked alone, and finds the engine, the catalogue and the pack by itself.
read -ra flags < <(pkg-config --define-prefix --cflags --libs effectengine-host)
cc -std=c11 -pedantic -Wall -Werror "$examples/look.c" "${flags[@]}" -o "$work/look"
dd if=/dev/zero bs=$((64 * 36 * 3)) count=1 2>/dev/null | tr '\0' '\170' >"$work/grey.rgb"
LD_LIBRARY_PATH=$libraries "$work/look" sight 64 36 25 1 <"$work/grey.rgb" >"$work/sight.rgb"
cmp -s "$work/grey.rgb" "$work/sight.rgb" && { echo "the overlay of the installed pack does not show" >&2; exit 1; }

"$prefix/bin/effectengine" list >/dev/null

# The installed tool finds the pack by itself: a texture and an overlay show on a grey picture (a 2 x 1 BMP).
cd "$work"
printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x78\x78\x78\x78\x78\x78\0\0' >grey.bmp
"$prefix/bin/effectengine" apply black-and-white --size 64x36 grey.bmp plain.bmp
for effect in am-vignette1 sight; do
    "$prefix/bin/effectengine" apply "$effect" --size 64x36 grey.bmp shown.bmp
    if cmp -s plain.bmp shown.bmp; then
        echo "the installed $effect does nothing" >&2
        exit 1
    fi
done
