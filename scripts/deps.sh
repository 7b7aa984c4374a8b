#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing Hostwarden need,
# but only when one of them is missing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6test6 qt6-qpa-plugins libgl-dev
  libx11-dev libxtst-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb openbox xdotool x11-utils xterm imagemagick xclip
  fonts-dejavu-core
  file lintian desktop-file-utils appstream
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${missing[@]}" >/dev/null
fi

# The Wayland desktop of the end-to-end tests (a headless KWin with Xwayland), Qt's Wayland
# plugin, which a Wayland desktop's Qt programs pick up, and the accessibility bus through
# which a test looks at a desktop without X; without their recommends, which would bring in
# a whole Plasma desktop.
wayland=()
for p in kwin-wayland xwayland qt6-wayland dbus-daemon at-spi2-core python3-pyatspi; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || wayland+=("$p")
done
if ((${#wayland[@]})); then
  echo "Installing: ${wayland[*]}"
  export DEBIAN_FRONTEND=noninteractive
  ((${#missing[@]})) || apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${wayland[@]}" >/dev/null
fi
