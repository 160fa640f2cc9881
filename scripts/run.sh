#!/usr/bin/env bash
# Installs what is missing, builds Cartulon and starts it on its staged
# program folder build/Cartulon (settings, texts, help and Daten/ beside it).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)"
exec build/Cartulon/cartulon "$@"
