#!/usr/bin/env bash
# Starts `tolmex desktop` in a virtual screen, works it by mouse and keys, and saves pictures of what it looks like:
#   tools/window-shots.sh [PROGRAM] [FOLDER]
# Needs Xvfb, openbox, xdotool and ImageMagick (packages xvfb, openbox, xdotool, imagemagick).
set -euo pipefail
cd "$(dirname "$0")/.."

program=$(realpath "${1:-build/release/bin/tolmex}")
folder=${2:-build/window-shots}
mkdir -p "$folder"
folder=$(realpath "$folder")
for tool in Xvfb openbox xdotool import; do
  command -v "$tool" >/dev/null || { echo "window-shots: $tool is missing" >&2; exit 1; }
done

home=$(mktemp -d)
started=()
finish() {
  for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
  rm -rf "$home"
}
trap finish EXIT
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state XDG_CACHE_HOME=$home/cache
cp docs/guide/tontti.dxf docs/guide/orvpath.cfg "$home"

begin() {  # begin <display> <screen>
  export DISPLAY=$1
  Xvfb "$1" -screen 0 "$2x24" >/dev/null 2>&1 &
  started+=($!)
  sleep 1
  openbox >/dev/null 2>&1 &
  started+=($!)
  sleep 1
}
window() {  # window <arguments...>: starts the program and waits for its window
  "$program" desktop "$@" >/dev/null 2>"$folder/problems.txt" &
  pid=$!
  started+=("$pid")
  xdotool search --sync --onlyvisible --name 'Tolmex' >/dev/null
  sleep 3
}
shot() { sleep 0.8; import -window root "$folder/$1.png"; echo "$folder/$1.png"; }
leave() { kill "$pid" 2>/dev/null || true; wait "$pid" 2>/dev/null || true; }
at() { xdotool mousemove "$1" "$2"; sleep 0.7; }
line() { xdotool type --delay 15 "$1"; xdotool key Return; sleep 1; }

begin :97 1920x1080
window --geometry 1920x1050
shot 1-start
leave
window "$home/tontti.dxf" --geometry 1920x1050
shot 2-open
xdotool type --delay 40 'met'
shot 3-completion
xdotool key Return
sleep 1
line '(handent "108")'
shot 4-selecting
at 900 600
xdotool click 3
shot 5-forest
for answers in 'nur|(handent "101")' 'asf|(handent "102")' 'laa|(handent "104")' 'pen|(handent "111")' 'har|(handent "141")'; do
  line "${answers%%|*}"
  line "${answers##*|}"
  xdotool key Return
  sleep 1
done
line 'rak'
line '(handent "131")'
xdotool key Return
shot 6-building
xdotool key Escape
sleep 1
xdotool key ctrl+2
shot 7-elements
xdotool key ctrl+3
shot 8-layers
xdotool key ctrl+e
shot 9-export
xdotool key Escape
sleep 0.5
xdotool key ctrl+shift+d
shot 10-dark
xdotool key ctrl+shift+d
xdotool key F2
shot 11-history
leave

begin :98 1366x768
window "$home/tontti.dxf" --geometry 1366x740
shot 12-small
xdotool key ctrl+1
shot 13-small-panel
xdotool key Escape
xdotool key ctrl+e
shot 14-small-export
leave
window "$home/tontti.dxf" --geometry 960x560 --language en
shot 15-smallest
leave
