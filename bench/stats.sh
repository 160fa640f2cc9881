#!/usr/bin/env bash
# Statistics over a large collection against `wc -l` over the same files, in
# the same run and from the same (warm) page cache. The statistics read every
# line of every catalogue, as `wc -l` does, so wc is the floor to compare with.
#
#   bench/stats.sh [BUILD_DIR]     (default: build)
#   DISCS=2000 FOLDERS=2000 FILES=2000 RUNS=3 KEEP=1 bench/stats.sh build-edit
#
# Prints both times and the ratio statistics / wc (the target is <= 1.0).
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
[[ $build = /* ]] || build="$here/$build"
cli="$build/Cartulon/cartulon-cli"
[[ -x $cli ]] || { echo "no $cli: build the target cartulon-cli first" >&2; exit 2; }

discs=${DISCS:-2000}
folders=${FOLDERS:-2000}   # lines per catalogue; 2000 + 2000 is about 250 kB
files=${FILES:-2000}
runs=${RUNS:-3}
dir=$(mktemp -d "${TMPDIR:-/tmp}/cartulon-bench-stats.XXXXXX")
[[ -n ${KEEP:-} ]] || trap 'rm -rf "$dir"' EXIT

# One body shared by every disc; each disc gets a header of its own size, so
# the sum of the sizes is a check on the run as well.
body="$dir/body"
awk -v folders="$folders" -v files="$files" 'BEGIN {
    ORS = "\r\n"
    print ""
    for (i = 0; i < folders; i++)
        printf "\\Archiv %04d\\Unterordner %05d|R A|14.03.2003 09:12:%02d|Beschreibung %d\r\n", i % 50, i, i % 60, i
    print ""
    for (i = 0; i < files; i++)
        printf "\\Archiv %04d\\Unterordner %05d\\Datei %06d.jpg|%d|R A|14.03.2003 09:12:%02d|\r\n", i % 50, i, i, i * 7919, i % 60
}' > "$body"
mkdir "$dir/Daten"
expected=0
for ((d = 0; d < discs; d++)); do
    size=$((650000000 + d))
    expected=$((expected + size))
    { printf '%d|-1029197328|CDFS|319488|1|2048|Disc %d' "$size" "$d"; cat "$body"; } > "$dir/Daten/Disc $d.idx"
done
rm "$body"
bytes=$(du -sb "$dir/Daten" | cut -f1)
echo "collection: $discs catalogues, $((bytes / 1000000)) MB, $(( (folders + files + 3) * discs )) lines"

cat "$dir/Daten/"*.idx > /dev/null   # both sides read from the page cache

now() { date +%s%N; }
best_stats=0 best_wc=0
for ((r = 0; r < runs; r++)); do
    t0=$(now)
    LC_ALL=C "$cli" stats --data-folder "$dir/Daten" > "$dir/stats.out"
    t1=$(now)
    wc -l "$dir/Daten/"*.idx > "$dir/wc.out"
    t2=$(now)
    s=$((t1 - t0)) w=$((t2 - t1))
    ((best_stats == 0 || s < best_stats)) && best_stats=$s
    ((best_wc == 0 || w < best_wc)) && best_wc=$w
done

# The run must have counted what was generated, or its time means nothing.
grep -q "^.* $discs\$" "$dir/stats.out" || { echo "stats counted a different number of discs:" >&2; cat "$dir/stats.out" >&2; exit 1; }
grep -q "$expected Bytes" "$dir/stats.out" || { echo "stats summed a different size (want $expected):" >&2; cat "$dir/stats.out" >&2; exit 1; }
cat "$dir/stats.out"

awk -v s="$best_stats" -v w="$best_wc" 'BEGIN {
    printf "cartulon-cli stats: %8.1f ms (best of runs)\n", s / 1e6
    printf "wc -l             : %8.1f ms (best of runs)\n", w / 1e6
    printf "ratio stats / wc  : %8.2f  (target <= 1.0)\n", s / w
}'
