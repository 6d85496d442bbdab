#!/usr/bin/env bash
# Writes the small NIfTI and DICOM samples: the 32^3 Shepp-Logan phantom as
# a gzip-compressed NIfTI-1 file (16 bit, slice thickness 1 1 2) and as a
# DICOM series of 32 slices (8 bit), both made by tools/makevolumes.
#
#   data/make-samples.sh [MAKEVOLUMES [OUT]]
#
# MAKEVOLUMES defaults to build/bin/makevolumes (build it with
# `cmake --build build --target makevolumes`), OUT to build/data/samples.
set -euo pipefail

makevolumes=${1:-build/bin/makevolumes}
out=${2:-build/data/samples}

if [ ! -x "$makevolumes" ]; then
  echo "make-samples.sh: $makevolumes is missing; build the target makevolumes" >&2
  exit 1
fi

mkdir -p "$out"
"$makevolumes" --out "$out" --size 32 --shapes phantom --bits 16 \
  --formats nii.gz --thickness "1 1 2"
"$makevolumes" --out "$out" --size 32 --shapes phantom --bits 8 --formats dicom

echo "wrote $out/phantom32_u16.nii.gz and $out/phantom32_u8_dicom/"
