#!/usr/bin/env bash
# fuzz.sh [SECONDS]: runs every built fuzz target for so many seconds (default 60), two at a time,
# each from the seed files in fuzz/seeds/<name>/ where there are any. Ends with status 1 when one
# found a failure; its input then lies in out/fuzz/<name>/.
set -uo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
run_target() {
  local target=$1 name work seeds
  name=$(basename "$target")
  work=$PWD/out/fuzz/$name
  mkdir -p "$work/corpus" "$work/home"
  seeds=()
  [ -d "fuzz/seeds/$name" ] && seeds=("$PWD/fuzz/seeds/$name")
  local options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=3000 -max_len=8192)
  if (cd "$work/home" && "$target" "${options[@]}" -artifact_prefix="$work/" \
        "$work/corpus" "${seeds[@]}" >"$work/log.txt" 2>&1); then
    echo "$name: clean after $seconds s, $(grep -oE '^#[0-9]+' "$work/log.txt" | tail -1 | tr -d '#') inputs"
  else
    echo "$name: FAILED"
    tail -40 "$work/log.txt"
    return 1
  fi
}
export -f run_target
export seconds
mapfile -t targets < <(find "$PWD/build/fuzz/fuzz" -maxdepth 1 -type f -name 'fuzz_*' -executable | sort)
[ "${#targets[@]}" -gt 0 ] || { echo "No fuzz target is built: cmake --preset fuzz && cmake --build --preset fuzz --target fuzz_targets" >&2; exit 1; }
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'run_target {}'
