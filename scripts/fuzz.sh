#!/usr/bin/env bash
# fuzz.sh [--grow] [SECONDS]: runs every built fuzz target for so many seconds (default 60), as many at
# a time as there are processors, each from the files in fuzz/seeds/<name>/ and fuzz/corpus/<name>/
# where there are any. Ends with status 1 when one found a failure; its input then lies in
# out/fuzz/<name>/.
#
# --grow: afterwards the inputs that reach something new go into fuzz/corpus/<name>/, short ones alone,
# at most 200 of a target. They are made by the targets themselves, from the project's own seeds.
set -uo pipefail
cd "$(dirname "$0")/.."
grow=no
if [ "${1:-}" = --grow ]; then
  grow=yes
  shift
fi
seconds=${1:-60}
run_target() {
  local target=$1 name work seeds
  name=$(basename "$target")
  work=$PWD/out/fuzz/$name
  mkdir -p "$work/corpus" "$work/home"
  seeds=()
  [ -d "fuzz/seeds/$name" ] && seeds=("$PWD/fuzz/seeds/$name")
  [ -d "fuzz/corpus/$name" ] && seeds+=("$PWD/fuzz/corpus/$name")
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
export -f run_target grow_corpus
export seconds grow
mapfile -t targets < <(find "$PWD/build/fuzz/fuzz" -maxdepth 1 -type f -name 'fuzz_*' -executable | sort)
[ "${#targets[@]}" -gt 0 ] || { echo "No fuzz target is built: cmake --preset fuzz && cmake --build --preset fuzz --target fuzz_targets" >&2; exit 1; }
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'run_target {}'
