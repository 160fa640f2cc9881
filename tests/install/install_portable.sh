#!/usr/bin/env bash
# `cmake --install` must lay out a complete portable program folder: copied
# anywhere, it runs with its texts, help and data folder.
set -euo pipefail
build=$1 dest=$2 gui=${3:-gui}
rm -rf "$dest"
cmake --install "$build" --prefix "$dest" >/dev/null
fail=0
# A build without the windows installs neither the program nor its help viewer.
progs="cartulon folihelp.exe"; [ "$gui" = gui ] || progs=""
for f in $progs cartulon-cli CT.ini CT.rd CT0.fhp CT1.fhp Version0.txt Version1.txt; do
  [ -f "$dest/$f" ] || { echo "missing in the installed folder: $f"; fail=1; }
done
[ -d "$dest/Daten" ] || { echo "missing in the installed folder: Daten/"; fail=1; }
printf -- '-1\r\n' | cmp -s - "$dest/CT.ini" || { echo "CT.ini is not the bare first-run marker"; fail=1; }
[ -s "$dest/CT.rd" ] || { echo "CT.rd is empty"; fail=1; }
# The folder works where it lands: the CLI finds its data folder beside it.
mkdir -p "$dest/../walkme/sub" && echo hi > "$dest/../walkme/sub/a.txt"
"$dest/cartulon-cli" add "$dest/../walkme" --label InstallCheck >/dev/null
[ -f "$dest/Daten/InstallCheck.idx" ] || { echo "cartulon-cli did not write into the folder's Daten/"; fail=1; }
"$dest/cartulon-cli" list | grep -qx InstallCheck || { echo "cartulon-cli list misses the new disc"; fail=1; }
# libarchive isn't loaded at start, only when an ISO image is read, and then it is.
! ldd "$dest/cartulon-cli" | grep -q libarchive || { echo "cartulon-cli links libarchive at start"; fail=1; }
if command -v xorriso >/dev/null; then
  xorriso -as mkisofs -J -o "$dest/../walkme.iso" "$dest/../walkme" 2>/dev/null
  "$dest/cartulon-cli" add "$dest/../walkme.iso" --label IsoCheck >/dev/null || { echo "cartulon-cli can't add an ISO image"; fail=1; }
  rm -f "$dest/Daten/IsoCheck.idx" "$dest/../walkme.iso"
fi
rm -f "$dest/Daten/InstallCheck.idx"; rm -rf "$dest/../walkme"
[ $fail -eq 0 ] && echo "installed program folder complete"
exit $fail
