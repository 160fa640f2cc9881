#!/usr/bin/env bash
# The package's launcher on a temporary $HOME: the first start creates the
# user's program folder; a start after a package update renews the program
# files and keeps CT.ini and Daten/ byte for byte. Called as cartulon-cli
# (the package's link to it) it prepares the same folder and runs the user's
# own terminal tool on the user's own collection.
set -euo pipefail
launcher=$1 installed=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
pkg=$work/usr/lib/cartulon
mkdir -p "$pkg/Daten"
cp "$installed"/CT.ini "$installed"/CT.rd "$installed"/CT0.fhp "$installed"/CT1.fhp "$installed"/Version*.txt "$pkg/"
cp "$installed/folihelp.exe" "$installed/cartulon-cli" "$pkg/"
# A stand-in program that says where it runs from, so no window opens.
printf '#!/bin/sh\necho "running from $(dirname "$0") v1"\n' > "$pkg/cartulon"
chmod +x "$pkg/cartulon"
echo "1.0.0 1" > "$pkg/.package-stamp"

export HOME=$work/home CARTULON_PACKAGE_DIR=$pkg
unset XDG_DATA_HOME
mkdir -p "$HOME"
user=$HOME/.local/share/cartulon
fail=0

# The terminal tool first, on a fresh $HOME, as a user would after installing.
mkdir -p "$work/bin" "$work/Pictures/Urlaub" && ln -s "$(realpath "$launcher")" "$work/bin/cartulon-cli"
echo sun > "$work/Pictures/Urlaub/strand.jpg"
"$work/bin/cartulon-cli" add "$work/Pictures" --label Bilder >/dev/null || { echo "cartulon-cli add failed"; fail=1; }
[ -f "$user/Daten/Bilder.idx" ] || { echo "cartulon-cli did not write into the user's Daten/"; fail=1; }
out=$("$work/bin/cartulon-cli" search --name contains urlaub --format tsv)
[ "$out" = $'folder\tBilder\t\\Urlaub' ] || { echo "cartulon-cli search gave: $out"; fail=1; }
printf -- '-1\r\n' | cmp -s - "$user/CT.ini" || { echo "cartulon-cli changed the first-run CT.ini"; fail=1; }
rm "$user/Daten/Bilder.idx"

out=$("$launcher")
[ "$out" = "running from $user v1" ] || { echo "first start ran: $out"; fail=1; }
for f in cartulon folihelp.exe cartulon-cli CT.ini CT.rd CT0.fhp CT1.fhp Version0.txt Version1.txt .package-stamp; do
  [ -f "$user/$f" ] || { echo "first start did not copy $f"; fail=1; }
done
[ -d "$user/Daten" ] || { echo "first start made no Daten/"; fail=1; }

# The user's own state.
printf '10000\r\n/media/cd\r\n%s\r\n' "$user/Daten" > "$user/CT.ini"
printf '0|0||0|0|0|mine\r\n\r\n\r\n' > "$user/Daten/Disc.idx"
cp "$user/CT.ini" "$work/ini.before"; cp "$user/Daten/Disc.idx" "$work/idx.before"

# A package update.
printf '#!/bin/sh\necho "running from $(dirname "$0") v2"\n' > "$pkg/cartulon"
echo "1.0.1 2" > "$pkg/.package-stamp"
out=$("$launcher")
[ "$out" = "running from $user v2" ] || { echo "start after the update ran: $out"; fail=1; }
cmp -s "$user/CT.ini" "$work/ini.before" || { echo "the update changed CT.ini"; fail=1; }
cmp -s "$user/Daten/Disc.idx" "$work/idx.before" || { echo "the update changed a catalogue"; fail=1; }

# Two users keep separate collections.
HOME=$work/other "$launcher" >/dev/null
[ ! -e "$work/other/.local/share/cartulon/Daten/Disc.idx" ] || { echo "users share a collection"; fail=1; }

[ $fail -eq 0 ] && echo "launcher keeps each user's settings and catalogues"
exit $fail
