#!/usr/bin/env bash
# Renders a clip as a Slurm job array, one task per chunk:
#
#     sbatch --array=1-40 render-slurm.sh look.json clip.mp4 frames [CHUNKS]
#
# Without CHUNKS the number of tasks is the number of chunks. A task that is requeued goes on where it stopped.
# Tasks that failed run again alone, and then the script must be told into how many chunks the clip was cut:
#
#     sbatch --array=2,17 render-slurm.sh look.json clip.mp4 frames 40
#
# To make a clip of the pictures when all tasks are done:
#
#     sbatch --dependency=afterok:JOB --wrap "effectengine video frames/%06d.png out.mp4 --timing clip.mp4"
#
#SBATCH --job-name=effectengine
#SBATCH --cpus-per-task=2
#SBATCH --mem=2G
#SBATCH --time=01:00:00
#SBATCH --requeue
set -euo pipefail

graph=$1 clip=$2 frames=$3 chunks=${4:-${SLURM_ARRAY_TASK_COUNT:-$SLURM_ARRAY_TASK_MAX}}
chunk=$SLURM_ARRAY_TASK_ID/$chunks

# exec: the signal that ends the task reaches the renderer itself.
exec "${EFFECTENGINE:-effectengine}" render "$graph" "$clip" "$frames" --chunk "$chunk" --resume --progress none
