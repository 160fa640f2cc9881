#!/usr/bin/env bash
# What cartulon-cli writes beyond the rows of test_cli.cpp: NUL-separated hit
# paths, a closed pipe against a full disk, and the man pages and the bash
# completion printed from the same tables as the help.
#   tests/cli/cli_outputs.sh BUILT_CLI
set -uo pipefail
built=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prog=$work/prog
mkdir -p "$prog/Daten" "$work/root/Urlaub" "$work/many"
cp "$built" "$prog/"
printf '10000\r\nC\r\n%s\r\n' "$prog/Daten" > "$prog/CT.ini"
echo abc > "$work/root/Urlaub/strand.jpg"
(cd "$work/many" && seq -f 'Disc %05g.idx' 12000 | tr '\n' '\0' | xargs -0 touch)
cli=$prog/cartulon-cli
fail=0
"$cli" add "$work/root" --label Bilder --description "Ferien am Meer" >/dev/null || fail=1

out=$("$cli" search --name contains a -0 --slashes | tr '\0' '\n')
[ "$out" = $'Bilder\nBilder/Urlaub/\nBilder/Urlaub/strand.jpg' ] || { echo "FAIL: -0 gave: $out"; fail=1; }

# A reader that stops early ends the tool quietly; a full disk doesn't.
err=$("$cli" list --data-folder "$work/many" 2>&1 >/dev/full); code=$?
[ $code = 2 ] && [[ $err == *"No space left"* ]] || { echo "FAIL: /dev/full gave $code: $err"; fail=1; }
"$cli" list --data-folder "$work/many" 2>"$work/err" | head -1 >/dev/null; code=${PIPESTATUS[0]}
[ $code = 0 ] && [ ! -s "$work/err" ] || { echo "FAIL: a closed pipe gave $code: $(cat "$work/err")"; fail=1; }

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

[ $fail = 0 ] && echo "cartulon-cli: hit paths, pipes, man pages and completion as expected"
exit $fail
