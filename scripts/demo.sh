#!/usr/bin/env bash
# The main job: installs what is missing, builds, and runs the main program.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
scripts/build.sh build -DCORVANE_BENCH=OFF

echo "== field-container types"
build/bin/corvane types
echo "== a node, a group"
build/bin/corvane fields Node Group
