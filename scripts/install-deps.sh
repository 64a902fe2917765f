#!/usr/bin/env bash
# Installs the Debian packages that the given groups need and that are missing. Without a group: all.
#
#   scripts/install-deps.sh [--list] [build|tool|tests|lint|fuzz|armhf|bench ...]
#
# --list prints the packages' names and installs nothing. Asks apt only when something is missing, as
# root or through sudo.
set -euo pipefail

declare -A packages=(
  [build]="g++ cmake ninja-build pkg-config libhwy-dev libpng-dev zlib1g-dev"
  [tool]="libjpeg-dev libcli11-dev libfreetype-dev libfontconfig-dev fonts-dejavu-core"
  [tests]="ccache libgtest-dev python3-minimal ffmpeg"
  [lint]="clang clang-format clang-tidy shellcheck"
  [fuzz]="clang libclang-rt-14-dev"
  [armhf]="g++-arm-linux-gnueabihf qemu-user"
  [bench]="libbenchmark-dev libopencv-core-dev libopencv-imgproc-dev libopencv-photo-dev libyuv-dev libswscale-dev libboost-graph-dev etc1tool"
)
order=(build tool tests lint fuzz armhf bench)

list_only=false
if [[ ${1:-} == --list ]]; then
  list_only=true
  shift
fi
groups=("$@")
if ((${#groups[@]} == 0)); then
  groups=("${order[@]}")
fi

wanted=()
for group in "${groups[@]}"; do
  if [[ ! -v packages[$group] ]]; then
    echo "install-deps.sh: no group '$group'; there are: ${order[*]}" >&2
    exit 2
  fi
  read -ra names <<<"${packages[$group]}"
  wanted+=("${names[@]}")
done

if $list_only; then
  printf '%s\n' "${wanted[@]}" | sort -u
  exit 0
fi

if ! command -v apt-get >/dev/null; then
  echo "install-deps.sh: no apt here. Install what Debian calls: ${wanted[*]}" >&2
  exit 1
fi

missing=()
for name in "${wanted[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null || true)
  [[ $status == installed ]] || missing+=("$name")
done
((${#missing[@]} > 0)) || exit 0

as_root=()
if ((EUID != 0)); then
  if ! command -v sudo >/dev/null; then
    echo "install-deps.sh: run as root or install sudo; missing: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT

apt_get() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -qq -o Acquire::Retries=3 "$@" \
    </dev/null >>"$log" 2>&1
}

install_missing() {
  apt_get install --yes --no-install-recommends "${missing[@]}"
}

# Package lists may be absent or older than what the mirror still keeps, so a failure is followed by
# one more try with fresh ones.
echo "Installing ${missing[*]}"
if ! install_missing; then
  if ! apt_get update || ! install_missing; then
    cat "$log" >&2
    echo "install-deps.sh: apt could not install: ${missing[*]}" >&2
    exit 1
  fi
fi
