#!/usr/bin/env bash
# A build folder that was made for the sandbox and is given another backend keeps nothing of the
# sandbox's: neither its authority nor its site.
# usage: deployment_test.sh ROOT
set -euo pipefail
root=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$*" >&2; exit 1; }
commands=$work/build/compile_commands.json

cmake -S "$root" -B "$work/build" -G Ninja -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
grep -q 'kestrova-sandbox/authority\.pem' "$commands" || fail "the sandbox is not trusted"

cmake "$work/build" -DKESTROVA_BACKEND_HOST=api.example.com >/dev/null
! grep -o '[^ ]*\(authority\.pem\|localhost\)[^ ]*' "$commands" || fail "these are the sandbox's"
grep -q 'KESTROVA_SITE_HOST=.*api\.example\.com' "$commands" || fail "the site is not the backend's"

cmake "$work/build" -DKESTROVA_BACKEND_CA=/etc/own.pem -DKESTROVA_SITE_HOST=www.example.com >/dev/null
grep -q 'KESTROVA_BACKEND_CA=.*/etc/own\.pem' "$commands" || fail "another authority was wanted"
grep -q 'KESTROVA_SITE_HOST=.*www\.example\.com' "$commands" || fail "another site was wanted"
