#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing Hostwarden need,
# but only when one of them is missing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6test6 qt6-qpa-plugins libgl-dev
  libx11-dev libxtst-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb openbox xdotool x11-utils xterm imagemagick
  fonts-dejavu-core
)

# The Wayland desktop of the end-to-end tests (a headless KWin with Xwayland), Qt's Wayland
# plugin, which a Wayland desktop's Qt programs pick up, and the accessibility bus through
# which a test looks at a desktop without X; without their recommends, which would bring in
# a whole Plasma desktop.
wayland_packages=(kwin-wayland xwayland qt6-wayland dbus-daemon at-spi2-core python3-pyatspi)

missing() {
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || echo "$p"
  done
}
updated=
install() {
  echo "Installing: $*"
  export DEBIAN_FRONTEND=noninteractive
  [[ -n $updated ]] || apt-get update -qq
  updated=1
  apt-get install -y -qq "$@" >/dev/null
}

mapfile -t missing_packages < <(missing "${packages[@]}")
((${#missing_packages[@]} == 0)) || install "${missing_packages[@]}"
mapfile -t missing_packages < <(missing "${wayland_packages[@]}")
((${#missing_packages[@]} == 0)) || install --no-install-recommends "${missing_packages[@]}"
