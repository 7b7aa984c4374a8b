#!/usr/bin/env bash
# Builds Hostwarden and its Debian package, build/hostwarden_<version>_<arch>.deb.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
cd build
cpack -G DEB
