#!/usr/bin/env bash
# Builds and tests everything, on a fresh Debian 12 too: missing packages are installed first.
#
#   scripts/test.sh [step ...]
#
# Without a step all run, in this order:
#   format   clang-format has nothing to change, shellcheck nothing to say
#   headers  every public header compiles alone, as C11 and as C++11
#   release  optimised build and all tests
#   stack    the library's tests once more on a stack of 128 KiB
#   asan     all tests with the address and undefined-behaviour sanitizers
#   tsan     the tests that start threads with the thread sanitizer
#   armhf    the library and its tests for 32-bit ARM, under qemu-arm
#   fuzz     every fuzzer for a short time (clang, sanitizers)
#   tidy     clang-tidy over library and tool
#   install  a C program against the installed tree; exported names are those of the headers
#
# The first failing step ends the run. What a step printed is in build/logs/. The last line is
# "N passed, N failed": GoogleTest cases, and 1 for every other check.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

all_steps=(format headers release stack asan tsan armhf fuzz tidy install)
steps=("$@")
if ((${#steps[@]} == 0)); then
  steps=("${all_steps[@]}")
fi
for step in "${steps[@]}"; do
  if [[ " ${all_steps[*]} " != *" $step "* ]]; then
    echo "test.sh: no step '$step'; there are: ${all_steps[*]}" >&2
    exit 2
  fi
done

logs=$PWD/build/logs
mkdir -p "$logs"
jobs=$(nproc)

# Each step runs in a shell of its own, where the first failing command ends it. passed NUMBER and
# failed NUMBER add to what it counts.
passed() { echo "$1 0" >>"$logs/$step.counts"; }
failed() { echo "0 $1" >>"$logs/$step.counts"; }

build() {
  cmake --preset "$1"
  cmake --build --preset "$1" -j "$jobs" "${@:2}"
}

# Runs the preset's tests with ctest's further arguments. ctest knows executables; the cases in
# them are counted from what GoogleTest printed. A case that was skipped or disabled is a failure.
run_tests() {
  local preset=$1 code=0 totals skipped
  shift
  ctest --preset "$preset" -j "$jobs" "$@" || code=$?
  totals=$(awk '
    /^[0-9]+\/[0-9]+ Testing: / { good = 0; bad = 0 }
    /^\[  PASSED  \] [0-9]+ test/ { good = $4 }
    /^\[  FAILED  \] [0-9]+ tests?, listed/ { bad = $4 }
    /^Test Passed\.$/ { passed += good > 0 ? good : 1 }
    /^Test Failed\.$|^Test (timeout|Timeout)|^Unable to find/ { passed += good; failed += bad > 0 ? bad : 1 }
    END { print passed + 0, failed + 0 }' "build/$preset/Testing/Temporary/LastTest.log")
  passed "${totals% *}"
  if ((code != 0)); then
    failed "$((${totals#* } > 0 ? ${totals#* } : 1))"
    return 1
  fi
  skipped=$(grep -cE '^\[  SKIPPED \] .* ms\)|YOU HAVE [0-9]+ DISABLED' \
    "build/$preset/Testing/Temporary/LastTest.log" || true)
  if ((skipped > 0)); then
    echo "$skipped tests are skipped or disabled"
    failed "$skipped"
    return 1
  fi
}

step_format() {
  scripts/format.sh --check
  shellcheck scripts/*.sh .ci/run
  passed 2
}

step_headers() {
  local header name
  for header in include/kesbase.h include/qpx/*.h; do
    name=${header#include/}
    printf '#include <%s>\nint not_empty;\n' "$name" |
      gcc -std=c11 -x c -fsyntax-only -Wall -Wextra -pedantic -Werror -Iinclude -
    printf '#include <%s>\n' "$name" |
      g++ -std=c++11 -x c++ -fsyntax-only -Wall -Wextra -pedantic -Werror -Iinclude -
    passed 1
  done
}

step_release() {
  build release
  run_tests release
}

step_stack() {
  build release
  ulimit -s 128
  run_tests release -LE '^tool$'
}

step_asan() {
  build asan
  run_tests asan
}

step_tsan() {
  build tsan --target thread_tests
  run_tests tsan
}

step_armhf() {
  scripts/armhf-sysroot.sh
  build armhf
  run_tests armhf
}

# One fuzzer, with its output in a log of its own.
run_fuzzer() {
  local fuzzer=$1 name=${1##*/fuzz_} corpora
  corpora=("build/fuzz/corpus/$name")
  mkdir -p "${corpora[0]}"
  if [[ -d fuzz/seeds/$name ]]; then
    corpora+=("fuzz/seeds/$name")
  fi
  "$fuzzer" -seed=1 -runs=20000 -len_control=0 -max_total_time=20 -timeout=30 -rss_limit_mb=4096 \
    -artifact_prefix="build/fuzz/$name-" "${corpora[@]}" >"build/logs/fuzz-$name.log" 2>&1 || {
    echo "$fuzzer failed:"
    tail -n 40 "build/logs/fuzz-$name.log"
    return 1
  }
}

step_fuzz() {
  local fuzzers
  build fuzz
  # A request that cannot be served must come back to the library as on a device.
  export ASAN_OPTIONS=allocator_may_return_null=1
  mapfile -t fuzzers < <(find build/fuzz/fuzz -maxdepth 1 -type f -executable -name 'fuzz_*' | sort)
  if ((${#fuzzers[@]} == 0)); then
    echo "no fuzzers were built"
    return 1
  fi
  export -f run_fuzzer
  # shellcheck disable=SC2016 # expands in the shell that is started
  printf '%s\0' "${fuzzers[@]}" | xargs -0 -P "$jobs" -I '{}' bash -c 'run_fuzzer "$1"' - '{}'
  passed "${#fuzzers[@]}"
}

step_tidy() {
  local files
  # The commands, and what sources are generated, are written without a build.
  cmake --preset tidy
  mapfile -t files < <(sed -nE "s#^ *\"file\": \"($PWD/(src|tools)/.*)\",?\$#\1#p" \
    build/tidy/compile_commands.json | sort -u)
  ((${#files[@]} > 0))
  # The public headers are C, where half of the checks' advice does not hold.
  printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$jobs" clang-tidy -p build/tidy --quiet --header-filter="^$PWD/(src|tools)/"
  passed "${#files[@]}"
}

step_install() {
  local prefix=$PWD/build/install-check library
  build release
  rm -rf "$prefix"
  cmake --install build/release --prefix "$prefix/tree"
  library=$(find "$prefix/tree" -name libqpxengine.so)

  echo "-- names"
  nm -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort >"$prefix/exported"
  sed -n 's/^    \([A-Za-z_0-9]*\);$/\1/p' build/release/qpxengine.map | sort >"$prefix/declared"
  diff -u "$prefix/declared" "$prefix/exported"
  readelf -d "$library" | grep -F 'soname: [libqpxengine.so.1]'
  passed 2

  echo "-- find_package"
  cmake -S tests/install -B "$prefix/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix/tree"
  cmake --build "$prefix/consumer"
  "$prefix/consumer/consumer"
  passed 1

  echo "-- pkg-config, from a tree that has moved"
  mv "$prefix/tree" "$prefix/moved"
  library=${library/"$prefix/tree"/"$prefix/moved"}
  local libdir flags
  libdir=$(dirname "$library")
  read -ra flags < <(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs qpxengine)
  gcc -std=c11 -Wall -Wextra -pedantic -Werror tests/install/consumer.c "${flags[@]}" -o "$prefix/by_pkg_config"
  LD_LIBRARY_PATH=$libdir "$prefix/by_pkg_config"
  "$prefix/moved/bin/qpx" --version
  passed 2
}

declare -A groups=(
  [format]="lint" [headers]="build" [release]="build tool tests" [stack]="build tool tests"
  [asan]="build tool tests" [tsan]="build tests" [armhf]="build tests armhf"
  [fuzz]="build tests fuzz" [tidy]="build tool lint" [install]="build tool tests"
)
needed=()
for step in "${steps[@]}"; do
  read -ra names <<<"${groups[$step]}"
  needed+=("${names[@]}")
done
scripts/install-deps.sh "${needed[@]}"

total_passed=0
total_failed=0
table=()
for step in "${steps[@]}"; do
  printf '%-8s ' "$step"
  started=$SECONDS
  : >"$logs/$step.counts"
  set +e
  (
    set -e
    "step_$step"
  ) >"$logs/$step.log" 2>&1 </dev/null
  code=$?
  set -e
  read -r good bad < <(awk '{ p += $1; f += $2 } END { print p + 0, f + 0 }' "$logs/$step.counts")
  if ((code != 0 && bad == 0)); then
    bad=1
  fi
  total_passed=$((total_passed + good))
  total_failed=$((total_failed + bad))
  table+=("$(printf '%-8s %5d s %7d passed %5d failed' "$step" $((SECONDS - started)) "$good" "$bad")")
  if ((code != 0)); then
    echo "FAILED after $((SECONDS - started)) s; the end of build/logs/$step.log:"
    tail -n 80 "$logs/$step.log"
    break
  fi
  echo "ok, $good passed, $((SECONDS - started)) s"
done

echo
printf '%s\n' "${table[@]}"
echo "total    $(printf '%5d' "$SECONDS") s on $jobs processors"
echo "$total_passed passed, $total_failed failed"
((total_failed == 0))
