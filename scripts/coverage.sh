#!/usr/bin/env bash
# Line and branch coverage of the library by its tests, per subsystem
# folder: builds the `coverage` preset (GCC --coverage), runs every test,
# and prints one row per folder of nvshared/ with gcovr. Test sources,
# test helpers and generated files are left out; branches that only throw
# or that the compiler cannot reach are not counted.
#   bash scripts/coverage.sh            # build, test, report
#   bash scripts/coverage.sh --report   # report on the last run only
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
nvshared_install_packages "${NVSHARED_PACKAGES[@]}" "${NVSHARED_COVERAGE_PACKAGES[@]}"

if [ "${1:-}" != "--report" ]; then
  cmake --preset coverage >/dev/null
  find build/coverage -name '*.gcda' -delete
  cmake --build --preset coverage -j "$(nproc)"
  ctest --preset coverage -j "$(nproc)" >/dev/null
fi

summary=build/coverage/coverage-summary.json
gcovr --root . --object-directory build/coverage \
  --filter 'nvshared/' --exclude '.*_test\.cc$' --exclude 'nvshared/testing/' \
  --exclude-throw-branches --exclude-unreachable-branches \
  --exclude-directories '.*/CompilerIdCXX' \
  --json-summary "$summary" >/dev/null
python3 - "$summary" <<'PY'
import collections, json, sys
files = json.load(open(sys.argv[1]))["files"]
rows = collections.defaultdict(lambda: [0, 0, 0, 0])
for f in files:
    parts = f["filename"].split("/")
    folder = "/".join(parts[:2]) if len(parts) > 2 else parts[0]
    r = rows[folder]
    r[0] += f["line_covered"]; r[1] += f["line_total"]
    r[2] += f["branch_covered"]; r[3] += f["branch_total"]
pct = lambda a, b: f"{100.0 * a / b:5.1f}%" if b else "    -"
print(f"{'folder':24} {'lines':>7} {'line cov':>9} {'branches':>9} {'branch cov':>11}")
total = [0, 0, 0, 0]
for folder in sorted(rows):
    r = rows[folder]
    total = [t + x for t, x in zip(total, r)]
    print(f"{folder:24} {r[1]:7} {pct(r[0], r[1]):>9} {r[3]:9} {pct(r[2], r[3]):>11}")
print(f"{'all':24} {total[1]:7} {pct(total[0], total[1]):>9} {total[3]:9} {pct(total[2], total[3]):>11}")
PY
