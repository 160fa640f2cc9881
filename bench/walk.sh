#!/usr/bin/env bash
# Adding a disc against find over the same tree.
#
# Builds a tree of FOLDERS_TOP x FOLDERS_SUB folders with FILES_PER files in
# each leaf (2,550 folders and 30,600 files with the defaults) in a scratch
# folder, warms the cache, then times
#   cartulon-cli add ROOT --label ...      (walk, volume query, catalogue written)
# against
#   find ROOT -printf '%B@ %s %m %p\n'     (the same stat per entry, output dropped)
# best of RUNS each, in the same run. Prints both times, the ratio (ours /
# find's; below 1.0 means faster) and the peak memory of both when
# /usr/bin/time is there.
#
# usage: bench/walk.sh [path/to/cartulon-cli]   (env: FOLDERS_TOP=50 FOLDERS_SUB=50 FILES_PER=12 RUNS=5)
set -euo pipefail

CLI=${1:-$(dirname "$0")/../build/Cartulon/cartulon-cli}
FOLDERS_TOP=${FOLDERS_TOP:-50}
FOLDERS_SUB=${FOLDERS_SUB:-50}
FILES_PER=${FILES_PER:-12}
RUNS=${RUNS:-5}
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

# Best of RUNS runs of the command given: wall-clock seconds and CPU seconds
# (user + system), each the best on its own. On a shared, loaded machine the
# CPU time is the steadier figure; both are printed.
best_of() {
    local best_wall="" best_cpu="" r wall cpu
    for ((i = 0; i < RUNS; i++)); do
        before_each
        r=$( { TIMEFORMAT='%R %U %S'; time "$@" > /dev/null 2>&1; } 2>&1 )
        wall=$(echo "$r" | awk '{ print $1 }')
        cpu=$(echo "$r" | awk '{ print $2 + $3 }')
        if [ -z "$best_wall" ] || [ "$(echo "$wall < $best_wall" | bc -l)" = 1 ]; then best_wall=$wall; fi
        if [ -z "$best_cpu" ] || [ "$(echo "$cpu < $best_cpu" | bc -l)" = 1 ]; then best_cpu=$cpu; fi
    done
    echo "$best_wall $best_cpu"
}

# Peak resident set of one run in KiB, or "-" without /usr/bin/time.
peak_kib() {
    if [ -x /usr/bin/time ]; then
        before_each
        /usr/bin/time -v "$@" 2>&1 >/dev/null | awk -F: '/Maximum resident set size/ { gsub(/ /, "", $2); print $2 }'
    else
        echo "-"
    fi
}

RUN=0
ours() { RUN=$((RUN + 1)); "$CLI" add "$ROOT" --label "Lauf $RUN" --data-folder "$DATA"; }
reference() { find "$ROOT" -printf '%B@ %s %m %p\n'; }
before_each() { rm -f "$DATA"/*.idx; }

warm
reference > /dev/null
ours > /dev/null
read -r T_OURS C_OURS <<< "$(best_of ours)"
read -r T_REF C_REF <<< "$(best_of reference)"
M_OURS=$(peak_kib "$CLI" add "$ROOT" --label "Speicher" --data-folder "$DATA")
CATALOGUE_LINES=$("$CLI" show "Speicher" --data-folder "$DATA" | awk -F': ' '/^(folders|files):/ { s = s $2 " " } END { print s }')
M_REF=$(peak_kib find "$ROOT" -printf '%B@ %s %m %p\n')

echo "catalogue: folders files = $CATALOGUE_LINES"
echo "best of $RUNS            wall s     cpu s   peak KiB"
printf 'ours (cartulon-cli add)  %8.3f  %8.3f  %9s\n' "$T_OURS" "$C_OURS" "$M_OURS"
printf "reference (find -printf) %8.3f  %8.3f  %9s\n" "$T_REF" "$C_REF" "$M_REF"
printf 'ratio ours / reference   %8.2f  %8.2f   (target <= 1.0)\n' \
    "$(echo "$T_OURS / $T_REF" | bc -l)" "$(echo "$C_OURS / $C_REF" | bc -l)"

# One row for bench/run's table: figure|ours|reference|ratio|target.
if [ -n "${BENCH_ROWS:-}" ]; then
    printf 'walk %s files (cartulon-cli add)|%.3f s|%.3f s (find -printf)|%.2f|<= 1.0\n' \
        "$CATALOGUE_LINES" "$T_OURS" "$T_REF" "$(echo "$T_OURS / $T_REF" | bc -l)" >> "$BENCH_ROWS"
fi
