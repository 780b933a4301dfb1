#!/usr/bin/env bash
# A window under an X server, driven by real pointer and key events, tells and shows the same as one
# that is drawn into memory and driven from inside.
# usage: live_window_test.sh PATH/OF/live_window
set -euo pipefail

program=$1
work=$(mktemp -d)
started=()
finish() {
  for process in "${started[@]}"; do
    kill "$process" 2>/dev/null && wait "$process" 2>/dev/null
  done || true
  rm -rf "$work"
}
trap finish EXIT

unset QT_SCALE_FACTOR QT_STYLE_OVERRIDE XMODIFIERS QT_IM_MODULE
QT_QPA_PLATFORM=offscreen timeout 60 "$program" "$work/memory.png" --drive >"$work/memory"

# The server picks a display that is free, and says which.
mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>"$work/server" &
started+=($!)
read -r -t 20 number <"$work/display"
export DISPLAY=:$number

QT_QPA_PLATFORM=xcb timeout 120 "$program" "$work/live.png" >"$work/live" &
live=$!
started+=("$live")

# await WORDS: the rest of the line that begins so, once the window has written it.
await() {
  for _ in $(seq 300); do
    if line=$(grep -m 1 "^$1" "$work/live"); then
      echo "${line#"$1"}"
      return
    fi
    kill -0 "$live" || return 1
    sleep 0.1
  done
  echo "the window never wrote: $1" >&2
  return 1
}
# point X Y: moves the pointer there.
point() { xdotool mousemove --sync "$1" "$2"; }

place=$(await "at button ")
# No window manager gives the window the keyboard.
xdotool windowfocus --sync "$(xdotool search --onlyvisible --class live_window | tail -n 1)"
point $place
xdotool click 1
place=$(await "at field ")
point $place
xdotool click 1
await "at keys " >/dev/null
xdotool type --delay 20 Ada
place=$(await "at list ")
point $place
xdotool click 5
wait "$live"

# Where the window stands on the screen is the server's affair.
diff <(grep -v '^at ' "$work/memory") <(grep -v '^at ' "$work/live")
grep -q '^tapped 1$' "$work/live"
grep -q '^text Ada$' "$work/live"
cmp "$work/memory.png" "$work/live.png"
