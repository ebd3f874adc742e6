#!/bin/bash
# The real program in its real window on a virtual X server: what a person
# sees and does, checked through the program's own effects (its messages,
# its windows and titles, and the pixels of screenshots).
#
#   gui_test.sh TALVOR MAKEFRACTAL [SCRATCH_DIR]
set -u
TALVOR=$1
MAKEFRACTAL=$2
OUT=${3:-$(mktemp -d /tmp/talvor-gui-XXXXXX)}
. "$(dirname "$0")/guilib.sh"
# Leak reports from the X and GL libraries would end a sanitized run with an
# error; everything else about the sanitizers stays on.
export ASAN_OPTIONS=detect_leaks=0

gui_begin 1280x1024x24
BIG=$OUT/carpet2187.tga   # wider than 3/4 of the screen: shown at 1:4, 546 x 546
SMALL=$OUT/carpet243.tga  # shown at 1:1
TINY=$OUT/tiny4.tga       # too small to count
"$MAKEFRACTAL" carpet 2187 "$BIG" && "$MAKEFRACTAL" carpet 243 "$SMALL" && "$MAKEFRACTAL" square 4 "$TINY" ||
    { echo "FATAL: cannot make test images"; exit 1; }

GREEN_ON_BLACK=0,102,0~4    # translucent green (alpha 0.4) over black
GREEN_ON_WHITE=153,255,153~4
RED=255,0,0~10

# --- 1. Start-up: title, size, and counting painted over the picture.
# Sizes of 40 pixels and up keep every grid's boxes above the outline size;
# 1000 offset passes keep it counting for as long as the test needs.
start_program -i "$BIG" -p -n 1000 -b2 40
W=$(wait_window '^Talvor : ') || { echo "FATAL: no window"; cat "$OUT/err.log"; exit 1; }
check "title names the image and the 1:4 scale" wait_name "$W" "Talvor : $BIG (1:4)"
check "window has the screen image's size" wait_size "$W" 546x546
xdotool windowmove "$W" 10 10
check "start-up messages in order" diff <(head -n 6 "$OUT/err.log") <(printf '%s\n' "Talvor - Brimsel" \
    "Version 1.01" "Initialising GLUT" "Creating windows" "Creating menus (Right mouse button)" "Reading file \"$BIG\"")
check "counting started" wait_log '^Processing starting $'
check "green boxes over black and white, red outlines on large boxes" \
    wait_pixels 15 "$W" "$OUT/counting.xwd" size 546x546 \
    count 0,0,546,546=$GREEN_ON_BLACK'>='2000 count 0,0,546,546=$GREEN_ON_WHITE'>='2000 \
    count 0,0,546,546=$RED'>='1000

# --- 2. P stops and the boxes stay; p starts again from the first size.
key "$W" P
sleep 0.3 # let a step already under way finish
mark
sleep 1
check "P stops counting" test "$(new_lines 'Box size')" -eq 0
shot "$W" "$OUT/stopped1.xwd"
check "the boxes stay on screen after P" /usr/bin/python3 "$PIXCHECK" "$OUT/stopped1.xwd" \
    count 0,0,546,546=$GREEN_ON_WHITE'>='2000 count 0,0,546,546=$RED'>='1000
mark
key "$W" p
check "p restarts from the first box size" wait_log '^   Box size:  437 \[  1\]'
check "p announces a new count" test "$(new_lines '^Processing starting')" -eq 1

# --- 3. Hiding the window pauses counting; showing it resumes.
xdotool windowunmap "$W"
wait_gone "$W"
sleep 0.3
mark
sleep 1
check "counting pauses while the window is hidden" test "$(new_lines 'Box size')" -eq 0
xdotool windowmap "$W"
check "counting resumes when the window is shown" wait_log 'Box size' 5

# --- 4. Invert: stop first so no boxes cover the picture; the centre of the
# carpet's big hole turns from white to black and back.
key "$W" P
sleep 0.3
key "$W" i
check "i inverts the picture" wait_pixels 10 "$W" "$OUT/inverted.xwd" at 273,273=0,0,0~3 \
    count 0,0,546,546=$RED'<='0
key "$W" i
check "i again restores it" wait_pixels 10 "$W" "$OUT/restored.xwd" at 273,273=255,255,255~3

# --- 5. A resize by hand snaps back.
xdotool windowsize "$W" 300 200
check "resizing snaps back to 546 x 546" wait_size "$W" 546x546

