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
# With CCACHE_BASEDIR set, ccache hands the compiler relative paths, which end up in the notes
# files and which gcov cannot resolve from the object directories.
unset CCACHE_BASEDIR
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="--coverage -O0 -DHOSTWARDEN_COVERAGE" \
      -DCMAKE_EXE_LINKER_FLAGS="--coverage" >/dev/null
cmake --build "$dir" -j"$(nproc)"
find "$dir" -name '*.gcda' -delete
(cd "$dir" && ctest -j"$(nproc)" "$@") || echo "coverage.sh: some tests failed; figures below cover what ran"
# One summary per folder of src/, then the total.
summary=$(mktemp)
trap 'rm -f "$summary"' EXIT
gcovr -r . --object-directory "$dir" -f 'src/' -e '.*_autogen/.*' \
      --gcov-ignore-parse-errors \
      --json-summary "$summary" >/dev/null 2>&1
python3 - "$summary" <<'PY'
import json, os, sys
folders = {}
for f in json.load(open(sys.argv[1]))["files"]:
    d = os.path.dirname(f["filename"])
    for key in (d, "src (total)"):
        t = folders.setdefault(key, [0, 0, 0, 0])
        t[0] += f["line_covered"]; t[1] += f["line_total"]
        t[2] += f["branch_covered"]; t[3] += f["branch_total"]
pct = lambda a, b: f"{100.0 * a / b:5.1f}% ({a}/{b})" if b else "    -"
for key in sorted(folders, key=lambda k: (k == "src (total)", k)):
    lc, lt, bc, bt = folders[key]
    print(f"{key:22} lines {pct(lc, lt):20} branches {pct(bc, bt)}")
PY
