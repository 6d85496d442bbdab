#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite: once in a
# normal build and once under AddressSanitizer + UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh

scripts/build.sh build
(cd build && ctest --output-on-failure -j "$(nproc)")

if [ "${CORVANE_SKIP_SANITIZE:-0}" != "1" ]; then
  scripts/build.sh build-asan -DCORVANE_SANITIZE=ON -DCORVANE_BENCH=OFF
  (cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
     ctest --output-on-failure -j "$(nproc)")
fi
