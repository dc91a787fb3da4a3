#!/usr/bin/env bash
# Installs the Debian packages that building and testing nvshared need,
# and only those that are missing. Sourced by demo.sh and test.sh; also
# runnable on its own (as root, or with sudo available).
set -euo pipefail

NVSHARED_PACKAGES=(
  cmake ninja-build g++ pkg-config
  libboost-dev libboost-regex-dev libboost-date-time-dev
  nlohmann-json3-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libquantlib0-dev
  libprotobuf-dev protobuf-compiler
)
# The coverage report (scripts/coverage.sh).
NVSHARED_COVERAGE_PACKAGES=(gcovr)
# The fuzz build: clang with its libFuzzer and sanitizer runtimes.
NVSHARED_FUZZ_PACKAGES=(clang libclang-rt-14-dev)

nvshared_install_packages() {
  local missing=()
  local p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' ||
      missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing missing packages: ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

if [ "${BASH_SOURCE[0]}" = "$0" ]; then
  nvshared_install_packages "${NVSHARED_PACKAGES[@]}" "${NVSHARED_FUZZ_PACKAGES[@]}"
fi
