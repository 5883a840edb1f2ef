#!/usr/bin/env bash
# Sets up the machine, builds the orvane tool and runs its main job.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh build/release -DORVANE_BENCH=OFF
./build/release/orvane shapes
