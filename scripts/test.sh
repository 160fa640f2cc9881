#!/usr/bin/env bash
# Builds Cartulon as the README tells users to (warnings as errors on top) and
# runs every test (core, platform, the CLI, windows on the offscreen platform).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S . -B build -DCARTULON_WERROR=ON "${launcher[@]}" >/dev/null
cmake --build build -j"$(nproc)"
scripts/test-share.sh
cd build && ctest --output-on-failure -j"$(nproc)"
