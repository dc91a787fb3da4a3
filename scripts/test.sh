#!/usr/bin/env bash
# Quick start, second command, and what CI runs: installs what is missing,
# then builds and runs every test in three builds: a normal one (with the
# package and tool tests), AddressSanitizer + UndefinedBehaviorSanitizer, and
# ThreadSanitizer for the concurrency tests; then gives each fuzzer a short
# run. Set NVSHARED_FUZZ_SECONDS to change how long (default 30 per target).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
nvshared_install_packages "${NVSHARED_PACKAGES[@]}" "${NVSHARED_FUZZ_PACKAGES[@]}"

jobs=$(nproc)
section() { printf '\n==== %s\n' "$*"; }

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
cmake --build --preset tsan -j "$jobs"
ctest --preset tsan -j "$jobs"

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

section "all builds passed"
