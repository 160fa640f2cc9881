#!/bin/sh
# Starts Cartulon, or its terminal tool, from the user's own program folder.
# The package keeps the program files read-only under /usr/lib/cartulon;
# Cartulon keeps its settings and catalogues beside its program file, so each
# user runs a copy in $XDG_DATA_HOME/cartulon. The copy is made on the first
# start and renewed after a package update; the user's CT.ini and Daten/ are
# never touched.
#
# The package installs this one script as /usr/bin/cartulon and links
# /usr/bin/cartulon-cli to it: the name it is called by says which program
# runs, so the window and the terminal tool always prepare the folder alike.
set -eu
package_dir=${CARTULON_PACKAGE_DIR:-/usr/lib/cartulon}
user_dir=${XDG_DATA_HOME:-$HOME/.local/share}/cartulon
case $(basename "$0") in
    cartulon-cli) program=cartulon-cli ;;
    *) program=cartulon ;;
esac

if [ ! -x "$user_dir/$program" ] || ! cmp -s "$package_dir/.package-stamp" "$user_dir/.package-stamp"; then
    mkdir -p "$user_dir/Daten"
    # The stamp goes last: a start that is cut off before it renews again.
    for f in "$package_dir"/* "$package_dir"/.package-stamp; do
        name=$(basename "$f")
        case "$name" in
            CT.ini|Daten) continue ;;
        esac
        # Write beside, then rename, under a name of this start's own: a
        # start that is cut off never leaves a half-copied program behind,
        # and two starts at once (a window and a script) don't mix copies.
        new=$user_dir/.$name.new.$$
        if [ -d "$f" ]; then  # a folder (translations): swapped whole
            rm -rf "$new" && cp -R "$f" "$new"
            [ ! -e "$user_dir/$name" ] || mv -f "$user_dir/$name" "$user_dir/.$name.old.$$"
            mv -f "$new" "$user_dir/$name"
            rm -rf "$user_dir/.$name.old.$$"
        else
            cp -f "$f" "$new"
            mv -f "$new" "$user_dir/$name"
        fi
    done
    [ -e "$user_dir/CT.ini" ] || cp "$package_dir/CT.ini" "$user_dir/CT.ini"
    chmod u+w "$user_dir/CT.ini"
fi
exec "$user_dir/$program" "$@"
