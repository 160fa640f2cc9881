#!/usr/bin/env bash
# The search against grep over the same catalogues.
#
# Generates DISCS catalogues of FILES file lines each (about 500 MB with the
# defaults) in a scratch folder, warms the page cache, then times
#   cartulon-cli search --name contains URLAUB
# against
#   LC_ALL=C grep -c -i -F URLAUB
# over the same files, and a run with all five criteria. Prints the ratio
# (ours / grep's; below 1.0 means faster) and the peak memory of both, once for
# the whole collection and once for a tenth of it, to show that ours doesn't
# grow with the collection.
#
# usage: bench/search.sh [path/to/cartulon-cli]   (env: DISCS=300 FILES=20000 RUNS=5)
set -euo pipefail

CLI=${1:-$(dirname "$0")/../build/Cartulon/cartulon-cli}
DISCS=${DISCS:-300}
FILES=${FILES:-20000}
RUNS=${RUNS:-5}
[ -x "$CLI" ] || { echo "no cartulon-cli at $CLI (build the target cartulon-cli first)" >&2; exit 2; }

WORK=$(mktemp -d "${TMPDIR:-/tmp}/ct_search_bench.XXXXXX")
trap 'rm -rf "$WORK"' EXIT
DATA=$WORK/Daten
mkdir -p "$DATA"

echo "generating $DISCS catalogues of $FILES files each in $DATA ..."
# One awk process writes every catalogue: folders in walk order, then files,
# CR LF line ends, now and then a name or description with "Urlaub" in it.
awk -v discs="$DISCS" -v files="$FILES" -v dir="$DATA" 'BEGIN {
    srand(42);
    split("jpg htm txt doc pdf mp3 avi zip", ext, " ");
    split("R|A|R H|R H S A||N|A T", attr, "|");
    for (d = 1; d <= discs; d++) {
        out = sprintf("%s/Disc%04d.idx", dir, d);
        printf "681574400|%d|CDFS|332800|1|2048|Sicherung Nummer %d\r\n\r\n", d * 7919 - 1000000, d > out;
        nfolders = 200;
        for (f = 0; f < nfolders; f++)
            printf "\\Ordner%03d\\Unterordner%02d|R|%02d.%02d.%d 10:%02d:%02d|\r\n", f / 10, f % 10,
                1 + f % 28, 1 + f % 12, 1995 + f % 20, f % 60, (f * 7) % 60 > out;
        printf "\r\n" > out;
        for (i = 0; i < files; i++) {
            f = int(rand() * nfolders);
            r = rand();
            name = sprintf("Datei_%06d_%s.%s", i, (r < 0.001 ? "Urlaub" : "Bericht"), ext[1 + i % 8]);
            desc = (r > 0.999 ? "Urlaub am Meer" : "");
            printf "\\Ordner%03d\\Unterordner%02d\\%s|%d|%s|%02d.%02d.%d %02d:%02d:%02d|%s\r\n",
                f / 10, f % 10, name, int(rand() * 5000000), attr[1 + i % 7],
                1 + i % 28, 1 + i % 12, 1995 + i % 20, i % 24, i % 60, (i * 13) % 60, desc > out;
        }
        close(out);
    }
}'
du -sh "$DATA" | sed 's/^/collection: /'

warm() { cat "$DATA"/*.idx > /dev/null; }

# Best of RUNS: wall-clock seconds, CPU seconds (user + system), and the peak
# resident set in KiB. Both outputs go to a file: grep treats /dev/null as -q.
# On a shared machine the wall clock follows the load; the CPU time doesn't.
measure() {
    local best="" bestcpu="" t u s peak cpu
    for ((r = 0; r < RUNS; r++)); do
        /usr/bin/time -f "%e %U %S %M" -o "$WORK/time" "$@" > "$WORK/out" 2>/dev/null || true
        read -r t u s peak < "$WORK/time"
        cpu=$(awk -v u="$u" -v s="$s" 'BEGIN { printf "%.2f", u + s }')
        if [ -z "$best" ] || awk -v a="$t" -v b="$best" 'BEGIN { exit !(a < b) }'; then best=$t; fi
        if [ -z "$bestcpu" ] || awk -v a="$cpu" -v b="$bestcpu" 'BEGIN { exit !(a < b) }'; then bestcpu=$cpu; fi
    done
    echo "$best $bestcpu $peak"
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b <= 0) b = 0.005; printf "%.2f", a / b }'; }

warm
read -r tg cg mg < <(measure env LC_ALL=C grep -c -i -F URLAUB "$DATA"/*.idx)
grep_lines=$(LC_ALL=C grep -h -i -F URLAUB "$DATA"/*.idx | wc -l)
read -r tc cc mc < <(measure "$CLI" search --name contains URLAUB --data-folder "$DATA")
hits=$(wc -l < "$WORK/out")
echo
echo "name search, contains URLAUB, $DISCS discs:"
echo "  grep -c -i -F : wall ${tg}s  cpu ${cg}s  peak ${mg} KiB  ($grep_lines lines hold the word)"
echo "  cartulon-cli  : wall ${tc}s  cpu ${cc}s  peak ${mc} KiB  ($hits hits)"
echo "  ratio ours/grep: wall $(ratio "$tc" "$tg")  cpu $(ratio "$cc" "$cg")   (target <= 1.0)"

read -r t5 c5 m5 < <(measure "$CLI" search --kind both --name contains bericht --size greater 4900000 \
    --attributes "R H" --date greater 1.1.2000 --description not-equal x --data-folder "$DATA")
hits5=$(wc -l < "$WORK/out")
echo
echo "all five criteria: wall ${t5}s  cpu ${c5}s  peak ${m5} KiB  ($hits5 hits; cpu ratio to grep's scan $(ratio "$c5" "$cg"))"

# Memory against collection size: the same search over a tenth of the discs.
SMALL=$WORK/Klein
mkdir -p "$SMALL"
all=("$DATA"/*.idx)
for f in "${all[@]:0:$((DISCS / 10 > 0 ? DISCS / 10 : 1))}"; do ln "$f" "$SMALL"/; done
read -r ts cs ms < <(measure "$CLI" search --name contains URLAUB --data-folder "$SMALL")
echo
echo "peak memory, cartulon-cli: ${ms} KiB over $((DISCS / 10)) discs, ${mc} KiB over $DISCS discs"

# Rows for bench/run's table: figure|ours|reference|ratio|target.
if [ -n "${BENCH_ROWS:-}" ]; then
    echo "search, name contains URLAUB, $DISCS discs|${tc} s|${tg} s (grep -c -i -F)|$(ratio "$tc" "$tg")|<= 1.0" >> "$BENCH_ROWS"
    echo "search, all five criteria|${t5} s|${tg} s (grep -c -i -F)|$(ratio "$t5" "$tg")|-" >> "$BENCH_ROWS"
    echo "search peak memory, $((DISCS / 10)) vs $DISCS discs|${mc} KiB|${ms} KiB ($((DISCS / 10)) discs)|$(ratio "$mc" "$ms")|~1.0" >> "$BENCH_ROWS"
fi
