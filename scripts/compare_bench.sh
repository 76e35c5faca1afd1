#!/usr/bin/env bash
# compare_bench.sh BASE [OTHER]: whether OTHER (default: HEAD) is slower than BASE. Builds the
# benchmarks of both commits (without Qt, in out/bench), runs both alternately on generated inputs,
# and prints the median of each figure and their ratio:
#
#   step_loop_bench   own cost of a half step, of a toggle, of the virtual clock
#   run_loop_bench    cost of a program step
#   compile_bench     text to tables, and the line pass alone
#
# COMPARE_RUNS says how often each runs (default 5). Status 1 when OTHER takes more than 3 % longer
# somewhere: on a machine that does other things as well, run it again before believing that.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
[ $# -ge 1 ] || { sed -n '2,12s/^# \{0,1\}//p' "$0" >&2; exit 2; }
install_missing "${build_packages[@]}" libbenchmark-dev python3
work=$PWD/out/bench
mkdir -p "$work"
commits=("$(git rev-parse --short "$1^{commit}")" "$(git rev-parse --short "${2:-HEAD}^{commit}")")
for commit in "${commits[@]}"; do
  tree=$work/$commit
  [ -d "$tree" ] || git worktree add -q --detach "$tree" "$commit"
  (cd "$tree" && cmake --preset bench -DNORVIK_DESKTOP=OFF -DNORVIK_TESTS=OFF >/dev/null &&
    cmake --build build/release -j "$(nproc)" --target step_loop_bench run_loop_bench compile_bench >/dev/null)
done
python3 - "$work" "${COMPARE_RUNS:-5}" "${commits[@]}" <<'EOF'
import json, math, re, statistics, subprocess, sys, tempfile
from pathlib import Path

work, runs, commits = Path(sys.argv[1]), int(sys.argv[2]), sys.argv[3:5]
MOST_SLOWER = 1.03


def curve(lines):
    """Short moves along a closed curve, as a program for a contour has them."""
    yield "G90 G20 F30"
    for i in range(lines):
        t = 2 * math.pi * i / 4000
        yield f"G1 X{4 + 3 * math.sin(3 * t):.4f} Y{4 + 3 * math.sin(2 * t):.4f}"


def mixed(lines):
    """Travel, plunge, cut, arcs, outputs and comments in turn."""
    yield "G90 G20 F30"
    for i in range(lines // 8):
        x, y = i % 90 / 10, i // 90 % 70 / 10
        yield from (f"G0 X{x:.4f} Y{y:.4f}", "M3", "G1 Z-0.1 F10", f"G1 X{x + .05:.4f} F30",
                    f"G2 X{x + .1:.4f} Y{y + .05:.4f} I0.0000 J0.0500", f"G1 Y{y + .08:.4f} (side)", "M5", "G0 Z0.25")


def arcs(lines):
    """Quarter circles, each cut into chords."""
    yield "G90 G20 F30"
    yield "G1 X1.0000 Y0.0000"
    ends = [(0, 1, -1, 0), (-1, 0, 0, -1), (0, -1, 1, 0), (1, 0, 0, 1)]
    for i in range(lines):
        x, y, ci, cj = ends[i % 4]
        yield f"G3 X{x:.4f} Y{y:.4f} I{ci:.4f} J{cj:.4f}"


inputs = work / "inputs"
inputs.mkdir(exist_ok=True)
for name, lines in {"contour_900k.ngc": curve(900_000), "contour_1m.ngc": curve(1_000_000),
                    "mixed_100k.ngc": mixed(100_000), "arcs_20k.ngc": arcs(20_000)}.items():
    if not (inputs / name).exists():
        (inputs / name).write_text("\n".join(lines) + "\n")


def google(program, skip):
    """Half steps and steps where the benchmark counts them, else the processor time of a round."""
    said = subprocess.run([program, "--benchmark_format=json", f"--benchmark_filter=-{skip}"],
                          capture_output=True, text=True, check=True).stdout
    for row in json.loads(said)["benchmarks"]:
        counted = row.get("half_step", row.get("step"))
        yield row["name"], counted if counted is not None else row["cpu_time"]


def compile_times(program):
    with tempfile.TemporaryDirectory(dir="/dev/shm" if Path("/dev/shm").is_dir() else None) as tables:
        said = subprocess.run([program, inputs, tables], capture_output=True, text=True, check=True).stdout
    name = ""
    for line in said.splitlines():
        if found := re.match(r"(\S+): ", line):
            name = found.group(1)
        if found := re.search(r"line pass alone ([\d.]+) s|^  total ([\d.]+) s", line):
            yield f"{name} {'line pass' if found.group(1) else 'total'}", float(found.group(1) or found.group(2))


def figures(commit):
    programs = work / commit / "build/release/bench"
    yield from google(programs / "step_loop_bench", "Many_Moves")
    yield from google(programs / "run_loop_bench", "Latency")
    yield from compile_times(programs / "compile_bench")


taken = {commit: {} for commit in commits}
for run in range(runs):
    for commit in commits if run % 2 == 0 else reversed(commits):
        for name, value in figures(commit):
            taken[commit].setdefault(name, []).append(value)
base, other = (taken[commit] for commit in commits)
slower = []
print(f"| figure, median of {runs} | {commits[0]} | {commits[1]} | ratio |\n|---|---:|---:|---:|")
for name in base:
    if name not in other:
        print(f"| {name} | {statistics.median(base[name]):.4g} | | |")
        continue
    before, after = statistics.median(base[name]), statistics.median(other[name])
    print(f"| {name} | {before:.4g} | {after:.4g} | {after / before:.3f} |")
    if after > before * MOST_SLOWER:
        slower.append(name)
print("Slower: " + ", ".join(slower) if slower else "Nothing is slower.")
sys.exit(1 if slower else 0)
EOF
