#!/usr/bin/env bash
# The main job: sets up the machine, builds the orvane tool, then meshes the example part into
# a glTF model and renders it into a picture, and says in one line where both are.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
build=build/run
bash scripts/build.sh "$build" -DORVANE_BENCH=OFF -DORVANE_TESTS=OFF

part=examples/parts/bracket.step
glb=$PWD/$build/bracket.glb
png=$PWD/$build/bracket.png
log=$build/main-job.log
start=$(date +%s.%N)
if ! { "./$build/orvane" mesh "$part" -o "$glb" && "./$build/orvane" render "$part" -o "$png"; } > "$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi
seconds=$(awk -v a="$start" -v b="$(date +%s.%N)" 'BEGIN { printf "%.1f", b - a }')
# "bracket.step: 20 of 20 faces, 1480 triangles, ..." from the mesh command.
faces=$(sed -n 's/^[^:]*: \([0-9]*\) of [0-9]* faces.*/\1/p' "$log")
triangles=$(sed -n 's/^[^:]*: [0-9]* of [0-9]* faces, \([0-9]*\) triangles.*/\1/p' "$log")
printf '%s: %s faces, %s triangles, meshed and drawn in %s s -> model %s, picture %s\n' \
    "$part" "$faces" "$triangles" "$seconds" "$glb" "$png"
