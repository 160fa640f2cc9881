#!/usr/bin/env bash
# The search and the statistics against grep and wc over the same files.
#
# Two data shapes, random names, sizes, dates and descriptions (bench/gen.awk):
#   large  LARGE_DISCS catalogues of about LARGE_FILES files each
#   small  SMALL_DISCS catalogues of about SMALL_FILES files each
# Every search row runs `cartulon-cli search ...` and `LC_ALL=C grep -c -i -F
# Xylophon` over the same catalogues, the statistics row `cartulon-cli stats`
# and `wc -l`; both sides interleaved (A B B A ...) by bench/cputime, RUNS
# times, CPU time (user + system, median) and wall time (median) reported.
# Every term stays far under the hit limit, and each row's hit count is shown.
#
# usage: bench/search.sh BUILD_DIR    (env: RUNS=7 LARGE_DISCS=40 LARGE_FILES=20000
#                                            SMALL_DISCS=3000 SMALL_FILES=150)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
CLI=$build/Cartulon/cartulon-cli
TIMER=$build/bench/cputime
RUNS=${RUNS:-7}
[ -x "$CLI" ] && [ -x "$TIMER" ] || { echo "build the targets cartulon-cli and cputime first" >&2; exit 2; }

WORK=$(mktemp -d "${TMPDIR:-/tmp}/ct_search_bench.XXXXXX")
trap 'rm -rf "$WORK"' EXIT

shape() {  # shape NAME DISCS FILES FOLDERS SEED
    mkdir -p "$WORK/$1"
    awk -v discs="$2" -v files="$3" -v folders="$4" -v dir="$WORK/$1" -v seed="$5" -f "$here/gen.awk"
    echo "$1: $2 catalogues, $(du -sm "$WORK/$1" | cut -f1) MB, $(cat "$WORK/$1"/*.idx | wc -l) lines" >&2
}
shape large "${LARGE_DISCS:-40}" "${LARGE_FILES:-20000}" 1500 7
shape small "${SMALL_DISCS:-3000}" "${SMALL_FILES:-150}" 20 8

GREP=(env LC_ALL=C grep -c -i -F Xylophon)
row() {  # row SHAPE TARGET FIGURE REFNAME -- OURS... -- REF...
    local name=$1 data=$WORK/$1 target=$2 figure=$3 refname=$4; shift 4
    cat "$data"/*.idx > /dev/null
    local t
    t=$("$TIMER" "$RUNS" "$WORK/out" "$@")
    local hits
    hits=$(wc -l < "$WORK/out.a")
    read -r acpu _ awall _ bcpu _ bwall _ <<< "$t"
    awk -v f="$figure ($name, $hits lines out)" -v ac="$acpu" -v aw="$awall" -v bc="$bcpu" -v bw="$bwall" \
        -v ref="$refname" -v tg="$target" 'BEGIN {
        printf "%s|%.1f ms cpu, %.1f ms wall|%.1f ms cpu, %.1f ms wall (%s)|%.2f cpu, %.2f wall|%s\n",
            f, ac, aw, bc, bw, ref, ac / bc, aw / bw, tg }'
}
search_rows() {
    local s=$1 d=$WORK/$1
    local ref="grep -c -i -F"
    for op in contains begins ends equal; do
        row "$s" "<= 0.6" "search, name $op Xylophon" "$ref" -- "$CLI" search --name $op Xylophon --data-folder "$d" \
            -- "${GREP[@]}" "$d"/*.idx
    done
    row "$s" "<= 1.0" "search, date equal 14.03.2003 09:12:40" "$ref" -- "$CLI" search --kind files --date equal "14.03.2003 09:12:40" \
        --data-folder "$d" -- "${GREP[@]}" "$d"/*.idx
    row "$s" "<= 1.0" "search, description contains Xylophon" "$ref" -- "$CLI" search --kind files --description contains Xylophon \
        --data-folder "$d" -- "${GREP[@]}" "$d"/*.idx
    row "$s" "<= 1.0" "search, size greater 2100000000" "$ref" -- "$CLI" search --kind files --size greater 2100000000 \
        --data-folder "$d" -- "${GREP[@]}" "$d"/*.idx
    row "$s" "<= 1.0" "statistics" "wc -l" -- "$CLI" stats --data-folder "$d" -- wc -l "$d"/*.idx
}
for s in large small; do search_rows "$s"; done > "$WORK/rows"
cat "$WORK/rows"
[ -z "${BENCH_ROWS:-}" ] || cat "$WORK/rows" >> "$BENCH_ROWS"
