#!/usr/bin/env bash
# A window under an X server, driven by real pointer and key events, tells and shows the same as one
# that is drawn into memory and driven from inside.
# usage: live_window_test.sh PATH/OF/live_window
set -euo pipefail

program=$1
source "$(dirname "$0")/work.sh"

QT_QPA_PLATFORM=offscreen timeout 60 "$program" "$work/memory.png" --drive >"$work/memory"

startDisplay
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
