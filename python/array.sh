#!/bin/bash
# Stores an archive as one Zarr group a run, as an array of Slurm:
#     sbatch --array=0-99 array.sh FOLDER 'PATTERN'
# Each task takes every hundredth file and writes which it did to FOLDER/part-I-of-100.csv. A task that is
# started anew does what is missing: outputs that are there stay.
#SBATCH --job-name=aiams
#SBATCH --ntasks=1
#SBATCH --cpus-per-task=1
#SBATCH --mem=1G
set -euo pipefail
exec /usr/bin/python3 -m aiams.archive "$1" "$2" --part "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT"
