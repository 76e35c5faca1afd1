#!/usr/bin/env bash
# compare_commits.sh A B [FOLDER...]: whether two commits make the same of the same input. Builds
# norvik-cli of both (without Qt, in out/compare), then compares byte for byte
#
#   the tables of every program of samples/ and of the folders,
#   the program that each drawing of samples/ and of the folders is imported to,
#   every port access of a run of each sample on the virtual clock.
#
# Samples, their machine files and macros are those of commit A for both. Folders are searched to the
# bottom; the ending of a file says what it is. Prints one line for each difference and a count;
# status 1 when something differs. COMPARE_SECONDS bounds each call (default 120).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
[ $# -ge 2 ] || { sed -n '2,12s/^# \{0,1\}//p' "$0" >&2; exit 2; }
work=$PWD/out/compare
limit=${COMPARE_SECONDS:-120}
commits=("$(git rev-parse --short "$1^{commit}")" "$(git rev-parse --short "$2^{commit}")")
shift 2
mkdir -p "$work"

for commit in "${commits[@]}"; do
  tree=$work/$commit
  [ -d "$tree" ] || git worktree add -q --detach "$tree" "$commit"
  (cd "$tree" && cmake --preset companion -DNORVIK_TESTS=OFF >/dev/null &&
    cmake --build --preset companion -j "$(nproc)" --target norvik-cli >/dev/null)
done
samples=$work/${commits[0]}/samples

# $1: commit, then the words for its norvik-cli. What a call says and its status are results, too.
call() {
  local commit=$1 status=0
  shift
  timeout "$limit" "$work/$commit/build/companion/src/cli/norvik-cli" --home "$work/home-$commit" "$@" \
    </dev/null >/dev/null 2>&1 || status=$?
  [ "$status" -ne 124 ] || { echo "$commit: $* took over $limit s" >&2; }
}
differences=0 compared=0 neither=0
compare() {  # $1: what, then two files; a refused input leaves neither
  compared=$((compared + 1))
  if [ ! -e "$2" ] && [ ! -e "$3" ]; then neither=$((neither + 1)); return; fi
  cmp -s "$2" "$3" && return
  differences=$((differences + 1))
  echo "differs: $1"
}
# The machine file of the samples for one call: a run may write positions into it.
machine() { # $1: commit, $2: name
  sed -E "s#=samples/#=#; s#^(MacroFile[0-9]+|Tool_File_Name)=#&$samples/#" "$samples/$2.ini" >"$work/$2-$1.ini"
  echo "$work/$2-$1.ini"
}

mapfile -t programs < <(find "$samples" "$@" -type f -regextype egrep -iregex '.*\.(gc|ngc|nc|gcode|tap)' |
  while read -r file; do
    # The ending .nc is used for drill files, too.
    grep -qE '^(M48|%?FSLA)' "$file" || echo "$file"
  done | sort)
for program in "${programs[@]}"; do
  for name in inch metric; do
    for commit in "${commits[@]}"; do
      mkdir -p "$work/tables-$commit"
      rm -f "$work/tables-$commit"/*
      call "$commit" --machine "$(machine "$commit" "$name")" compile "$program" --tables "$work/tables-$commit"
    done
    for table in NORVIK_Program_LineArc_Data.csv NORVIK_Program_Wire_Data.csv; do
      compare "$program, $name: $table" "$work/tables-${commits[0]}/$table" "$work/tables-${commits[1]}/$table"
    done
  done
done

kind() {
  case "${1,,}" in
    *.dxf) echo dxf ;;
    *.plt | *.hpgl | *.hpg | *.hgl | *.hp) echo hpgl ;;
    *.drl | *.drd | *.exc | *.ncd | *.xln | *drill*.cnc | *drill*.grb | */excellon/*) echo excellon ;;
    *.nc) grep -q '^M48' "$1" && echo excellon ;;
    *.gbr | *.gb | *.gtl | *.gbl | *.gerber | *.pho | *.art | */gerber/*) echo gerber ;;
    *.bmp | *.gif | *.jpg | *.jpeg) echo picture ;;
  esac
}
while read -r drawing; do
  reader=$(kind "$drawing" || true)
  [ -n "$reader" ] || continue
  for commit in "${commits[@]}"; do
    rm -f "$work/import-$commit.gc"
    call "$commit" --machine "$(machine "$commit" inch)" import "$drawing" --as "$reader" -o "$work/import-$commit.gc"
  done
  compare "import of $drawing" "$work/import-${commits[0]}.gc" "$work/import-${commits[1]}.gc"
done < <(find "$samples" "$@" -type f | sort)

for program in "$samples"/*.gc; do
  for commit in "${commits[@]}"; do
    rm -f "$work/ports-$commit.txt"
    call "$commit" --machine "$(machine "$commit" inch)" run "$program" --clock virtual --ports "$work/ports-$commit.txt"
  done
  compare "port accesses of $program" "$work/ports-${commits[0]}.txt" "$work/ports-${commits[1]}.txt"
done
[ "$compared" -gt "$neither" ] || { echo "Nothing was compared" >&2; exit 1; }
echo "$compared compared between ${commits[0]} and ${commits[1]}: $differences different, $neither made by neither"
[ "$differences" -eq 0 ]
