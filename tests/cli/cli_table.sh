#!/usr/bin/env bash
# cartulon-cli as a user runs it: one row per call, on a scratch program
# folder. A row is: exit code, what the output (stdout and stderr) must show,
# and the arguments. The fragment is a substring; "=TEXT" must be a whole
# line, "!TEXT" must not be a whole line.
#   tests/cli/cli_table.sh BUILT_CLI STAGED_FOLDER
set -uo pipefail
built=$1 stage=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prog=$work/en                      # an English program folder
mkdir -p "$prog/Daten" "$work/de/Daten" "$work/fresh/Daten" "$work/root/Urlaub" "$work/many"
for d in "$prog" "$work/de" "$work/fresh"; do cp "$built" "$d/"; cp "$stage/CT.rd" "$d/" 2>/dev/null; done
printf '10000\r\nC\r\n%s\r\n' "$prog/Daten" > "$prog/CT.ini"
printf '0\r\nC\r\n%s\r\n' "$prog/Daten" > "$work/de/CT.ini"
printf -- '-1\r\n' > "$work/fresh/CT.ini"
echo abc > "$work/root/Urlaub/strand.jpg"
head -c 204800 /dev/zero > "$work/root/big.bin"; touch -d '2003-03-14 10:00' "$work/root/big.bin"
(cd "$work/many" && seq -f 'Disc %05g.idx' 12000 | tr '\n' '\0' | xargs -0 touch)
cli=$prog/cartulon-cli de=$work/de/cartulon-cli fresh=$work/fresh/cartulon-cli
fail=0 rows=0

row() {  # row EXIT FRAGMENT PROGRAM ARGS...
    local want=$1 fragment=$2 program=$3; shift 3
    local out code
    out=$("$program" "$@" 2>&1); code=$?
    rows=$((rows + 1))
    local ok=1
    case $fragment in
        =*) grep -qxF -- "${fragment#=}" <<<"$out" || ok=0 ;;
        !*) ! grep -qxF -- "${fragment#!}" <<<"$out" || ok=0 ;;
        *) [[ $out == *"$fragment"* ]] || ok=0 ;;
    esac
    if [ "$code" != "$want" ] || [ $ok = 0 ]; then
        echo "FAIL: $(basename "$(dirname "$program")") $* -> exit $code (want $want), output:"
        echo "$out" | head -8 | sed 's/^/    /'
        echo "    (wanted: $fragment)"
        fail=1
    fi
}

# Conventions: help everywhere, version, refused command lines.
row 0 "cartulon-cli 1." "$cli" --version
row 0 "cartulon-cli 1." "$cli" -V
row 0 "--size OP SIZE" "$cli" help search
row 0 "usage: cartulon-cli search" "$cli" search --help
row 0 "usage: cartulon-cli add ROOT --label LABEL" "$cli" add --help
row 0 "usage: cartulon-cli show LABEL" "$cli" show -h
row 0 "Commands:" "$cli" help
row 2 "unknown option '--foo'" "$cli" list --foo
row 2 "usage: cartulon-cli list" "$cli" list --foo
row 2 "--name needs OP TERM" "$cli" search --name contains
row 2 "--kind takes files, folders, both, discs, not 'x'" "$cli" search --kind x
row 2 "--label is missing" "$cli" add "$work/root"
row 2 "unexpected argument 'c'" "$cli" show a b c
row 2 "unknown command 'frob'" "$cli" frob
row 2 "help COMMAND" "$cli"
for command in list stats search "show x" "add $work/root --label x" "delete x"; do
    row 2 "the data folder \"$work/nope\" doesn't exist" "$cli" $command --data-folder "$work/nope"
done
# An empty collection: nothing found, not an error.
row 1 "" "$cli" search --name contains x
row 0 "files: 2" "$cli" add "$work/root" --label Bilder --description "Ferien am Meer"

