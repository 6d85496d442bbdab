#!/usr/bin/env bash
# The main job: installs what is missing, builds, and renders every demo
# scene headless: full size into build/demo/, and small pictures for the
# README into docs/.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
scripts/build.sh build -DCORVANE_BENCH=OFF

cmake --build build --target sample_volumes
mkdir -p build/demo docs
for scene in $(build/bin/corvane scenes | cut -d' ' -f1); do
  echo "== $scene scene"
  build/bin/corvane scene "$scene" "build/demo/$scene.png" 800 600
  build/bin/corvane scene "$scene" "docs/$scene.png" 320 240
done
echo "== the volume renderer: the phantom cut by a sphere, in an orbit of four frames"
build/bin/corvane volume --style lit --size 200 200 --orbit 4 -o docs/volume-orbit.png
echo "== the interactive viewer, three frames of MIP on a private X display"
if command -v xvfb-run > /dev/null; then
  xvfb-run -a -s "-screen 0 1024x768x24" \
    build/bin/corvane view --size 320 240 --style mip --frames 3 --shot docs/view.png
fi
echo "== the shaded scene, DXT1-compressed to DDS"
build/bin/corvane dxt build/demo/shaded.png build/demo/shaded.dds dxt1
echo "== field-container types"
build/bin/corvane types
ls -l build/demo
