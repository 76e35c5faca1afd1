#!/usr/bin/env bash
# fuzz.sh [--grow] [--rooms] [SECONDS]: runs every built fuzz target for so many seconds (default 60), as many at
# a time as there are processors, each from the files in fuzz/seeds/<name>/ and fuzz/corpus/<name>/
# where there are any. Ends with status 1 when one found a failure; its input then lies in
# out/fuzz/<name>/.
#
# --grow: afterwards the inputs that reach something new go into fuzz/corpus/<name>/, short ones alone,
# at most 200 of a target. They are made by the targets themselves, from the project's own seeds.
#
# --rooms: afterwards, for each room, how many of its branches all inputs together reach. It takes some
# minutes.
set -uo pipefail
cd "$(dirname "$0")/.."
grow=no rooms=no
while [[ ${1:-} == --* ]]; do
  case $1 in
    --grow) grow=yes ;;
    --rooms) rooms=yes ;;
    *) echo "fuzz.sh knows --grow and --rooms, not $1" >&2 && exit 2 ;;
  esac
  shift
done
seconds=${1:-60}
# The folders of the project's own inputs, into `seeds`.
find_seeds() {
  seeds=()
  [ -d "fuzz/seeds/$1" ] && seeds=("$PWD/fuzz/seeds/$1")
  [ -d "fuzz/corpus/$1" ] && seeds+=("$PWD/fuzz/corpus/$1")
}
run_target() {
  local target=$1 name work seeds
  name=$(basename "$target")
  work=$PWD/out/fuzz/$name
  mkdir -p "$work/corpus" "$work/home"
  find_seeds "$name"
  local options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=3000 -max_len=8192)
  if (cd "$work/home" && "$target" "${options[@]}" -artifact_prefix="$work/" \
        "$work/corpus" "${seeds[@]}" >"$work/log.txt" 2>&1); then
    echo "$name: clean after $seconds s, $(grep -oE '^#[0-9]+' "$work/log.txt" | tail -1 | tr -d '#') inputs, $(grep -oE 'cov: [0-9]+' "$work/log.txt" | tail -1 | tr -dc 0-9) places reached"
    [ "$grow" = no ] || grow_corpus "$target" "$name" "$work"
  else
    echo "$name: FAILED"
    tail -40 "$work/log.txt"
    return 1
  fi
}
grow_corpus() {
  local target=$1 name=$2 work=$3 kept=$PWD/fuzz/corpus/$2 merged=$3/merged
  rm -rf "$merged"
  mkdir -p "$merged" "$kept"
  # What the kept files reach already needs no second file.
  cp "$kept"/* "$merged" 2>/dev/null
  (cd "$work/home" && "$target" -merge=1 -max_len=2048 "$merged" "$work/corpus" >"$work/merge.txt" 2>&1) || return 1
  find "$merged" -type f -size -3k | head -200 | xargs -r cp -t "$kept"
  echo "$name: $(find "$kept" -type f | wc -l) inputs kept"
}
# One line a function that the target holds: edges reached, edges, room, function.
reached_by() {
  local target=$1 name work seeds
  name=$(basename "$target")
  work=$PWD/out/fuzz/$name
  find_seeds "$name"
  (cd "$work/home" && "$target" -runs=0 -print_coverage=1 "$work/corpus" "${seeds[@]}" 2>&1) |
    sed -nE 's|^(UN)?COVERED_FUNC: hits: [0-9]+ edges: ([0-9]+)/([0-9]+) (.*/src/([a-z_]+)/.*)|\2\t\3\t\5\t\4|p' >"$work/reached.txt"
}
# A function that several targets hold counts once, as the one that reaches most of it.
print_rooms() {
  printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'reached_by {}'
  cat out/fuzz/*/reached.txt | awk -F'\t' '
    { if ($1 > most[$4] || !($4 in most)) most[$4] = $1; all[$4] = $2; room[$4] = $3 }
    END {
      for (f in all) { r = room[f]; edges[r] += all[f]; reached[r] += most[f]; functions[r]++; entered[r] += most[f] > 0 }
      for (r in edges) printf "%-12s %6d of %6d branches (%3d %%), %5d of %5d functions\n",
        r, reached[r], edges[r], 100 * reached[r] / edges[r], entered[r], functions[r]
    }' | sort
}
export -f find_seeds run_target grow_corpus reached_by
export seconds grow
mapfile -t targets < <(find "$PWD/build/fuzz/fuzz" -maxdepth 1 -type f -name 'fuzz_*' -executable | sort)
[ "${#targets[@]}" -gt 0 ] || { echo "No fuzz target is built: cmake --preset fuzz && cmake --build --preset fuzz --target fuzz_targets" >&2; exit 1; }
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'run_target {}'
status=$?
[ "$rooms" = no ] || print_rooms
exit "$status"
