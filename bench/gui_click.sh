#!/usr/bin/env bash
# The main window's click and start times, offscreen, against cat and find.
# usage: bench/gui_click.sh [build folder] [runs]
set -euo pipefail
BUILD=${1:-$(dirname "$0")/../build}
cmake --build "$BUILD" --target gui_bench -j2 >/dev/null
QT_QPA_PLATFORM=offscreen "$BUILD/bench/gui_bench" "${2:-7}"
