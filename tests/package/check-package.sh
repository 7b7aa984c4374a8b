#!/usr/bin/env bash
# Checks <package.deb> <application id> as a distribution would, and its demo-game command.
set -uo pipefail
deb=$1 id=$2 failed=0
fail() { echo "FAIL: $*" >&2 && failed=1; }
root=$(mktemp -d) && trap 'rm -rf "$root"' EXIT && bin=$root/fs/usr/bin
dpkg-deb -x "$deb" "$root/fs" || exit 1

lintian --fail-on error "$deb" || fail "lintian reports errors"
desktop-file-validate "$root/fs/usr/share/applications/$id.desktop" || fail "desktop entry"
appstreamcli validate --no-net "$root/fs/usr/share/metainfo/$id.metainfo.xml" || fail "metainfo"

files=$(dpkg-deb -c "$deb") depends=$(dpkg-deb -f "$deb" Depends)
for f in bin/hostwarden{,-demo-game} lib/hostwarden/rfds-standin share/applications/$id.desktop \
    share/icons/hicolor/{16x16,32x32,48x48,256x256}/apps/$id.png share/metainfo/$id.metainfo.xml \
    share/icons/hicolor/scalable/apps/$id.svg share/doc/hostwarden/{README.md,copyright}; do
    grep -q " \./usr/$f$" <<<"$files" || fail "/usr/$f is not in the package"
done

# Every Qt 6 and X11 library the program links comes from a package that Depends names.
linked=$(objdump -p "$bin/hostwarden" | awk '/NEEDED +lib(Qt6|X11\.|Xtst)/ { print $2 }')
[ "$(wc -l <<<"$linked")" -ge 5 ] || fail "links fewer Qt and X11 libraries than expected"
for lib in $linked; do
    pkg=$(dpkg -S "*/$lib" | cut -d: -f1 | head -1)
    grep -qw "$pkg" <<<"$depends" || fail "Depends misses $pkg (for $lib): $depends"
done

# The demo game lands in the default folder (a second run too), never where something else is.
export HOME=$root/home XDG_DATA_HOME= && demo=$root/home/.local/share/Hostwarden/demo-game/
for run in 1 2; do [ "$("$bin/hostwarden-demo-game")" = "$demo" ] || fail "run $run: $demo"; done
[ -x "$demo/RF.EXE" ] && [ -s "$demo/levelsm.vpp" ] || fail "no demo game in $demo"
mkdir -p "$root/game/mods/Own" && touch "$root/game/RF.EXE"
"$bin/hostwarden-demo-game" "$root/game" && fail "wrote over a real game"
[ -d "$root/game/mods/Own" ] && [ ! -s "$root/game/RF.EXE" ] || fail "touched a real game"
exit $failed
