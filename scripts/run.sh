#!/usr/bin/env bash
# Builds Hostwarden and starts it on the current display.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
exec build/src/hostwarden "$@"
