#!/usr/bin/env bash
# A whole verification in the example host by assistive technology alone, over a session bus of its own
# and under an X server of its own. OUT becomes what a screen reader says on the way.
# usage: accessibility_test.sh BIN SPECIMENS OUT
set -euo pipefail

bin=$1
out=$3
source "$(dirname "$0")/../script/work.sh"

startDisplay
"$bin/kestrova-sandbox" --port 0 --listing-port 0 --store "$work/store" >"$work/log" &
started+=($!)
port() { sed -n "s#.*\(https://\)[^ ]*:\([0-9][0-9]*\).*#\2#p" "$work/log" | head -n 1; }
for _ in $(seq 100); do
  [ -n "$(port)" ] && break
  sleep 0.1
done
mkdir -m 700 "$work/run"
export XDG_DATA_HOME=$work/data XDG_RUNTIME_DIR=$work/run
export QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
# The desktop's own interpreter has the bindings. The bus and its services end with the script.
timeout 150 dbus-run-session -- /usr/bin/python3 "$(dirname "$0")/verification.py" "$out" \
  "$bin/kestrova-host" --specimens "$2" --port "$(port)" --authority "$work/store/authority.pem" \
  2>"$work/errors" || { cat "$work/errors" >&2; fail "not verified"; }
! grep "qt.accessibility" "$work/errors" || fail "the toolkit complained"
