#!/usr/bin/env bash
# Takes the pictures of docs/pictures/ from the running program: after opening a sample, during a run on
# the simulated machine, and in dark. Needs Xvfb, xdotool and ImageMagick; build the target norvik first.
set -euo pipefail
cd "$(dirname "$0")/.."
program=${NORVIK:-build/release/src/ui/norvik}
display=:${SCREENSHOT_DISPLAY:-47}
scratch=$(mktemp -d)
started=()
finish() {
  for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
  rm -rf "$scratch"
}
trap finish EXIT
mkdir -p docs/pictures

Xvfb "$display" -screen 0 1600x1000x24 >/dev/null 2>&1 &
started+=($!)
export DISPLAY=$display QT_QPA_PLATFORM=xcb TMPDIR=$scratch
export XDG_DATA_HOME=$scratch/data XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch/run
mkdir -p "$XDG_DATA_HOME/norvik" "$XDG_CONFIG_HOME/norvik" && mkdir -m 700 "$XDG_RUNTIME_DIR"
sleep 1

picture() {
  import -window root -resize 1100x +dither -colors 160 -define png:compression-level=9 "PNG8:docs/pictures/$1.png"
}
window() {
  xdotool search --onlyvisible --name 'Norvik 4' | head -1
}
# $1: light or dark. The sample stands first among the recent files.
start() {
  sed -E "s#^(MacroFile[0-9]+|Tool_File_Name)=#&$PWD/samples/#" samples/inch.ini >"$XDG_DATA_HOME/norvik/Default_Machine.ini"
  printf '[Platform]\nPort_Access=Simulated\n[FileList]\nRecentFile_1=%s/samples/pocket.gc\n' "$PWD" \
    >"$XDG_CONFIG_HOME/norvik/Norvik.Ini"
  NORVIK_THEME=$1 "$program" >"$scratch/out.txt" 2>&1 &
  running=$!
  started+=("$running")
  for _ in $(seq 40); do
    [ -n "$(window)" ] && break
    sleep 0.25
  done
  sleep 1
  xdotool windowfocus "$(window)"
  # File, Recent files, the first entry.
  xdotool key --delay 150 alt+f r Return
  sleep 3
  # Compile.
  xdotool key ctrl+b
  sleep 3
  # View, Zoom to program.
  xdotool key --delay 150 alt+v p
  sleep 1
}
stop() {
  kill "$running"
  wait "$running" 2>/dev/null || true
}

start light
picture program
# Window, Simulated machine; then Play.
xdotool key --delay 150 alt+w s
sleep 1
xdotool mousemove 960 150 click 1
# The program waits for its tool; Play goes on.
sleep 2
xdotool click 1
sleep 6
picture run
stop
start dark
picture dark
stop
ls -l docs/pictures
