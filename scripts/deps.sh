#!/usr/bin/env bash
# Installs the Debian packages the project needs, only those that are missing.
set -euo pipefail

PACKAGES=(
  g++ cmake ninja-build python3 pkg-config
  libgtest-dev libbenchmark-dev
  libegl-dev libgl-dev libglu1-mesa-dev libegl-mesa0 libgl1-mesa-dri
  libpng-dev zlib1g-dev libbz2-dev libteem-dev libdcmtk-dev
  libstb-dev libsquish-dev
  libassimp-dev freeglut3-dev libx11-dev libglx-dev xvfb xauth xdotool x11-apps
  doxygen
  clang libclang-rt-14-dev
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing missing packages: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -q
$SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
