#!/usr/bin/env bash
# Whether long use grows anything: rounds of every command, and a long run on the simulated machine.
# Memory, open files, files in the folders and the size of the logs are looked at all the way.
#
#   scripts/soak.sh [BUILD_FOLDER]      build/release by default
#
# NORVIK_SOAK_ROUNDS: rounds of the commands (200). NORVIK_SOAK_HALF_STEPS: of the run (100000000).
# Exit status 1 when something has grown.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
program=$build/src/cli/norvik-cli
[ -x "$program" ] || { echo "No norvik-cli in $build; build it first." >&2; exit 2; }
exec python3 scripts/torture/soak.py "$program" "${NORVIK_SOAK_ROUNDS:-200}" \
  "${NORVIK_SOAK_HALF_STEPS:-100000000}"
