#!/usr/bin/env bash
# Painting the pictures again, all in one process, gives the bytes that the build painted one by one.
set -euo pipefail
artwork=$1
built=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$artwork" "$work"
for folder in Overlays Textures wipes; do
    diff -r "$work/$folder" "$built/$folder"
done
[ "$(du -sm "$built" | cut -f1)" -le 60 ] || { echo "the pack is larger than 60 MB" >&2; exit 1; }
