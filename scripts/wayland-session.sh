#!/usr/bin/env bash
# Runs a command as the whole session of a headless Wayland desktop (KWin) whose X11 programs
# run on Xwayland, or with --no-x on one without any X display, and exits with its status.
# KWin picks its X display from :0 up, so it runs in private mount, network and pid
# namespaces with a /tmp of its own, out of the way of every other desktop on the machine.
#   scripts/wayland-session.sh [--no-x] COMMAND [ARGUMENT...]
set -euo pipefail
xwayland=(--xwayland)
if [[ "${1:-}" == --no-x ]]; then
  xwayland=()
  shift
fi
if [[ "${1:-}" != --inside ]]; then
  exec unshare --mount --net --pid --fork --mount-proc --propagation private \
    sh -c 'mount -t tmpfs tmpfs /tmp && exec "$@"' sh \
    bash "$0" $(((${#xwayland[@]})) || echo --no-x) --inside "$@"
fi
shift # --inside: /tmp is ours now
runtime=$(mktemp -d)
mkdir -m 1777 /tmp/.X11-unix
# The packaged kwin_wayland carries a file capability, which a process lacking that
# capability may not execute; a plain copy carries none.
cp /usr/bin/kwin_wayland "$runtime/"
printf '%q ' "$@" >"$runtime/command"
# The command's output goes where this script's goes (descriptors 3 and 4), not to KWin's log.
printf '%s\n' '#!/bin/bash' ". $runtime/command >&3 2>&4" "echo \$? >$runtime/status" \
  >"$runtime/session"
chmod +x "$runtime/session"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
export XDG_RUNTIME_DIR=$runtime XDG_SESSION_TYPE=wayland
"$runtime/kwin_wayland" --virtual --width 1280 --height 1024 "${xwayland[@]}" \
  --exit-with-session "$runtime/session" 3>&1 4>&2 >"$runtime/kwin.log" 2>&1 || true
[[ -s "$runtime/status" ]] || { cat "$runtime/kwin.log" >&2; exit 1; }
exit "$(cat "$runtime/status")"
