#!/usr/bin/env bash
# Quick start, first command: installs what is missing, builds, and runs
# `nvtool demo` on the bundled sample data.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
nvshared_install_packages "${NVSHARED_PACKAGES[@]}"

cmake --preset dev >/dev/null
cmake --build --preset dev --target nvtool forward_yield
./build/dev/tools/nvtool/nvtool demo
