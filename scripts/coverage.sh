#!/usr/bin/env bash
# coverage.sh: the part of the lines of each room that the tests run. Builds into build/coverage, runs
# all tests (about ten minutes on two cores) and prints a table.
# `scripts/coverage.sh --lines FILE` prints the lines of a source that no test runs, after such a run.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
install_missing "${build_packages[@]}" python3
build=build/coverage
if [ "${1:-}" != --lines ]; then
  cmake -G Ninja -B "$build" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 --coverage -fprofile-update=atomic" >/dev/null
  cmake --build "$build" -j "$(nproc)"
  find "$build" -name '*.gcda' -delete
  (cd "$build" && QT_QPA_PLATFORM=offscreen ctest -j "$(nproc)" --output-on-failure) >"$build/tests.txt" ||
    { tail -40 "$build/tests.txt" >&2; exit 1; }
fi
python3 - "$PWD" "$build" "$@" <<'EOF'
import json, subprocess, sys
from collections import defaultdict
from pathlib import Path

root, build, wanted = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[4:5]
runs = defaultdict(lambda: defaultdict(int))  # file -> line -> how often
for data in build.rglob("*.gcda"):
    said = subprocess.run(["gcov", "--json-format", "--stdout", data.resolve()], cwd=build, capture_output=True)
    for text in said.stdout.splitlines():
        for file in json.loads(text)["files"]:
            path = (build / file["file"]).resolve() if not file["file"].startswith("/") else Path(file["file"]).resolve()
            if root / "src" not in path.parents:
                continue
            for line in file["lines"]:
                runs[path][line["line_number"]] += line["count"]
if wanted:
    path = (root / wanted[0]).resolve()
    source = path.read_text().splitlines()
    for line in sorted(n for n, count in runs[path].items() if not count):
        print(f"{line:5} {source[line - 1]}")
    sys.exit()
rooms = defaultdict(lambda: [0, 0])
for path, lines in runs.items():
    room = rooms[path.parent.relative_to(root / "src").as_posix()]
    room[0] += len(lines)
    room[1] += sum(1 for count in lines.values() if count)
print("| Room | Lines | Run by the tests |")
print("|---|---:|---:|")
for room, (all_lines, run) in sorted(rooms.items()):
    print(f"| {room} | {all_lines} | {100 * run / all_lines:.0f} % |")
total = [sum(x) for x in zip(*rooms.values())]
print(f"| **all** | {total[0]} | {100 * total[1] / total[0]:.0f} % |")
EOF
