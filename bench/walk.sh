#!/usr/bin/env bash
# Adding a disc against find over the same tree.
#
# Builds a tree of FOLDERS_TOP x FOLDERS_SUB folders with FILES_PER files in
# each leaf (2,550 folders and 30,600 files with the defaults) in a scratch
# folder, warms the cache, then times
#   cartulon-cli add ROOT --label ...      (walk, volume query, catalogue written and synced)
# against
#   find ROOT -printf '%B@ %s %m %p\n'     (a stat per entry, output dropped)
# interleaved, RUNS times each. Prints both times, the ratio (ours /
# find's; below 1.0 means faster) and the peak memory of both when
# /usr/bin/time is there.
#
# usage: bench/walk.sh [path/to/cartulon-cli]   (env: FOLDERS_TOP=50 FOLDERS_SUB=50 FILES_PER=12 RUNS=11)
set -euo pipefail

CLI=${1:-$(dirname "$0")/../build/Cartulon/cartulon-cli}
FOLDERS_TOP=${FOLDERS_TOP:-50}
FOLDERS_SUB=${FOLDERS_SUB:-50}
FILES_PER=${FILES_PER:-12}
RUNS=${RUNS:-11}
[ -x "$CLI" ] || { echo "no cartulon-cli at $CLI (build the target cartulon-cli first)" >&2; exit 2; }

WORK=$(mktemp -d "${TMPDIR:-/tmp}/ct_walk_bench.XXXXXX")
trap 'rm -rf "$WORK"' EXIT
ROOT=$WORK/disc
DATA=$WORK/Daten
mkdir -p "$ROOT" "$DATA"

echo "building the tree in $ROOT ..."
awk -v top="$FOLDERS_TOP" -v sub_="$FOLDERS_SUB" -v root="$ROOT" 'BEGIN {
    for (t = 0; t < top; t++) for (s = 0; s < sub_; s++)
        printf "%s/Ordner%03d/Unterordner %03d\n", root, t, s }' | xargs -d '\n' mkdir -p
awk -v top="$FOLDERS_TOP" -v sub_="$FOLDERS_SUB" -v per="$FILES_PER" -v root="$ROOT" 'BEGIN {
    split("jpg htm txt doc pdf mp3", ext, " ");
    for (t = 0; t < top; t++) for (s = 0; s < sub_; s++) for (f = 0; f < per; f++)
        printf "%s/Ordner%03d/Unterordner %03d/Datei_%02d.%s\n", root, t, s, f, ext[1 + f % 6] }' |
    xargs -d '\n' touch
FOLDERS=$(find "$ROOT" -mindepth 1 -type d | wc -l)
FILES=$(find "$ROOT" -type f | wc -l)
echo "tree: $FOLDERS folders, $FILES files"

warm() { find "$ROOT" > /dev/null; }

# Both sides interleaved (A B B A ...) by bench/cputime, RUNS times each, CPU
# time (user + system, from wait4) and wall time, median and best. Each side
# starts through a shell of its own, which gives ours a label of its own.
TIMER=${TIMER:-$(dirname "$CLI")/../bench/cputime}
[ -x "$TIMER" ] || { echo "no $TIMER (build the target cputime first)" >&2; exit 2; }

# Peak resident set of one run in KiB, or "-" without /usr/bin/time.
peak_kib() {
    if [ -x /usr/bin/time ]; then
        rm -f "$DATA"/*.idx
        /usr/bin/time -v "$@" 2>&1 >/dev/null | awk -F: '/Maximum resident set size/ { gsub(/ /, "", $2); print $2 }'
    else
        echo "-"
    fi
}

warm
read -r C_OURS C_OURS_MIN T_OURS T_OURS_MIN C_REF C_REF_MIN T_REF T_REF_MIN _ <<< "$("$TIMER" "$RUNS" "$WORK/out" \
    -- bash -c 'exec "$0" add "$1" --label "Lauf $$" --data-folder "$2"' "$CLI" "$ROOT" "$DATA" \
    -- bash -c 'exec find "$0" -printf "%B@ %s %m %p\n"' "$ROOT")"
M_OURS=$(peak_kib "$CLI" add "$ROOT" --label "Speicher" --data-folder "$DATA")
CATALOGUE_LINES=$("$CLI" show "Speicher" --data-folder "$DATA" | awk -F': ' '/^folders:/ { f = $2 } /^files:/ { g = $2 } END { print f " folders, " g " files" }')
M_REF=$(peak_kib find "$ROOT" -printf '%B@ %s %m %p\n')

echo "catalogue: $CATALOGUE_LINES"
echo "median of $RUNS (best)        cpu ms             wall ms      peak KiB"
printf 'ours (cartulon-cli add)  %7.1f (%7.1f)  %7.1f (%7.1f)  %9s\n' "$C_OURS" "$C_OURS_MIN" "$T_OURS" "$T_OURS_MIN" "$M_OURS"
printf "reference (find -printf) %7.1f (%7.1f)  %7.1f (%7.1f)  %9s\n" "$C_REF" "$C_REF_MIN" "$T_REF" "$T_REF_MIN" "$M_REF"
printf 'ratio ours / reference   %7.2f cpu, %.2f wall   (target <= 1.0)\n' \
    "$(echo "$C_OURS / $C_REF" | bc -l)" "$(echo "$T_OURS / $T_REF" | bc -l)"

# One row for bench/run's table: figure|ours|reference|ratio|target.
if [ -n "${BENCH_ROWS:-}" ]; then
    printf 'walk, %s (cartulon-cli add)|%.1f ms cpu, %.1f ms wall, %s KiB peak|%.1f ms cpu, %.1f ms wall, %s KiB (find -printf)|%.2f cpu, %.2f wall|<= 1.0\n' \
        "$CATALOGUE_LINES" "$C_OURS" "$T_OURS" "$M_OURS" "$C_REF" "$T_REF" "$M_REF" \
        "$(echo "$C_OURS / $C_REF" | bc -l)" "$(echo "$T_OURS / $T_REF" | bc -l)" >> "$BENCH_ROWS"
fi
