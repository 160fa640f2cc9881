#!/usr/bin/env bash
# Statistics over a large collection against `wc -l` over the same files, in
# the same run and from the same (warm) page cache. The statistics read every
# line of every catalogue, as `wc -l` does, so wc is the floor to compare with.
#
#   bench/stats.sh [BUILD_DIR]     (default: build)
#   DISCS=2000 FOLDERS=2000 FILES=2000 RUNS=3 KEEP=1 bench/stats.sh build-edit
#
# Prints wall and CPU times of both and the ratios statistics / wc (target
# <= 1.0).
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
[[ $build = /* ]] || build="$here/$build"
cli="$build/Cartulon/cartulon-cli"
[[ -x $cli ]] || { echo "no $cli: build the target cartulon-cli first" >&2; exit 2; }

discs=${DISCS:-2000}
folders=${FOLDERS:-1600}   # lines per catalogue; 1600 + 1600 is about 250 kB
files=${FILES:-1600}
runs=${RUNS:-5}
dir=$(mktemp -d "${TMPDIR:-/tmp}/cartulon-bench-stats.XXXXXX")
[[ -n ${KEEP:-} ]] || trap 'rm -rf "$dir"' EXIT

# One body shared by every disc, built once in awk and written behind a
# header of each disc's own size, so the sum of the sizes checks the run too.
mkdir "$dir/Daten"
awk -v discs="$discs" -v folders="$folders" -v files="$files" -v out="$dir/Daten" 'BEGIN {
    body = "\r\n"
    for (i = 0; i < folders; i++)
        body = body sprintf("\\Archiv %04d\\Unterordner %05d|R A|14.03.2003 09:12:%02d|Beschreibung %d\r\n", i % 50, i, i % 60, i)
    body = body "\r\n"
    for (i = 0; i < files; i++)
        body = body sprintf("\\Archiv %04d\\Unterordner %05d\\Datei %06d.jpg|%d|R A|14.03.2003 09:12:%02d|\r\n", i % 50, i, i, i * 7919, i % 60)
    for (d = 0; d < discs; d++) {
        f = out "/Disc " d ".idx"
        printf "%d|-1029197328|CDFS|319488|1|2048|Disc %d\r\n%s", 650000000 + d, d, body > f
        close(f)
    }
}'
expected=$((650000000 * discs + discs * (discs - 1) / 2))
bytes=$(du -sb "$dir/Daten" | cut -f1)
echo "collection: $discs catalogues, $((bytes / 1000000)) MB, $(( (folders + files + 3) * discs )) lines"

cat "$dir/Daten/"*.idx > /dev/null   # both sides read from the page cache

# Wall time and CPU time (user + system) of each side; best of the runs.
# The machine may be shared, so the CPU time is the steadier measure.
timed() {  # timed OUTFILE CMD...: prints "wall_ms cpu_ms"
    local out=$1; shift
    /usr/bin/time -f "%e %U %S" -o "$dir/time" "$@" > "$out"
    awk '{ printf "%d %d\n", $1 * 1000, ($2 + $3) * 1000 }' "$dir/time"
}
best() { (( $2 == 0 || $1 < $2 )) && echo "$1" || echo "$2"; }
sw=0 sc=0 ww=0 wc_cpu=0
for ((r = 0; r < runs; r++)); do
    read -r w c < <(timed "$dir/stats.out" env LC_ALL=C "$cli" stats --data-folder "$dir/Daten")
    sw=$(best "$w" "$sw"); sc=$(best "$c" "$sc")
    read -r w c < <(timed "$dir/wc.out" wc -l "$dir/Daten/"*.idx)
    ww=$(best "$w" "$ww"); wc_cpu=$(best "$c" "$wc_cpu")
done

# The run must have counted what was generated, or its time means nothing.
grep -q "^.* $discs\$" "$dir/stats.out" && grep -q " $((folders * discs))\$" "$dir/stats.out" || { echo "stats counted different discs or folders:" >&2; cat "$dir/stats.out" >&2; exit 1; }
grep -q "$expected Bytes" "$dir/stats.out" || { echo "stats summed a different size (want $expected):" >&2; cat "$dir/stats.out" >&2; exit 1; }
cat "$dir/stats.out"

awk -v sw="$sw" -v sc="$sc" -v ww="$ww" -v wcc="$wc_cpu" 'BEGIN {
    printf "                    wall ms   cpu ms   (best of runs)\n"
    printf "cartulon-cli stats  %7d  %7d\n", sw, sc
    printf "wc -l               %7d  %7d\n", ww, wcc
    printf "ratio stats / wc    %7.2f  %7.2f   (target <= 1.0)\n", sw / (ww ? ww : 1), sc / (wcc ? wcc : 1)
}'

# One row for bench/run's table: figure|ours|reference|ratio|target.
if [ -n "${BENCH_ROWS:-}" ]; then
    awk -v sw="$sw" -v ww="$ww" -v d="$discs" 'BEGIN {
        printf "statistics, %d catalogues|%d ms|%d ms (wc -l)|%.2f|<= 1.0\n", d, sw, ww, sw / (ww ? ww : 1)
    }' >> "$BENCH_ROWS"
fi
