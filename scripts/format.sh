#!/usr/bin/env bash
# Formats every C and C++ file of the project in place; with --check only says which need it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

sources() {
  find . \( -path ./build -o -path ./out -o -path ./.git \) -prune -o -type f \
    \( -name '*.h' -o -name '*.c' -o -name '*.cpp' -o -name '*.inc' \) -print0
}

if [[ ${1:-} != --check ]]; then
  sources | xargs -0 -r -n 16 -P "$(nproc)" clang-format --style=file -i
  exit 0
fi

if ! complaints=$(sources | xargs -0 -r clang-format --style=file --dry-run -Werror 2>&1); then
  echo "Run scripts/format.sh for:"
  grep -oE '^[^: ]+:[0-9]+:[0-9]+: error' <<<"$complaints" | cut -d: -f1 | sort -u
  exit 1
fi
