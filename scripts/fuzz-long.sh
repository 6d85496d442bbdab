#!/usr/bin/env bash
# Runs every fuzz target (or those named) for a while and prints a table of
# executions, executions per second and findings. Not part of the test
# command; needs the sanitizer build with the fuzz targets:
#
#   CC=clang CXX=clang++ scripts/build.sh build-asan -DCORVANE_SANITIZE=ON \
#     -DCORVANE_FUZZ=ON -DCORVANE_BENCH=OFF
#   scripts/fuzz-long.sh 600                 # ten minutes a target
#   scripts/fuzz-long.sh 120 nrrd detached   # two minutes for two targets
#
# Corpora grow in build-asan/fuzz-corpus/NAME (kept between runs, seeded
# from tests/fuzz/seeds/NAME); crashes, leaks, timeouts and out-of-memory
# inputs land in build-asan/fuzz-findings/NAME/ (a target stops at its
# first finding), each target's output in build-asan/fuzz-findings/NAME.log. FUZZ_BUILD names another build tree, FUZZ_JOBS runs that
# many targets at once.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-300}"
shift || true
build="${FUZZ_BUILD:-build-asan}"
jobs="${FUZZ_JOBS:-1}"

if [ "$#" -gt 0 ]; then
  names=("$@")
else
  names=()
  for fuzzer in "$build"/bin/fuzz_*; do
    names+=("$(basename "$fuzzer" | sed 's/^fuzz_//')")
  done
fi
if [ "${#names[@]}" -eq 0 ]; then
  echo "no fuzz targets in $build/bin (build with -DCORVANE_FUZZ=ON)" >&2
  exit 1
fi

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:alloc_dealloc_mismatch=0}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT

run_one() {
  local name="$1"
  local corpus="$build/fuzz-corpus/$name" findings="$build/fuzz-findings/$name"
  mkdir -p "$corpus" "$findings"
  local seeds="tests/fuzz/seeds/$name"
  [ -d "$seeds" ] || seeds=""
  local start end status=0
  start=$(date +%s)
  "$build/bin/fuzz_$name" "$corpus" $seeds -max_total_time="$seconds" \
    -rss_limit_mb=2048 -timeout=30 -print_final_stats=1 \
    -artifact_prefix="$findings/" > "$results/$name.log" 2>&1 || status=$?
  end=$(date +%s)
  # the last progress line counts too: a target that died has no stats
  local runs
  runs=$(awk '/^stat::number_of_executed_units/ {s = $2} /^#[0-9]+/ {p = substr($1, 2)}
              END {print (s != "" ? s : p + 0)}' "$results/$name.log")
  local found
  found=$(find "$findings" -type f -newermt "@$start" | wc -l)
  echo "$name $runs $((end - start)) $found $status" > "$results/$name.row"
  cp "$results/$name.log" "$build/fuzz-findings/$name.log"
}

running=0
for name in "${names[@]}"; do
  run_one "$name" &
  running=$((running + 1))
  if [ "$running" -ge "$jobs" ]; then
    wait -n || true
    running=$((running - 1))
  fi
done
wait || true

printf "%-18s %14s %10s %8s %9s\n" target executions exec/s seconds findings
total=0
failed=0
for name in "${names[@]}"; do
  read -r n runs secs found status < "$results/$name.row"
  rate=$(( secs > 0 ? runs / secs : runs ))
  printf "%-18s %14s %10s %8s %9s\n" "$n" "$runs" "$rate" "$secs" "$found"
  total=$((total + runs))
  if [ "$found" -gt 0 ] || [ "$status" -ne 0 ]; then
    failed=1
    echo "  -> see $build/fuzz-findings/$n/ and $n.log (exit status $status)"
    tail -n 20 "$results/$n.log" | sed 's/^/     /'
  fi
done
printf "%-18s %14s\n" total "$total"
exit "$failed"
