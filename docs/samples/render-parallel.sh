#!/usr/bin/env bash
# Renders a clip in chunks with GNU parallel, then makes a clip of the pictures:
#
#     render-parallel.sh look.json clip.mp4 frames out.mp4 [CHUNKS [JOBS]]
#
# Start it again after an interruption: finished pictures stay. For several machines with shared files, give
# parallel their names in PARALLEL, for example PARALLEL="--sshlogin node1,node2 --wd ."
set -euo pipefail

graph=$1 clip=$2 frames=$3 out=$4 chunks=${5:-16} jobs=${6:-2}
tool=${EFFECTENGINE:-effectengine}

seq "$chunks" | parallel --jobs "$jobs" --halt now,fail=1 \
    "$tool" render "$graph" "$clip" "$frames" --chunk "{}/$chunks" --resume --progress none
"$tool" video "$frames/%06d.png" "$out" --timing "$clip"
