#!/usr/bin/env bash
# The layer check passes on a clean tree and fails on each kind of forbidden include.
# usage: check_layers_test.sh PATH/OF/check-layers
set -euo pipefail

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree"/{script,platform/{dispatch,foundation,network},sdk/{core,backend},sandbox}
cp "$1" "$tree/script/check-layers"
git -C "$tree" init -q
echo '#pragma once' | tee "$tree"/platform/{dispatch,foundation,network}/A.h \
  "$tree"/sdk/{core,backend}/A.h "$tree"/sandbox/A.h >/dev/null
printf '#include "platform/foundation/A.h"\n#include <curl/curl.h>\n' >"$tree/platform/network/A.cpp"
printf '#include "sdk/backend/A.h"\n#include "platform/network/A.h"\n' >"$tree/sdk/core/A.cpp"
"$tree/script/check-layers"

# refused FILE LINE: the tree with that line in that file does not pass, and the file is named.
refused() {
  printf '%s\n' "$2" >"$tree/$1"
  if output=$("$tree/script/check-layers"); then
    echo "passed, but should not: $1 with $2" >&2
    exit 1
  fi
  grep -qF "$1" <<<"$output"
  rm "$tree/$1"
}
refused platform/dispatch/B.cpp '#include "platform/foundation/A.h"'
refused platform/network/B.cpp '#include "sdk/core/A.h"'
refused sdk/backend/B.cpp '#include "sdk/core/A.h"'
refused sandbox/B.cpp '#include "platform/foundation/A.h"'
refused sdk/core/B.cpp '#include <curl/curl.h>'
refused platform/foundation/B.cpp '#  include <curl/curl.h>'
refused platform/network/B.h '#include <curl/curl.h>'
refused platform/network/B.cpp '#include <unheard/of.h>'
refused platform/network/B.cpp '#include "missing/A.h"'
refused unknown.cpp 'int a;'