# --- 6. Saving results: the file selector, a good path and a bad one.
# Inverting restarted the count; let it make a few grids first.
mark
key "$W" p
check "a new count makes progress" wait_log '^   Box size: .*\[  5\]'
RESULTS=$OUT/results.txt
key "$W" s
F=$(wait_window '^FileSelector$' 5) || F=""
check "s opens the file selector" test -n "$F"
if [ -n "$F" ]; then
    xdotool windowfocus --sync "$F" 2>/dev/null
    click "$F" 147 303
    xdotool key ctrl+a ctrl+k 2>/dev/null
    xdotool type --delay 10 "$RESULTS" 2>/dev/null
    xdotool key Return 2>/dev/null
    wait_gone "$F"
fi
check "results file holds the table" bash -c "sleep 0.5; grep -qE '^[0-9]+ [0-9.e+]+ -[0-9.]+ [0-9.]+$' '$RESULTS'"
mark
key "$W" s
F=$(wait_window '^FileSelector$' 5) || F=""
if [ -n "$F" ]; then
    xdotool windowfocus --sync "$F" 2>/dev/null
    click "$F" 147 303
    xdotool key ctrl+a ctrl+k 2>/dev/null
    xdotool type --delay 10 "$OUT/no/such/dir/r.txt" 2>/dev/null
    xdotool key Return 2>/dev/null
fi
check "an unwritable results path is reported" wait_log "^Failed to open file \"$OUT/no/such/dir/r.txt\"$"
check "the program is still running" kill -0 "$PROG_PID"

# --- 7. q ends with status 0.
key "$W" q
check "q quits with status 0" exited_with 0

# --- 8. A second run: opening an image from the menu, and cancelling.
start_program
W=$(wait_window '^Talvor : ') || { echo "FATAL: no window"; exit 1; }
check "without -i the blank image" wait_name "$W" "Talvor : No Image (1:1)"
check "the blank image warns" wait_log 'Warning, image contains no black'
choose_open() {
    xdotool mousemove --window "$W" 50 50 click 3 2>/dev/null
    local m
    m=$(wait_window '^freeglut menu$' 5) || return 1
    eval "$(xdotool getwindowgeometry --shell "$m")"
    local eh=$(( (HEIGHT - 4) / 7 ))
    xdotool mousemove $((X + WIDTH / 2)) $((Y + 2 + eh / 2)) click 1 2>/dev/null
    wait_window '^FileSelector$' 5
}
F=$(choose_open) || F=""
check "Open new TGA file shows the file selector" test -n "$F"
if [ -n "$F" ]; then
    xdotool windowfocus --sync "$F" 2>/dev/null
    click "$F" 147 303
    xdotool key ctrl+a ctrl+k 2>/dev/null
    xdotool type --delay 10 "$SMALL" 2>/dev/null
    xdotool key Return 2>/dev/null
fi
check "the chosen image is loaded and named" wait_name "$W" "Talvor : $SMALL (1:1)"
check "the window takes its size" wait_size "$W" 243x243
F=$(choose_open) || F=""
if [ -n "$F" ]; then
    xdotool windowfocus --sync "$F" 2>/dev/null
    xdotool key Escape 2>/dev/null
    wait_gone "$F"
