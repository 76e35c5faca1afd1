#!/usr/bin/env bash
# compare_builds.sh A B: compiles every sample with the norvik-cli of two build folders, under a
# point and under a comma region with the machine file it is made for, and fails unless all four pairs of tables are byte-identical.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
count=0
for program in samples/*.gc; do
  name=$(basename "$program" .gc)
  machine=samples/inch.ini
  [ "$name" = engraving ] && machine=samples/metric.ini
  for build in "$1" "$2"; do
    for region in point comma; do
      options=()
      [ "$region" = comma ] && options=(--decimal-comma)
      mkdir -p "$work/$name/$build-$region"
      "build/$build/src/cli/norvik-cli" --home "$work/home-$build-$region" --machine "$machine" "${options[@]}" \
        compile "$program" --tables "$work/$name/$build-$region" >"$work/said.txt" 2>&1 ||
        { echo "$name: the build $build could not compile it:" >&2; cat "$work/said.txt" >&2; exit 1; }
    done
  done
  first=$work/$name/$1-point
  for other in "$1-comma" "$2-point" "$2-comma"; do
    for table in NORVIK_Program_LineArc_Data.csv NORVIK_Program_Wire_Data.csv; do
      cmp "$first/$table" "$work/$name/$other/$table" || { echo "$name: $table differs in $other" >&2; exit 1; }
      count=$((count + 1))
    done
  done
done
[ "$count" -gt 0 ] || { echo "No sample was compared" >&2; exit 1; }
echo "$count tables compared, all identical"
