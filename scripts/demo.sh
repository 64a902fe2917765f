#!/usr/bin/env bash
# Builds the tool and applies some effects to a photo, or to a picture that it draws itself.
#
#   scripts/demo.sh [photo.jpg|photo.png]
#
# The results are in out/demo/.
set -euo pipefail
photo=${1:-}
if [[ -n $photo ]]; then
  if [[ ! -r $photo ]]; then
    echo "demo.sh: cannot read '$photo'" >&2
    exit 2
  fi
  photo=$(realpath "$photo")
fi
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh build tool
mkdir -p build/logs out/demo
echo "Building the tool ..."
if ! { cmake --preset release -DQPX_BUILD_TESTS=OFF -B build/demo && cmake --build build/demo --target qpx; } \
  >build/logs/demo.log 2>&1; then
  tail -n 60 build/logs/demo.log
  exit 1
fi
qpx=build/demo/tools/qpx/qpx

if [[ -z $photo ]]; then
  photo=out/demo/sample.png
  "$qpx" sample "$photo"
  echo "No photo given: drew one."
fi
echo "Photo: $photo"

# look NAME ARGUMENT...: one picture, by `qpx apply` with the effects and options given.
look() {
  local out=out/demo/$1.jpg words=()
  shift
  local options=()
  while (($# > 0)); do
    if [[ $1 == --* ]]; then
      options=("$@")
      break
    fi
    words+=("$1")
    shift
  done
  "$qpx" apply "${words[@]}" "$photo" "$out" "${options[@]}"
  echo "  $out: ${words[*]} ${options[*]}"
}

echo "Pictures:"
look brighter Fx1300:brightness=20,contrast=10
look warm-curve-nv21 Fx4800 --format nv21 --band 64
look cool-curve-i420 Fx4900 --format i420 --band 100
look solarised-half Fx2100 --strength 50
look grey-negative Fx1700 Fx1800 --format rgb565 --band 37
look exposure-rgba Fx4700 --format rgba32 --band 128

"$qpx" sheet "$photo" out/demo/sheet.png
echo "  out/demo/sheet.png: every effect side by side"

echo
echo "Compare them with the photo in out/demo. '$qpx list' shows all effects,"
echo "'$qpx apply --help' how to use them."
