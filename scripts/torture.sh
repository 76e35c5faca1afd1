#!/usr/bin/env bash
# Tries to make norvik-cli lose or mix something: kills, races, full disks, signals, closed pipes,
# other locales, hostile files. Prints a table of what was tried and what was lost.
#
#   scripts/torture.sh [BUILD_FOLDER]      build/debug by default; about three minutes
#
# NORVIK_TORTURE_SECONDS sets the time (3600 for a long one), NORVIK_TORTURE_SEED repeats the choices
# of an earlier round, NORVIK_TORTURE_ROWS ("kills,hostile files") leaves out the other rows. Exit
# status 0: nothing was lost.
set -euo pipefail
cd "$(dirname "$0")/.."
program=${1:-build/debug}/src/cli/norvik-cli
[ -x "$program" ] || program=$(find "${1:-build/debug}" -name norvik-cli -type f -perm -u+x -print -quit)
[ -n "$program" ] || { echo "No norvik-cli in ${1:-build/debug}; build it first." >&2; exit 2; }
# A finding of a sanitizer ends with a status of its own.
export ASAN_OPTIONS="exitcode=99:${ASAN_OPTIONS:-detect_leaks=0}"
export UBSAN_OPTIONS="halt_on_error=1:exitcode=99:${UBSAN_OPTIONS:-}"
exec python3 scripts/torture/torture.py "$program"
