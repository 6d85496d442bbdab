#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite twice: in a
# normal build, and in a clang build under AddressSanitizer and
# UndefinedBehaviorSanitizer, which also runs every fuzz target briefly.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh

scripts/build.sh build
(cd build && ctest --output-on-failure -j "$(nproc)")
cmake --build build --target docs
# the installed package, used from outside the tree
scripts/check-install.sh build

if [ "${CORVANE_SKIP_SANITIZE:-0}" != "1" ]; then
  # file by file here (no unity batches), so that a source which only
  # compiles thanks to its neighbours in a batch is caught
  CC=clang CXX=clang++ scripts/build.sh build-asan \
    -DCORVANE_SANITIZE=ON -DCORVANE_FUZZ=ON -DCORVANE_BENCH=OFF -DCORVANE_UNITY=OFF
  # Mesa's LLVM JIT frees some of its own operator-new memory with free();
  # that mismatch is inside libLLVM, not ours, so only it is switched off.
  # LeakSanitizer's tracer (clang 14) misreads glibc's dynamic TLS vector of
  # some processes (a case alone under ctest: "DTLS 9 at 0x1c6b", then
  # "Tracer caught signal 11"); without the __tls_get_addr interception it
  # keeps no DTLS list to misread
  export ASAN_OPTIONS=detect_leaks=1:alloc_dealloc_mismatch=0:intercept_tls_get_addr=0
  # blocks Mesa's software driver loses on its own (see the file)
  export LSAN_OPTIONS=suppressions=$PWD/scripts/lsan-mesa.supp
  export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
  # llvmpipe draws in the calling thread: LeakSanitizer's tracer (clang 14)
  # now and then crashes while it stops the driver's idle worker threads at
  # exit, which fails a test whose every case passed
  export LP_NUM_THREADS=0
  (cd build-asan && ctest --output-on-failure -j "$(nproc)")

  seconds="${CORVANE_FUZZ_SECONDS:-20}"
  for fuzzer in build-asan/bin/fuzz_*; do
    name=$(basename "$fuzzer" | sed 's/^fuzz_//')
    corpus=$(mktemp -d)
    echo "== fuzzing $name for ${seconds}s"
    status=0
    "$fuzzer" "$corpus" "tests/fuzz/seeds/$name" -max_total_time="$seconds" \
      -rss_limit_mb=2048 -timeout=30 -print_final_stats=1 > "$corpus.log" 2>&1 || status=$?
    grep -E "^stat::number_of_executed_units" "$corpus.log" || true
    if [ "$status" -ne 0 ]; then
      tail -n 60 "$corpus.log"
      echo "fuzz_$name failed"
      exit 1
    fi
    rm -rf "$corpus" "$corpus.log"
  done
fi
