#!/usr/bin/env bash
# Installs into a fresh prefix and uses the result as other projects do: CMake package, pkg-config, tool.
set -euo pipefail
build=$1
source=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
cmake -S "$source/consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DHOST_SOURCE="$source/hostInC.c" >/dev/null
cmake --build "$work/consumer" >/dev/null
"$work/consumer/consumer" "$prefix/share/effectengine/" "$work"

export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name effectengine.pc)")
# The prefix in the file is the configured one; pkg-config moves it with the file.
read -ra flags < <(pkg-config --define-prefix --cflags --libs effectengine)
cc -std=c11 -pedantic -Wall -Werror "$source/hostInC.c" "${flags[@]}" -o "$work/plain"
LD_LIBRARY_PATH=$(dirname "$(find "$prefix" -name libEffectEngine.so)") "$work/plain" "$prefix/share/effectengine/" "$work"

"$prefix/bin/effectengine" list >/dev/null
