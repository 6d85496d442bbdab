#!/usr/bin/env bash
# Volume frame time of corvane's ray caster next to VTK 9's GPU ray caster,
# both on Mesa's llvmpipe with the same number of rasteriser threads, in
# one run. Prints the medians and the ratios.
#
#   scripts/bench-vtk.sh [build-dir]
#
# Environment:
#   LP_NUM_THREADS  llvmpipe threads for both sides (default: nproc)
#   REPS            repetitions of each case (default 5)
#   MIN_TIME        seconds of frames per repetition (default 1)
#   BENCH_PNG=DIR   also write one frame of each case as PNG into DIR
#
# Installs libvtk9-dev, xvfb and xauth with apt-get when they are missing.
set -euo pipefail
cd "$(dirname "$0")/.."

build="${1:-build}"
threads="${LP_NUM_THREADS:-$(nproc)}"
reps="${REPS:-5}"
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
mkdir -p "$out"
flags=(--benchmark_repetitions="$reps" --benchmark_report_aggregates_only=true
       --benchmark_min_time="$min_time" --benchmark_out_format=json)

echo "== corvane (EGL, llvmpipe, LP_NUM_THREADS=$threads)"
"$build/bin/bench_VolumeFrame" "${flags[@]}" --benchmark_out="$out/corvane.json"

echo "== VTK $(dpkg-query -W -f='${Version}' libvtk9-dev) (Xvfb, llvmpipe, LP_NUM_THREADS=$threads)"
xvfb-run -a -s "-screen 0 1024x768x24" \
  "$vtkdir/bench_VtkVolumeFrame" "${flags[@]}" --benchmark_out="$out/vtk.json"

python3 - "$out/corvane.json" "$out/vtk.json" "$threads" <<'EOF'
import json, sys

def medians(path):
    runs = json.load(open(path))["benchmarks"]
    return {r["run_name"].split("/")[0]: r["real_time"] for r in runs
            if r.get("aggregate_name") == "median"}

ours, vtk, threads = medians(sys.argv[1]), medians(sys.argv[2]), sys.argv[3]
dense = ours.get("BM_VolumeFrame_Dense")
peer = vtk.get("BM_VtkVolumeFrame_Dense")
print()
print("Median frame times, 512x512, 256^3 8-bit, llvmpipe with %s threads:" % threads)
for name, ms in sorted(ours.items()) + sorted(vtk.items()):
    print("  %-40s %9.1f ms" % (name, ms))
print()
def ratio(label, a, b, goal):
    if a and b:
        print("  %-40s %9.2f   (%s)" % (label, a / b, goal))
ratio("ours / VTK, dense frame", dense, peer, "target <= 0.5")
ratio("simple / block skipping, sparse", ours.get("BM_VolumeFrame_SparseSimple"),
      ours.get("BM_VolumeFrame_SparseBlockSkipping"), "speed-up, target >= 2")
ratio("interleaved / simple rays, dense", ours.get("BM_VolumeFrame_DenseInterleaved"),
      dense, "time ratio")
EOF
