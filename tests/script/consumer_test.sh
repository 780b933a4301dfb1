#!/usr/bin/env bash
# Installs a build into an empty prefix, moves it, and builds and runs an integrator's project with
# it; or, with --packages, does the same with what the packages in the build's folder hold, and compares
# the sizes with their budgets. Of a shared library it compares what is exported with what is kept.
# usage: consumer_test.sh BUILD EXPORTS [--packages]
set -euo pipefail
export LC_ALL=C

build=$1
exports=$2
packages=${3:-}
here=$(cd "$(dirname "$0")/../consumer" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$*" >&2; exit 1; }

if [ -n "$packages" ]; then
  for package in "$build"/*.deb; do dpkg-deb -x "$package" "$work/first"; done
  mv "$work/first/usr" "$work/prefix"
  "$work/prefix/bin/kestrova-doctor" --check bundle >"$work/lines" || fail "$(cat "$work/lines")"
  "$work/prefix/bin/kestrova-sandbox" --help >"$work/lines"
else
  for component in runtime dev; do
    cmake --install "$build" --prefix "$work/first" --component $component --strip >"$work/files"
  done
  mv "$work/first" "$work/prefix"
fi
library=$(find "$work/prefix" -name 'libkestrova.so.*.*.*')
bundle=$(find "$work/prefix" -name Kestrova.bundle)

if [ -n "$library" ]; then
  nm -DC --defined-only "$library" | cut -d' ' -f3- |
    grep -vE '^((typeinfo name|typeinfo|vtable) for )?std::' | sort -u >"$build/exports.txt"
  diff "$exports" "$build/exports.txt" ||
    fail "The library exports something else. If that is meant: cp $build/exports.txt sdk/exports.txt"
fi
[ -z "$packages" ] || for pair in "$library 1572864" "$bundle 4194304"; do
  read -r what most <<<"$pair"
  bytes=$(du -sb "$what" | cut -f1)
  echo "$(basename "$what"): $bytes bytes of $most"
  [ "$bytes" -le "$most" ] || fail "that is too much"
done

check() {
  [ "$("$1" | tail -n 2)" = "$(printf 'notInitializedApiKey\nbundle found')" ] || fail "$1 says: $("$1")"
}
cmake -S "$here" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/lines"
cmake --build "$work/build" >"$work/lines" || { cat "$work/lines"; exit 1; }
check "$work/build/console"
QT_QPA_PLATFORM=offscreen timeout 30 "$work/build/window" "$work/flow.png" >"$work/lines"
[ "$(stat -c %s "$work/flow.png")" -gt 5000 ] || fail "the flow was not drawn"

# Only the shared library has a description for pkg-config.
[ -n "$library" ] || exit 0
PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name kestrova.pc)")
export PKG_CONFIG_PATH
read -ra flags <<<"$(pkg-config --cflags --libs kestrova)"
c++ -std=c++20 "$here/console.cpp" "${flags[@]}" -Wl,-rpath,"$(dirname "$library")" \
  -o "$work/by-pkg-config"
check "$work/by-pkg-config"
