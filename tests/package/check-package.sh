#!/usr/bin/env bash
# Checks the Debian package as a distribution would, and its demo-game command as a user
# runs it. Usage: check-package.sh <package.deb> <application id>
set -uo pipefail
deb=$1 id=$2 failed=0
fail() { echo "FAIL: $*" >&2 && failed=1; }
root=$(mktemp -d) && trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$deb" "$root/fs" || exit 1

lintian --fail-on error "$deb" || fail "lintian reports errors"
desktop-file-validate "$root/fs/usr/share/applications/$id.desktop" || fail "desktop entry"
appstreamcli validate --no-net "$root/fs/usr/share/metainfo/$id.metainfo.xml" || fail "metainfo"

files=$(dpkg-deb -c "$deb" | awk '{ print $NF }')
icons=/usr/share/icons/hicolor
for f in /usr/bin/hostwarden /usr/bin/hostwarden-demo-game /usr/lib/hostwarden/rfds-standin \
    /usr/share/applications/$id.desktop /usr/share/metainfo/$id.metainfo.xml \
    $icons/{16x16,32x32,48x48,256x256}/apps/$id.png $icons/scalable/apps/$id.svg \
    /usr/share/doc/hostwarden/{README.md,copyright}; do
    grep -qx "\.$f" <<<"$files" || fail "$f is not in the package"
done

# Every Qt 6 and X11 library the program links comes from a package that Depends names.
depends=$(dpkg-deb -f "$deb" Depends) bin=$root/fs/usr/bin/hostwarden
linked=$(objdump -p "$bin" | awk '/NEEDED +lib(Qt6|X11\.|Xtst)/ { print $2 }')
[ "$(wc -l <<<"$linked")" -ge 5 ] || fail "links fewer Qt and X11 libraries than expected"
for lib in $linked; do
    pkg=$(dpkg -S "$(readlink -f "$(ldd "$bin" | awk -v l="$lib" '$1 == l { print $3 }')")")
    pkg=${pkg%%:*}
    grep -qw "$pkg" <<<"$depends" || fail "Depends misses $pkg (for $lib): $depends"
done

# The demo game lands in the default folder, and never in a folder that holds something else.
export HOME=$root/home XDG_DATA_HOME=
demo=$HOME/.local/share/Hostwarden/demo-game/
[ "$("$root/fs/usr/bin/hostwarden-demo-game")" = "$demo" ] || fail "not reported as $demo"
[ -x "$demo/RF.EXE" ] && [ -s "$demo/levelsm.vpp" ] || fail "no demo game in $demo"
mkdir -p "$root/game/mods/Own" && touch "$root/game/RF.EXE"
"$root/fs/usr/bin/hostwarden-demo-game" "$root/game" && fail "wrote over a real game"
[ -d "$root/game/mods/Own" ] && [ ! -s "$root/game/RF.EXE" ] || fail "touched a real game"
exit $failed
