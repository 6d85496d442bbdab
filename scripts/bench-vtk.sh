#!/usr/bin/env bash
# Volume frame time of corvane's ray caster next to VTK 9's GPU ray caster,
# both on Mesa's llvmpipe with the same number of rasteriser threads, in
# one run. Prints the medians and the ratios.
#
#   scripts/bench-vtk.sh [build-dir]
#
# Environment:
#   LP_NUM_THREADS  llvmpipe threads for both sides (default: nproc)
#   ROUNDS          rounds, each runs corvane and then VTK (default 5)
#   REPS            repetitions of each case in a round (default 2)
#   MIN_TIME        seconds of frames per repetition (default 1)
#   BENCH_PNG=DIR   also write one frame of each case as PNG into DIR
#
# Installs libvtk9-dev, xvfb and xauth with apt-get when they are missing.
set -euo pipefail
cd "$(dirname "$0")/.."

build="${1:-build}"
threads="${LP_NUM_THREADS:-$(nproc)}"
reps="${REPS:-2}"
rounds="${ROUNDS:-5}"
min_time="${MIN_TIME:-1}"

# --- packages --------------------------------------------------------------------
missing=()
for p in libvtk9-dev xvfb xauth libbenchmark-dev cmake ninja-build python3; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -ne 0 ]; then
  echo "Installing missing packages: ${missing[*]}"
  SUDO=""
  if [ "$(id -u)" -ne 0 ]; then
    SUDO="sudo"
  fi
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y --no-install-recommends "${missing[@]}"
fi

# --- builds ----------------------------------------------------------------------
if [ ! -f "$build/CMakeCache.txt" ]; then
  scripts/build.sh "$build" -DCORVANE_BENCH=ON
else
  cmake -S . -B "$build" -DCORVANE_BENCH=ON > "$build/configure.log" 2>&1 \
    || { cat "$build/configure.log"; exit 1; }
fi
cmake --build "$build" --target bench_VolumeFrame -j "$(nproc)"

vtkdir="$build/vtk-bench"
cmake -S bench/vtk -B "$vtkdir" -G Ninja -DCMAKE_BUILD_TYPE=Release > "$vtkdir.configure.log" 2>&1 \
  || { cat "$vtkdir.configure.log"; exit 1; }
cmake --build "$vtkdir" -j "$(nproc)"

# --- runs --------------------------------------------------------------------------
export LP_NUM_THREADS="$threads"
export LIBGL_ALWAYS_SOFTWARE=1
export GALLIUM_DRIVER=llvmpipe
if [ -n "${BENCH_PNG:-}" ]; then
  mkdir -p "$BENCH_PNG"
  export CORVANE_BENCH_PNG="$BENCH_PNG" VTK_BENCH_PNG="$BENCH_PNG"
fi

out="$build/bench-vtk"
rm -rf "$out"
mkdir -p "$out"
flags=(--benchmark_repetitions="$reps" --benchmark_display_aggregates_only=true
       --benchmark_min_time="$min_time" --benchmark_out_format=json)

# Rounds take turns, so that a change of load on a shared machine falls
# on both sides alike; within a round the two dense frames run back to back.
for round in $(seq 1 "$rounds"); do
  echo "== round $round/$rounds: corvane, dense (EGL, llvmpipe, LP_NUM_THREADS=$threads)"
  "$build/bin/bench_VolumeFrame" "${flags[@]}" --benchmark_filter='^BM_VolumeFrame_Dense/' \
    --benchmark_out="$out/corvane-$round.json"
  echo "== round $round/$rounds: VTK $(dpkg-query -W -f='${Version}' libvtk9-dev)," \
       "dense (Xvfb, llvmpipe, LP_NUM_THREADS=$threads)"
  xvfb-run -a -s "-screen 0 1024x768x24" \
    "$vtkdir/bench_VtkVolumeFrame" "${flags[@]}" --benchmark_out="$out/vtk-$round.json"
  echo "== round $round/$rounds: corvane, the other cases"
  "$build/bin/bench_VolumeFrame" "${flags[@]}" --benchmark_filter='-^BM_VolumeFrame_Dense/' \
    --benchmark_out="$out/others-$round.json"
  unset CORVANE_BENCH_PNG VTK_BENCH_PNG
done

python3 - "$out" "$threads" <<'EOF_PY'
import glob, json, os, statistics, sys

out, threads = sys.argv[1], sys.argv[2]
# per case: wall-clock and whole-process CPU time of a frame, all runs and by round
wall, cpu, rounds = {}, {}, {}
for path in sorted(glob.glob(os.path.join(out, "*.json"))):
    number = int(os.path.basename(path).split("-")[1].split(".")[0])
    for r in json.load(open(path))["benchmarks"]:
        if r.get("run_type") != "iteration" or r.get("error_occurred"):
            continue
        name = r["run_name"].split("/")[0]
        wall.setdefault(name, []).append(r["real_time"])
        cpu.setdefault(name, []).append(r.get("frame_cpu_ms", float("nan")))
        rounds.setdefault(number, {}).setdefault(name, []).append(r["real_time"])
med = {name: statistics.median(v) for name, v in wall.items()}
medCpu = {name: statistics.median(v) for name, v in cpu.items()}

print()
print("Frame times, 512x512, 256^3 8-bit, llvmpipe with %s threads; medians over all"
      " runs of the wall clock (with its range) and of the CPU time of all threads:" % threads)
for name in sorted(med):
    v = wall[name]
    print("  %-38s %8.1f ms wall (%d runs, %.1f to %.1f)  %8.1f ms CPU"
          % (name, med[name], len(v), min(v), max(v), medCpu[name]))
print()
def ratio(label, a, b, goal, table=med):
    if a in table and b in table:
        print("  %-38s %6.2f   (%s)" % (label, table[a] / table[b], goal))
ratio("ours / VTK, dense frame, wall", "BM_VolumeFrame_Dense", "BM_VtkVolumeFrame_Dense",
      "target <= 0.5")
# the two sides of one round ran back to back: their ratio is the least
# touched by a load that changes between rounds
paired = []
for number in sorted(rounds):
    r = rounds[number]
    if "BM_VolumeFrame_Dense" in r and "BM_VtkVolumeFrame_Dense" in r:
        paired.append(statistics.median(r["BM_VolumeFrame_Dense"]) /
                      statistics.median(r["BM_VtkVolumeFrame_Dense"]))
if paired:
    print("  %-38s %6.2f   (rounds: %s)" % ("ours / VTK, wall, median of the rounds",
          statistics.median(paired), ", ".join("%.2f" % p for p in paired)))
ratio("ours / VTK, dense frame, CPU", "BM_VolumeFrame_Dense", "BM_VtkVolumeFrame_Dense",
      "work per frame", medCpu)
ratio("simple / block skipping, sparse", "BM_VolumeFrame_SparseSimple",
      "BM_VolumeFrame_SparseBlockSkipping", "speed-up, target >= 2")
ratio("simple / boundary geometry, sparse", "BM_VolumeFrame_SparseSimple",
      "BM_VolumeFrame_SparseBoundarySimple", "speed-up of the default set-up")
ratio("interleaved / simple rays, dense", "BM_VolumeFrame_DenseInterleaved",
      "BM_VolumeFrame_Dense", "time ratio")
EOF_PY