fi
sleep 0.3
check "cancelling leaves image and title" test "$(window_name "$W")" = "Talvor : $SMALL (1:1)"
# --- 9. The options form: corrected values are what the field shows.
key "$W" o
OPT=$(wait_form 331x211) && check "o shows the options form" true || check "o shows the options form" false
if [ -n "${OPT:-}" ]; then
    xdotool windowmove "$OPT" 700 100
    # The first box size field shows "Auto" at start; 25 shows 25; 1 is
    # corrected to Auto again.
    FIRST=170,80,220,110
    shot "$OPT" "$OUT/opt-auto.xwd"
    type_into "$OPT" 195 95 25
    check "first box size 25 is shown" wait_pixels 5 "$OPT" "$OUT/opt-25.xwd" differ "$OUT/opt-auto.xwd" $FIRST
    type_into "$OPT" 195 95 1
    check "first box size 1 shows Auto" wait_pixels 5 "$OPT" "$OUT/opt-1.xwd" same "$OUT/opt-auto.xwd" $FIRST
    # Last box size: 0 is corrected to 2 (the command line would give 1).
    LAST=250,80,300,110
    type_into "$OPT" 275 95 2
    wait_pixels 5 "$OPT" "$OUT/opt-last2.xwd" differ "$OUT/opt-1.xwd" $LAST >/dev/null
    type_into "$OPT" 275 95 9
    wait_pixels 5 "$OPT" "$OUT/opt-last9.xwd" differ "$OUT/opt-last2.xwd" $LAST >/dev/null
    type_into "$OPT" 275 95 0
    check "last box size 0 shows 2" wait_pixels 5 "$OPT" "$OUT/opt-last0.xwd" same "$OUT/opt-last2.xwd" $LAST
    # Factor: 0.5 is corrected to 1.1.
    FACTOR=170,120,220,150
    type_into "$OPT" 195 135 1.1
    wait_pixels 5 "$OPT" "$OUT/opt-f11.xwd" differ "$OUT/opt-1.xwd" $FACTOR >/dev/null
    type_into "$OPT" 195 135 1.7
    wait_pixels 5 "$OPT" "$OUT/opt-f17.xwd" differ "$OUT/opt-f11.xwd" $FACTOR >/dev/null
    type_into "$OPT" 195 135 0.5
    check "factor 0.5 shows 1.1" wait_pixels 5 "$OPT" "$OUT/opt-f05.xwd" same "$OUT/opt-f11.xwd" $FACTOR
    # Offsets: 0 is corrected to 1.
    OFFS=170,40,220,70
    type_into "$OPT" 195 55 1
    wait_pixels 5 "$OPT" "$OUT/opt-n1.xwd" differ "$OUT/opt-1.xwd" $OFFS >/dev/null
    type_into "$OPT" 195 55 4
    wait_pixels 5 "$OPT" "$OUT/opt-n4.xwd" differ "$OUT/opt-n1.xwd" $OFFS >/dev/null
    type_into "$OPT" 195 55 0
    check "offsets 0 shows 1" wait_pixels 5 "$OPT" "$OUT/opt-n0.xwd" same "$OUT/opt-n1.xwd" $OFFS
    # The settings took effect: a new count runs one pass from the
    # automatic first size (243 / 5) down to size 2.
    mark
    key "$W" p
    check "edited settings drive the next count" wait_log 'Processing finished' 20
    check "one offset pass ending at size 2" \
        grep -qE '^   Box size:    2 \[ *[0-9]+\], Total count' "$OUT/err.log"
    click "$OPT" 270 175
    check "Hide hides the options form" wait_gone "$OPT"
fi

# --- 10. The graph form from the right-button menu, after that finished count.
xdotool mousemove --window "$W" 100 100 click 3 2>/dev/null
MENU=$(wait_window '^freeglut menu$' 5) || MENU=""
if [ -n "$MENU" ]; then
    eval "$(xdotool getwindowgeometry --shell "$MENU")"
    # Seven entries of equal height inside a 2-pixel border; entry 5 is
    # "Show graph (g)".
    EH=$(( (HEIGHT - 4) / 7 ))
    xdotool mousemove $((X + WIDTH / 2)) $((Y + 2 + EH * 4 + EH / 2)) click 1 2>/dev/null
fi
GRAPH=$(wait_form 421x461) && check "menu entry Show graph opens the graph form" true ||
    check "menu entry Show graph opens the graph form" false
if [ -n "${GRAPH:-}" ]; then
    xdotool windowmove "$GRAPH" 700 300
    check "graph shows points and a red fitted line" wait_pixels 5 "$GRAPH" "$OUT/graph.xwd" \
        count 20,30,400,400=0,0,0'>='20 count 20,30,400,400=255,0,0~40'>='150
    click "$GRAPH" 370 430
    check "Hide hides the graph form" wait_gone "$GRAPH"
fi

# --- 11. A file that cannot be read, from the menu.
mark
F=$(choose_open) || F=""
if [ -n "$F" ]; then
    xdotool windowfocus --sync "$F" 2>/dev/null
    click "$F" 147 303
    xdotool key ctrl+a ctrl+k 2>/dev/null
    xdotool type --delay 10 "$OUT/missing.tga" 2>/dev/null
    xdotool key Return 2>/dev/null
fi
check "an unreadable file leaves the blank image" wait_name "$W" "Talvor : No Image (1:1)"
check "and says so" wait_log '^Creating blank image$'
key "$W" Escape
check "ESC quits with status 0" exited_with 0

# --- 12. A region too small to count: refused, and the window still works.
start_program -i "$TINY" -p
W=$(wait_window '^Talvor : ') || { echo "FATAL: no window"; exit 1; }
check "a 4 x 4 image is refused for counting" wait_log '^Region too small for box counting$'
key "$W" g
check "the window still answers keys" wait_form 421x461
key "$W" Q
check "Q quits with status 0" exited_with 0

gui_end
