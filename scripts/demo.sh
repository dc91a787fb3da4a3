#!/usr/bin/env bash
# Quick start, first command: installs what is missing, builds, runs
# `nvtool demo` on the bundled sample data, then installs the package into
# build/dev/demo-install and builds and runs examples/host against it, as a
# new host would be built.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
nvshared_install_packages "${NVSHARED_PACKAGES[@]}"

cmake --preset dev >/dev/null
cmake --build --preset dev --target nvtool forward_yield
./build/dev/tools/nvtool/nvtool demo

echo
echo "== examples/host, built against the installed package"
prefix="$PWD/build/dev/demo-install"
cmake --install build/dev --prefix "$prefix" >/dev/null
cmake -S examples/host -B build/dev/example-host -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build build/dev/example-host >/dev/null
plugin=$(find "$prefix" -name forward_yield.so | head -n 1)
work=$(mktemp -d "${TMPDIR:-/tmp}/nvshared-host.XXXXXX")
./build/dev/example-host/host --quiet data "$work" "$plugin"
