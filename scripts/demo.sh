#!/usr/bin/env bash
# The main job: installs what is missing, builds, and renders the demo scenes
# headless to PNG files in build/demo/.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
scripts/build.sh build -DCORVANE_BENCH=OFF

cmake --build build --target sample_volumes
mkdir -p build/demo
for scene in shaded sky calibrated hmd; do
  echo "== $scene scene"
  build/bin/corvane scene "$scene" "build/demo/$scene.png" 800 600
done
echo "== the same, DXT1-compressed to DDS"
build/bin/corvane dxt build/demo/shaded.png build/demo/shaded.dds dxt1
echo "== field-container types"
build/bin/corvane types
ls -l build/demo
