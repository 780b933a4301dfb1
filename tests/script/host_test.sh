#!/usr/bin/env bash
# A scripted end user goes through the whole flow in the example host: without a display with each kind
# of document, and in a window under an X server with files of the user's own. What arrives at the
# sandbox is reopened by other programs.
# usage: host_test.sh BIN SPECIMENS
set -euo pipefail

bin=$1
specimens=$2
source "$(dirname "$0")/work.sh"

"$bin/kestrova-sandbox" --port 0 --listing-port 0 --store "$work/store" >"$work/log" &
started+=($!)
# port NAME: the port that the sandbox printed for that listener.
port() { sed -n "s#.*\($1\)[^ ]*:\([0-9][0-9]*\).*#\2#p" "$work/log" | head -n 1; }
for _ in $(seq 100); do
  [ -n "$(port https://)" ] && [ -n "$(port http://)" ] && break
  sleep 0.1
done
# host DATA OPTION...: one verification that keeps its files below DATA.
host() {
  data=$work/$1
  shift
  XDG_DATA_HOME=$data timeout 100 "$bin/kestrova-host" --scripted --port "$(port https://)" \
    --authority "$work/store/authority.pem" "$@" >"$data.lines" || fail "the host failed: $*"
}
# checkRecord: the sandbox's record into a file; everything was answered and as the contract has it.
checkRecord() {
  curl --silent --noproxy '*' "http://localhost:$(port http://)/" >"$work/record"
  ! grep -E '^    deviation: |  unanswered' "$work/record" || fail "not as the contract has it"
}
documents() { echo "$work/$1/kestrova-host/Documents"; }
# size FILE: width x height, read by another program.
size() { ffprobe -v error -select_streams v -show_entries stream=width,height -of csv=p=0 "$1"; }

export QT_QPA_PLATFORM=offscreen
runs=()
for document in passport licence id; do
  host "$document" --document "$document" --specimens "$specimens" &
  runs+=($!)
done
for run in "${runs[@]}"; do wait "$run"; done
checkRecord
[ "$(grep -c ' check_authentication_document_video_success  200' "$work/record")" = 3 ]
[ "$(ls "$(documents passport)" | wc -l)" = 2 ] || fail "passport: $(ls "$(documents passport)")"
[ "$(ls "$(documents id)" | wc -l)" = 3 ] || fail "id: $(ls "$(documents id)")"

# The movie: eight pictures, each shown a fifth of a second, in the colours of the drawing.
movie=$(documents id)/exprotvideo.mp4
frames=$(ffprobe -v error -select_streams v -show_entries frame=pts_time,pkt_duration_time -of csv=p=0 \
  "$movie")
expected=$(for time in 0.0 0.2 0.4 0.6 0.8 1.0 1.2 1.4; do echo "${time}00000,0.200000"; done)
[ "$frames" = "$expected" ] || fail "the movie has other times: $frames"
[ "$(size "$movie")" = "720,1280" ] || fail "the movie is $(size "$movie")"
colour() {
  ffmpeg -nostdin -v error -i "$1" -frames:v 1 -vf crop=16:16:8:8,scale=1:1 -f rawvideo \
    -pix_fmt rgb24 - | od -An -tu1
}
read -r red green blue <<<"$(colour "$movie")"
read -r ownRed ownGreen ownBlue <<<"$(colour "$specimens/face/00.png")"
for difference in $((red - ownRed)) $((green - ownGreen)) $((blue - ownBlue)); do
  [ "${difference#-}" -le 6 ] || fail "the wall is $red $green $blue for $ownRed $ownGreen $ownBlue"
done
# As it lies on disk it has arrived.
grep -q "sha256 $(sha256sum "$movie" | cut -d' ' -f1)" "$work/record" || fail "another movie arrived"

# A photograph of 12 megapixels.
ffmpeg -nostdin -v error -y -i "$specimens/id-front.png" -vf scale=3000:4000 "$work/front.jpg"
startDisplay
export QT_QPA_PLATFORM=xcb
host own --document id --country gb --email "$(printf 'a%.0s' {1..20})@example.com" \
  --specimens "$specimens" --front "$work/front.jpg" --pictures "$work/pictures"
checkRecord
front=$(documents own)/picture.png
[ "$(size "$front")" = "990,1320" ] || fail "the front is $(size "$front")"
[ "$(size "$(documents own)/pictureBackside.png")" = "495,660" ] || fail "the back has another size"
grep -q '"country_code" = "gb"' "$work/record" || fail "another country arrived"
[ "$(ls "$work/pictures" | wc -l)" -ge 19 ] || fail "some screens were not drawn"
