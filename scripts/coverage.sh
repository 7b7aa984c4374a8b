#!/usr/bin/env bash
# Builds Hostwarden with coverage instrumentation into build-coverage/, runs every test,
# and prints line and branch coverage of src/ per folder and in total.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
dpkg-query -W -f='${Status}' gcovr 2>/dev/null | grep -q "install ok installed" || {
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq && apt-get install -y -qq gcovr >/dev/null
}
dir=build-coverage
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="--coverage -O0" \
      -DCMAKE_EXE_LINKER_FLAGS="--coverage" >/dev/null
cmake --build "$dir" -j"$(nproc)"
find "$dir" -name '*.gcda' -delete
(cd "$dir" && ctest -j"$(nproc)" "$@") || echo "coverage.sh: some tests failed; figures below cover what ran"
# One summary per folder of src/, then the total.
report() {  # $1 = filter regex, $2 = label
  gcovr -r . --object-directory "$dir" -f "$1" -e '.*_autogen/.*' \
        --gcov-ignore-parse-errors=negative_hits.warn_once_per_file \
        --txt-summary -o /dev/null 2>/dev/null |
    awk -v l="$2" '/^lines:/ {ln=$2} /^branches:/ {br=$2} END {printf "%-24s lines %7s  branches %7s\n", l, ln, br}'
}
for d in $(cd src && find . -mindepth 1 -maxdepth 2 -type d ! -name images | sed 's|^\./||' | sort); do
  ls src/"$d"/*.cpp >/dev/null 2>&1 || continue
  report "src/$d/[^/]*\.(cpp|h)$" "src/$d"
done
report 'src/.*' 'src (total)'
