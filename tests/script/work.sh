# Sourced by tests: a folder of the test's own in $work, and its processes in started; both are gone at
# the end.

work=$(mktemp -d)
started=()
finish() {
  for process in "${started[@]}"; do
    kill "$process" 2>/dev/null && wait "$process" 2>/dev/null
  done || true
  rm -rf "$work"
}
trap finish EXIT
fail() { echo "$*" >&2; exit 1; }

# What a developer's session says to the toolkit.
unset QT_SCALE_FACTOR QT_STYLE_OVERRIDE XMODIFIERS QT_IM_MODULE

# startDisplay: an X server on a display that is free, for the programs that follow.
startDisplay() {
  mkfifo "$work/display"
  Xvfb -displayfd 3 -screen 0 1024x900x24 -nolisten tcp 3>"$work/display" 2>"$work/server" &
  started+=($!)
  read -r -t 20 number <"$work/display"
  export DISPLAY=:$number
}
