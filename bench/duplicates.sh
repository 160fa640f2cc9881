#!/usr/bin/env bash
# `duplicates` against `stats` over the same collection, in the same run and
# from the same (warm) page cache. Both read every catalogue once; duplicates
# also takes each file line apart and hashes its name and size, keeps eight
# bytes per line (or, where lines run to several per pair, sixteen per pair),
# takes the texts of the copies it already knows to be copies as it reads
# them, reads the lines of the others again and prints one record a copy, so
# the statistics run is the measure it is held to (target: at most twice its
# time). Duplicates takes a thread per core (up to eight), each the next disc
# not yet taken; statistics reads on one: duplicates' wall time gains from
# more cores, its CPU time does not. Run it on an otherwise idle machine: on
# a busy one the wall times say little. Where the system drops cold file
# pages from its cache, a run may read from disk: the script writes the
# collection out and reads it once before, and the medians keep single slow
# runs out.
#
#   bench/duplicates.sh [BUILD_DIR]     (default: build)
#   DISCS=1000 FILES=2000 SHARED=5 RUNS=10 KEEP=1 bench/duplicates.sh
#
# Every disc holds FILES files of its own names; SHARED in a hundred of them
# also stand, same name and size, on every other disc.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
[[ $build = /* ]] || build="$here/$build"
cli="$build/Cartulon/cartulon-cli"
[[ -x $cli ]] || { echo "no $cli: build the target cartulon-cli first" >&2; exit 2; }

discs=${DISCS:-1000}
files=${FILES:-2000}
shared=${SHARED:-5}
runs=${RUNS:-10}
dir=$(mktemp -d "${TMPDIR:-/tmp}/cartulon-bench-dups.XXXXXX")
[[ -n ${KEEP:-} ]] || trap 'rm -rf "$dir"' EXIT

mkdir "$dir/Daten"
awk -v discs="$discs" -v files="$files" -v shared="$shared" -v out="$dir/Daten" 'BEGIN {
    for (d = 0; d < discs; d++) {
        f = out "/Disc " d ".idx"
        printf "650000000|-1029197328|CDFS|319488|1|2048|Disc %d\r\n\r\n", d > f
        for (i = 0; i < 50; i++) printf "\\Archiv %04d|R|14.03.2003 09:12:40|\r\n", i > f
        printf "\r\n" > f
        for (i = 0; i < files; i++) {
            if (i % 100 < shared) name = sprintf("Gemeinsam %06d.JPG|%d", i, i * 7919)
            else name = sprintf("Datei %05d %06d.jpg|%d", d, i, i * 7919 + d)
            printf "\\Archiv %04d\\%s|R A|14.03.2003 09:12:%02d|\r\n", i % 50, name, i % 60 > f
        }
        close(f)
    }
}'
bytes=$(du -sb "$dir/Daten" | cut -f1)
echo "collection: $discs catalogues, $((bytes / 1000000)) MB, $((files * discs)) files"
sync -f "$dir/Daten" 2>/dev/null || sync
cat "$dir/Daten/"*.idx > /dev/null

# Both sides interleaved (A B B A ...) by bench/cputime: CPU time from wait4
# and wall time to the microsecond, median and best of RUNS each, and the
# peak resident set (KiB) of each side's runs.
timer=$build/bench/cputime
[[ -x $timer ]] || { echo "no $timer: build the target cputime first" >&2; exit 2; }
read -r dcm dc dwm dw scm sc swm sw rss _ < <("$timer" "$runs" "$dir/out" \
    -- env LC_ALL=C "$cli" duplicates --format tsv --data-folder "$dir/Daten" \
    -- env LC_ALL=C "$cli" stats --data-folder "$dir/Daten")

# The run must have found what was generated, or its time means nothing.
groups=$(cut -f1 "$dir/out.a" | sort -u | wc -l)
want=$(( (files / 100) * shared + (files % 100 < shared ? files % 100 : shared) ))
(( groups == want )) || { echo "duplicates found $groups groups, want $want" >&2; exit 1; }

awk -v dwm="$dwm" -v dw="$dw" -v dcm="$dcm" -v dc="$dc" -v swm="$swm" -v sw="$sw" -v scm="$scm" -v sc="$sc" \
    -v rss="$rss" -v g="$groups" 'BEGIN {
    printf "                          wall ms        cpu ms       (median / best of runs)\n"
    printf "cartulon-cli duplicates  %6.1f %6.1f  %6.1f %6.1f   %d groups, max RSS %d MB\n", dwm, dw, dcm, dc, g, rss / 1024
    printf "cartulon-cli stats       %6.1f %6.1f  %6.1f %6.1f\n", swm, sw, scm, sc
    printf "ratio duplicates / stats %6.2f %6.2f  %6.2f %6.2f   (target <= 2.0)\n", dwm / swm, dw / sw, dcm / scm, dc / sc
}'

if [ -n "${BENCH_ROWS:-}" ]; then
    awk -v dw="$dwm" -v sw="$swm" -v d="$discs" 'BEGIN {
        printf "duplicates, %d catalogues|%.0f ms|%.0f ms (stats)|%.2f|<= 2.0\n", d, dw, sw, dw / sw
    }' >> "$BENCH_ROWS"
fi
