#!/bin/sh
# Starts Cartulon from the user's own program folder. The package keeps the
# program files read-only under /opt/cartulon; Cartulon keeps its settings and
# catalogues beside its program file, so each user runs a copy in
# $XDG_DATA_HOME/cartulon. The copy is made on the first start and renewed
# after a package update; the user's CT.ini and Daten/ are never touched.
set -eu
package_dir=${CARTULON_PACKAGE_DIR:-/opt/cartulon}
user_dir=${XDG_DATA_HOME:-$HOME/.local/share}/cartulon

if [ ! -x "$user_dir/cartulon" ] || ! cmp -s "$package_dir/.package-stamp" "$user_dir/.package-stamp"; then
    mkdir -p "$user_dir/Daten"
    for f in "$package_dir"/* "$package_dir"/.package-stamp; do
        name=$(basename "$f")
        case "$name" in
            CT.ini|Daten) continue ;;
        esac
        # Write beside, then rename: a start that is cut off never leaves a
        # half-copied program behind.
        cp -f "$f" "$user_dir/.$name.new"
        mv -f "$user_dir/.$name.new" "$user_dir/$name"
    done
    [ -e "$user_dir/CT.ini" ] || cp "$package_dir/CT.ini" "$user_dir/CT.ini"
    chmod u+w "$user_dir/CT.ini"
fi
exec "$user_dir/cartulon" "$@"
