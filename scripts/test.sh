#!/usr/bin/env bash
# Builds Cartulon and runs every test (core, platform, windows on the
# offscreen platform).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)"
cd build && ctest --output-on-failure -j"$(nproc)"
