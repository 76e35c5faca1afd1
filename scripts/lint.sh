#!/usr/bin/env bash
# lint.sh: clang-format and clang-tidy by the project's own rules (.clang-format, .clang-tidy).
#
#   scripts/lint.sh                    every file; tidy takes most of an hour on two cores
#   scripts/lint.sh --changed [BASE]   files that differ from where this branch left BASE (main), and
#                                      those not committed yet
#   scripts/lint.sh --staged           files of the commit that is being made
#   scripts/lint.sh FILE...            these files
#   scripts/lint.sh --format           the form of every file, without tidy
#   scripts/lint.sh --hook             sets up the check before each commit of this clone; to end it:
#                                      git config --unset core.hooksPath
#
# A header is looked at by tidy through the source of its name. NORVIK_LINT_SECONDS ends tidy after so
# many seconds; what was not looked at is said and is no failure. Status 1 when something was found.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
install_missing clang-format clang-tidy

sources() { grep -E '^(src|tests|bench|fuzz)/.*\.(h|cpp)$' || true; }
tidy=yes
case "${1:-}" in
  --hook)
    git config core.hooksPath scripts/hooks
    echo "Every commit is now linted first (git commit --no-verify passes it by)."
    exit ;;
  --changed)
    base=$(git merge-base HEAD "${2:-main}" 2>/dev/null || git rev-parse HEAD)
    mapfile -t files < <({ git diff --name-only --diff-filter=d "$base"; git ls-files -o --exclude-standard; } | sources | sort -u) ;;
  --staged) mapfile -t files < <(git diff --cached --name-only --diff-filter=d | sources) ;;
  --format)
    tidy=no
    mapfile -t files < <(git ls-files | sources) ;;
  "") mapfile -t files < <(git ls-files | sources) ;;
  -*) sed -n '2,15s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  *) files=("$@") ;;
esac
[ "${#files[@]}" -gt 0 ] || { echo "Lint: no file of the project has changed"; exit 0; }

failed=0
clang-format --dry-run -Werror "${files[@]}" || {
  echo "Put the files above in form by: clang-format -i FILE" >&2
  failed=1
}

[ "$tidy" = yes ] || {
  [ "$failed" -eq 0 ] && echo "Lint: ${#files[@]} files in form"
  exit "$failed"
}

# A build that is only configured, for the compile commands; its flags are GCC's, of which .clang-tidy
# says the rest.
build=build/tidy
cmake --preset debug -B "$build" -DNORVIK_TIDY=ON >/dev/null
mapfile -t units < <(for file in "${files[@]}"; do
  unit=${file%.*}.cpp
  # Only what this build compiles: windows, benchmarks and fuzz targets may be left out of it.
  if [ -f "$unit" ] && grep -qF "$PWD/$unit\"" "$build/compile_commands.json"; then echo "$unit"; fi
done | sort -u)

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
end=$(($(date +%s) + ${NORVIK_LINT_SECONDS:-100000}))
tidy() { # $1: folder for the results, $2: build, $3: no more after, $4: file
  [ "$(date +%s)" -lt "$3" ] || { echo "$4" >>"$1/left"; return 0; }
  local status=0
  clang-tidy -p "$2" --quiet "$4" >"$1/${4//\//_}" 2>/dev/null || status=$?
  [ "$status" -eq 0 ] || { cat "$1/${4//\//_}"; echo "$4" >>"$1/found"; }
}
export -f tidy
[ "${#units[@]}" -eq 0 ] ||
  printf '%s\0' "${units[@]}" | xargs -0 -P "$(nproc)" -n 1 bash -c 'tidy "$@"' - "$out" "$build" "$end"

[ ! -s "$out/left" ] || echo "Lint: $(wc -l <"$out/left") of ${#units[@]} files were not tidied, for want of time"
[ ! -s "$out/found" ] || failed=1
[ "$failed" -eq 0 ] && echo "Lint: ${#files[@]} files in form, ${#units[@]} looked at by tidy, nothing found"
exit "$failed"
