#!/usr/bin/env bash
# Quick start, second command, and what CI runs: installs what is missing,
# then builds and runs every test: a normal build (with the package and tool
# tests), AddressSanitizer + UndefinedBehaviorSanitizer, ThreadSanitizer for
# the concurrency tests, a plain Release configure as a packager runs it
# (library and nvtool), and a short run of each fuzzer. Set
# NVSHARED_FUZZ_SECONDS to change how long (default 30 per target). Ends
# with the time each stage took.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
nvshared_install_packages "${NVSHARED_PACKAGES[@]}" "${NVSHARED_FUZZ_PACKAGES[@]}"

jobs=$(nproc)
timings=()
stage_name=""
stage_start=0
section() {
  stage_end
  stage_name="$*"
  stage_start=$SECONDS
  printf '\n==== %s\n' "$*"
}
stage_end() {
  if [ -n "$stage_name" ]; then
    timings+=("$(printf '%5d s  %s' $((SECONDS - stage_start)) "$stage_name")")
  fi
  stage_name=""
}

section "normal build"
cmake --preset dev >/dev/null
cmake --build --preset dev -j "$jobs"
ctest --preset dev -j "$jobs"

section "AddressSanitizer + UndefinedBehaviorSanitizer"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
cmake --preset asan-ubsan >/dev/null
cmake --build --preset asan-ubsan -j "$jobs"
ctest --preset asan-ubsan -j "$jobs"

section "ThreadSanitizer: concurrency tests"
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1
cmake --preset tsan >/dev/null
cmake --build --preset tsan -j "$jobs" --target concurrency_tests
ctest --preset tsan -j "$jobs"

section "plain Release configure, as a packager builds"
# No preset and no options: warnings are not errors, the build type is
# Release by default, and the library and the tool must build.
cmake -S . -B build/release -G Ninja >/dev/null
grep -q '^CMAKE_BUILD_TYPE:STRING=Release$' build/release/CMakeCache.txt
cmake --build build/release -j "$jobs" --target nvshared nvtool
build/release/tools/nvtool/nvtool --version

section "fuzzers: ${NVSHARED_FUZZ_SECONDS:-30} s each"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$jobs"
for fuzzer in build/fuzz/fuzz/*_fuzzer; do
  name=$(basename "$fuzzer" _fuzzer)
  work=$(mktemp -d)
  cp fuzz/corpus/"$name"/* "$work"/
  "$fuzzer" -max_total_time="${NVSHARED_FUZZ_SECONDS:-30}" -print_final_stats=0 \
    "$work" 2>&1 | tail -n 2
  rm -rf "$work"
done
stage_end

section "all builds passed"
stage_name=""
printf '%s\n' "${timings[@]}"
printf '%5d s  in all\n' "$SECONDS"
