#!/bin/sh
# Lays out a writable demo game directory for trying Hostwarden without the game and prints
# its path, for Setup's Browse. Run again on the same directory, it renews the demo files and
# keeps what the server and Hostwarden wrote there.
set -eu

usage="Usage: hostwarden-demo-game [DIR]   (default: ~/.local/share/Hostwarden/demo-game/)"
case "${1:-}" in
-h | --help) echo "$usage" && exit 0 ;;
-*) echo "$usage" >&2 && exit 2 ;;
esac
[ $# -le 1 ] || { echo "$usage" >&2 && exit 2; }

# The generator and the stand-in server sit in lib/hostwarden next to this command's bin/.
tools=$(dirname "$(readlink -f "$0")")/../lib/hostwarden
dir=${1:-${XDG_DATA_HOME:-$HOME/.local/share}/Hostwarden/demo-game}
marker=.hostwarden-demo-game

# The generator replaces RF.EXE, mods/ and user_maps/: never let it loose on a real game.
if [ -d "$dir" ] && [ -n "$(ls -A "$dir")" ] && [ ! -e "$dir/$marker" ]; then
    echo "hostwarden-demo-game: $dir is not empty and holds no demo game; name a new folder" >&2
    exit 1
fi
"$tools/make-demo-game" "$dir" "$tools/rfds-standin"
touch "$dir/$marker"
echo "$(cd "$dir" && pwd)/"
