#!/usr/bin/env bash
# The samples for farms ask for the right parts, as a stand-in for the renderer prints them.
samples=$(realpath "$2")
source "$(dirname "$0")/../support/toolScript.sh" "$1"

printf '#!/bin/sh\necho "$@"\n' >renderer
chmod +x renderer
export EFFECTENGINE=$work/renderer

asks() { # asks CHUNK VARIABLE... -- ARGUMENT...: what a Slurm task with these variables renders
    local chunk=$1 variables=()
    shift
    while [ "$1" != -- ]; do variables+=("$1"); shift; done
    shift
    expect 0 '' env -u SLURM_ARRAY_TASK_COUNT -u SLURM_ARRAY_TASK_MAX "${variables[@]}" "$samples/render-slurm.sh" \
        look.json 'my clip.mp4' frames "$@"
    grep -qxF "render look.json my clip.mp4 frames --chunk $chunk --resume --progress none" out.txt ||
        fail "${variables[*]} -- $*: $(cat out.txt)"
}
asks 3/40 SLURM_ARRAY_TASK_ID=3 SLURM_ARRAY_TASK_COUNT=40 SLURM_ARRAY_TASK_MAX=40 --
asks 3/40 SLURM_ARRAY_TASK_ID=3 SLURM_ARRAY_TASK_MAX=40 --
# A task that failed and runs again alone: its array has one task, or ends with its number.
asks 2/40 SLURM_ARRAY_TASK_ID=2 SLURM_ARRAY_TASK_COUNT=1 SLURM_ARRAY_TASK_MAX=2 -- 40
asks 17/40 SLURM_ARRAY_TASK_ID=17 SLURM_ARRAY_TASK_COUNT=2 SLURM_ARRAY_TASK_MAX=17 -- 40

exit "$((failures > 0))"