# Search: units, dates, which discs are hits.
row 0 "=Bilder\\\\big.bin" "$cli" search --size greater 100K
row 1 "" "$cli" search --size greater 200K --kind files
row 0 "=Bilder\\\\big.bin" "$cli" search --size equal 0.1953125M
row 2 "K, M, G or T for powers of 1024" "$cli" search --size greater 100X
row 0 "=Bilder\\\\big.bin" "$cli" search --date greater 2003-03-14 --kind files
row 1 "" "$cli" search --date less "14.03.2003 10:00" --kind files
row 2 "dd.mm.yyyy [hh:mm[:ss]] or yyyy-mm-dd" "$cli" search --date less 30.02.2003
row 2 "--size takes equal, not-equal, greater, less, not 'contains'" "$cli" search --size contains 1
row 0 "!Bilder" "$cli" search --size greater 1
row 0 "!Bilder" "$cli" search --kind files --attributes A
row 0 "=Bilder" "$cli" search --kind discs
row 0 "=Bilder" "$cli" search --name contains MEER
row 0 "=Bilder" "$cli" search --description begins Ferien
row 1 "" "$cli" search --description begins ferien --kind discs
row 2 "not to discs" "$cli" search --kind discs --size greater 1

# Output for scripts.
row 0 '{"kind": "file", "label": "Bilder", "path": "\\Urlaub\\strand.jpg"}' \
    "$cli" search --name equal STRAND.JPG --format json
row 0 $'=file\tBilder\t/Urlaub/strand.jpg' "$cli" search --name contains strand --format tsv --slashes
row 0 '"description": "Ferien am Meer", "folders": 1, "files": 2}' "$cli" show Bilder --format json
row 0 $'strand.jpg\t4\tA\t' "$cli" show Bilder Urlaub --format tsv
row 0 '"file_list": [' "$cli" show Bilder / --format json
row 0 $'=discs\t1' "$cli" stats --format tsv
row 0 '"average_files": 2' "$cli" stats --format json
row 0 '{"label": "Bilder", "description": "Ferien am Meer"}' "$cli" list --format json
row 2 "--format takes text, tsv, json, not 'xml'" "$cli" list --format xml
out=$("$cli" search --name contains a -0 --slashes | tr '\0' '\n')
[ "$out" = $'Bilder\nBilder/Urlaub/\nBilder/Urlaub/strand.jpg' ] || { echo "FAIL: -0 gave: $out"; fail=1; }

# The language of CT.ini for everything, the locale only without one.
row 2 "unbekannte Option „--foo“" "$de" list --foo
row 2 "keinen Datenträger „Nope“" "$de" show Nope
row 0 "Beschreibung: Ferien am Meer" "$de" show Bilder
row 0 "=Anzahl der CDs / DVDs: 1" "$de" stats
row 0 "Aufruf: cartulon-cli search" "$de" search -h
row 2 "braucht --yes" "$de" delete Bilder </dev/null
row 2 "unknown option '--foo'" env LANG=de_DE.UTF-8 "$cli" list --foo
row 2 "unbekannte Option" env LANG=de_DE.UTF-8 LC_ALL= "$fresh" list --foo
row 2 "unknown option" env LANG=C LC_ALL= "$fresh" list --foo

# A reader that stops early ends the tool quietly; a full disk doesn't.
err=$("$cli" list --data-folder "$work/many" 2>&1 >/dev/full); code=$?
[ $code = 2 ] && [[ $err == *"No space left"* ]] || { echo "FAIL: /dev/full gave $code: $err"; fail=1; }
err=$( { "$cli" list --data-folder "$work/many" | head -1 >/dev/null; } 2>&1; echo "exit ${PIPESTATUS[0]}")
[ "$err" = "exit 0" ] || { echo "FAIL: a closed pipe gave: $err"; fail=1; }

# The man pages and the completion come from the same tables as the help.
for page in cartulon cartulon-cli; do
    for lang in en de; do
        "$cli" --man-page $page $lang > "$work/page.1" || fail=1
        # English must read in a plain ASCII terminal too.
        locale=C.UTF-8; [ $lang = en ] && locale=C
        warnings=$(LC_ALL=$locale man --warnings -l "$work/page.1" 2>&1 >/dev/null)
        [ -z "$warnings" ] || { echo "FAIL: man page $page $lang: $warnings"; fail=1; }
    done
done
for option in $("$cli" help search | grep -o -- '--[a-z-]*' | sort -u); do
    grep -qF -- "${option//-/\\-}" <("$cli" --man-page cartulon-cli en) || { echo "FAIL: man page lacks $option"; fail=1; }
    grep -qF -- "$option" <("$cli" --bash-completion) || { echo "FAIL: completion lacks $option"; fail=1; }
done
bash -n <("$cli" --bash-completion) || fail=1

[ $fail = 0 ] && echo "cartulon-cli: $rows rows as expected"
exit $fail
