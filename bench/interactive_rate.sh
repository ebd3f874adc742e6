#!/bin/bash
# How fast the interactive program counts, against the quiet loop on the
# same image: boxes examined per second in each, and their ratio. The
# interactive program does one box per idle callback and redraws at most ten
# times a second; this shows what that costs.
#
#   interactive_rate.sh BUILD_DIR
set -u
BUILD=$1
OUT=$(mktemp -d /tmp/talvor-rate-XXXXXX)
TALVOR=$BUILD/talvor
. "$(dirname "$0")/../tests/gui/guilib.sh"
gui_begin 1280x1024x24
TGA=$OUT/carpet2187.tga
SIZE=2187
"$BUILD/makefractal" carpet $SIZE "$TGA" || exit 1

# The interactive run, timed from its own messages with a 10 ms poll.
start_program -p -n 2 -i "$TGA"
t0="" t1=""
for i in $(seq 1 12000); do
    if [ -z "$t0" ] && grep -q '^Processing starting' "$OUT/err.log"; then t0=$(date +%s.%N); fi
    if grep -q '^Processing finished' "$OUT/err.log"; then t1=$(date +%s.%N); break; fi
    sleep 0.01
done
[ -n "$t1" ] || { echo "the interactive count did not finish"; exit 1; }
# Boxes examined: each grid of size S with offset (ox, oy) over the whole
# image has ceil((W + ox) / S) x ceil((H + oy) / S) boxes.
steps=$(awk -v W=$SIZE '/Box size:/ {
            s = $3 + 0; split($0, a, /[(),]/); ox = a[2] + 0; oy = a[3] + 0;
            n += int((W + ox + s - 1) / s) * int((W + oy + s - 1) / s) }
        END { print n }' "$OUT/err.log")
interactive=$(echo "$steps $t0 $t1" | awk '{ printf "%.0f", $1 / ($3 - $2) }')

read -r qsteps qtime < <("$BUILD/bench/count_driver" --steps-rate "$TGA" 2)
quiet=$(echo "$qsteps $qtime" | awk '{ printf "%.0f", $1 / $2 }')
key "$(wait_window '^Talvor : ')" q
echo "boxes per second on a $SIZE x $SIZE carpet, -n 2 ($steps boxes):"
echo "  interactive (Xvfb, one box per idle call): $interactive"
echo "  quiet loop:                                $quiet"
echo "$interactive $quiet" | awk '{ printf "  quiet / interactive:                       %.0fx\n", $2 / $1 }'
rm -rf "$OUT"
