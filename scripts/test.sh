#!/usr/bin/env bash
# Builds Hostwarden and runs every test: unit tests and the end-to-end tests, which
# start their own Xvfb and window manager.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
cd build
ctest --output-on-failure -j"$(nproc)" "$@"
