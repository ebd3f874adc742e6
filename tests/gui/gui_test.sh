#!/bin/bash
# The real program in its real window on a virtual X server: what a person
# sees and does, checked through the program's own effects (its messages,
# its windows and titles, and the pixels of screenshots).
#
#   gui_test.sh TALVOR MAKEFRACTAL [SCRATCH_DIR]
set -u
TALVOR=$1
OUT=${3:-$(mktemp -d /tmp/talvor-gui-XXXXXX)}
. "$(dirname "$0")/guilib.sh"
# Leak reports from the X and GL libraries would fail a sanitized run.
export ASAN_OPTIONS=detect_leaks=0
gui_begin 1280x1024x24
BIG=$OUT/carpet2187.tga   # wider than 3/4 of the screen: shown at 1:4, 546 x 546
SMALL=$OUT/carpet243.tga  # shown at 1:1
TINY=$OUT/tiny4.tga       # too small to count
"$2" carpet 2187 "$BIG" && "$2" carpet 243 "$SMALL" && "$2" square 4 "$TINY" || exit 1
GREEN_ON_BLACK=0,102,0~4 GREEN_ON_WHITE=153,255,153~4 RED=255,0,0~10 # fill alpha 0.4
ALL=0,0,546,546

# answer_selector PATH|cancel: waits for the file selector and answers it.
answer_selector() {
    local f
    f=$(wait_window '^FileSelector$' 5) || return 1
    xdotool windowfocus --sync "$f" 2>/dev/null
    if [ "$1" = cancel ]; then
        xdotool key Escape 2>/dev/null
    else
        type_into "$f" 147 303 "$1"
    fi
    wait_gone "$f"
}
# menu ENTRY: right-clicks the image window and chooses entry ENTRY (0-6).
menu() {
    xdotool mousemove --window "$W" 2 2 click 3 2>/dev/null
    local m
    m=$(wait_window '^freeglut menu$' 5) || return 1
    eval "$(xdotool getwindowgeometry --shell "$m")"
    local eh=$(((HEIGHT - 4) / 7)) # seven entries inside a 2-pixel border
    xdotool mousemove $((X + WIDTH / 2)) $((Y + 2 + eh * $1 + eh / 2)) click 1 2>/dev/null
}
# field_shows NAME X Y BOX TYPED REF: typing TYPED into the options input at
# X, Y leaves the field looking exactly as it did in screenshot REF.
field_shows() {
    type_into "$OPT" "$2" "$3" "$5"
    check "$1" wait_pixels 5 "$OPT" "$OUT/opt-$5.xwd" same "$OUT/$6" "$4"
}
# reference NAME X Y BOX TYPED: a screenshot of the field showing TYPED,
# taken once it differs from the current one.
reference() {
    shot "$OPT" "$OUT/before.xwd"
    type_into "$OPT" "$2" "$3" "$5"
    wait_pixels 5 "$OPT" "$OUT/$1" differ "$OUT/before.xwd" "$4" >/dev/null
}

# --- 1. Start-up: title, size, messages, and counting painted over the
# picture. Boxes of 40 pixels and up are all outlined; 1000 offset passes
# keep it counting for as long as the test needs.
start_program -i "$BIG" -p -n 1000 -b2 40
W=$(wait_window '^Talvor : ') || { echo "FATAL: no window"; cat "$OUT/err.log"; exit 1; }
xdotool windowmove "$W" 10 10
check "title names the image and the 1:4 scale" wait_name "$W" "Talvor : $BIG (1:4)"
check "window has the screen image's size" wait_size "$W" 546x546
check "start-up messages in order" diff <(head -n 6 "$OUT/err.log") <(printf '%s\n' "Talvor - Brimsel" \
    "Version 1.01" "Initialising GLUT" "Creating windows" "Creating menus (Right mouse button)" "Reading file \"$BIG\"")
check "counting started" wait_log '^Processing starting $'
check "green boxes over black and white, red outlines on large boxes" wait_pixels 15 "$W" "$OUT/counting.xwd" \
    size 546x546 count $ALL=$GREEN_ON_BLACK'>='2000 count $ALL=$GREEN_ON_WHITE'>='2000 count $ALL=$RED'>='1000

# --- 2. P stops; p starts again from the first size. (That the boxes stay
# on screen is checked in section 12, where the redraws can be counted.)
key "$W" P
settled
mark
sleep 1
check "P stops counting" test "$(new_lines 'Box size')" -eq 0
mark
key "$W" p
check "p restarts from the first box size" wait_log '^   Box size:  437 \[  1\]'
check "p announces one new count" test "$(new_lines '^Processing starting')" -eq 1

# --- 3. Hiding the window pauses counting; showing it resumes.
xdotool windowunmap "$W"
wait_gone "$W"
settled
mark
sleep 1
check "counting pauses while the window is hidden" test "$(new_lines 'Box size')" -eq 0
xdotool windowmap "$W"
check "counting resumes when the window is shown" wait_log 'Box size' 5

# --- 4. Invert (stopped, so no boxes cover the picture): the centre of the
# carpet's big hole turns from white to black and back.
key "$W" P
settled
key "$W" i
check "i inverts the picture" wait_pixels 10 "$W" "$OUT/inverted.xwd" at 273,273=0,0,0~3 count $ALL=$RED'<='0
key "$W" i
check "i again restores it" wait_pixels 10 "$W" "$OUT/restored.xwd" at 273,273=255,255,255~3

# --- 5. A resize by hand snaps back.
xdotool windowsize "$W" 300 200
check "resizing snaps back to 546 x 546" wait_size "$W" 546x546

# --- 6. Saving results (inverting restarted the count: let it make a few
# grids first), to a good path and to one that cannot be opened.
mark
key "$W" p
wait_log '^   Box size: .*\[  5\]'
key "$W" s
check "s asks for a file and writes the table there" answer_selector "$OUT/results.txt"
check "the table has one line per size" poll 5 grep -qxE '437 [0-9]+ -6.07993 [0-9.]+' "$OUT/results.txt"
key "$W" s
answer_selector "$OUT/no/such/dir/r.txt"
check "an unwritable path is reported" wait_log "^Failed to open file \"$OUT/no/such/dir/r.txt\"$"
key "$W" q
check "q quits with status 0" exited_with 0

# --- 7. Without -i: the blank image; opening an image from the menu, and
# cancelling.
start_program
W=$(wait_window '^Talvor : ') || { echo "FATAL: no window"; exit 1; }
check "without -i the blank image" wait_name "$W" "Talvor : No Image (1:1)"
check "the blank image warns" wait_log 'Warning, image contains no black'
menu 0
check "Open new TGA file asks for a file" answer_selector "$SMALL"
check "the chosen image is loaded and named" wait_name "$W" "Talvor : $SMALL (1:1)"
check "the window takes its size" wait_size "$W" 243x243
menu 0
answer_selector cancel
check "cancelling leaves image and title" name_is "$W" "Talvor : $SMALL (1:1)"

# --- 8. The options form: what a field shows after an edit is the
# corrected value.
key "$W" o
OPT=$(wait_form 331x211)
check "o shows the options form" test -n "$OPT"
xdotool windowmove "$OPT" 700 100
shot "$OPT" "$OUT/auto.xwd" # the first size field shows Auto at start
type_into "$OPT" 195 95 25
check "first box size 25 is shown" wait_pixels 5 "$OPT" "$OUT/opt-25.xwd" differ "$OUT/auto.xwd" 170,80,220,110
field_shows "first box size 1 shows Auto" 195 95 170,80,220,110 1 auto.xwd
reference last2.xwd 275 95 250,80,300,110 2
reference last9.xwd 275 95 250,80,300,110 9
field_shows "last box size 0 shows 2" 275 95 250,80,300,110 0 last2.xwd
reference f11.xwd 195 135 170,120,220,150 1.1
reference f17.xwd 195 135 170,120,220,150 1.7
field_shows "factor 0.5 shows 1.1" 195 135 170,120,220,150 0.5 f11.xwd
reference n1.xwd 195 55 170,40,220,70 1
reference n4.xwd 195 55 170,40,220,70 4
field_shows "offsets 0 shows 1" 195 55 170,40,220,70 0 n1.xwd
# The settings take effect: one pass from the automatic size (243 / 5) to 2.
mark
key "$W" p
check "edited settings drive the next count" wait_log 'Processing finished' 20
check "one pass ending at size 2" has_line '^   Box size:   48 \[  1\], Total count'
check "  ... down to 2" has_line '^   Box size:    2 \[ *[0-9]+\], Total count'
click "$OPT" 270 175
check "Hide hides the options form" wait_gone "$OPT"

# --- 9. The graph form from the menu (entry 4, "Show graph (g)"), after
# that finished count: points and the red fitted line.
menu 4
GRAPH=$(wait_form 421x461)
check "Show graph opens the graph form" test -n "$GRAPH"
xdotool windowmove "$GRAPH" 700 300
check "graph shows points and a red fitted line" wait_pixels 5 "$GRAPH" "$OUT/graph.xwd" \
    count 20,30,400,400=0,0,0'>='20 count 20,30,400,400=255,0,0~40'>='150
click "$GRAPH" 370 430
check "Hide hides the graph form" wait_gone "$GRAPH"

# --- 10. A file that cannot be read leaves the blank image; ESC quits.
mark
menu 0
answer_selector "$OUT/missing.tga"
check "an unreadable file leaves the blank image" wait_name "$W" "Talvor : No Image (1:1)"
check "  ... and says so" wait_log '^Creating blank image$'
key "$W" Escape
check "ESC quits with status 0" exited_with 0

# --- 11. A region too small to count is refused; the window still answers.
start_program -i "$TINY" -p
W=$(wait_window '^Talvor : ') || { echo "FATAL: no window"; exit 1; }
check "a 4 x 4 image is refused for counting" wait_log '^Region too small for box counting$'
key "$W" g
check "the window still answers keys" poll 10 form_shown 421x461
menu 6
check "menu Quit ends with status 0" exited_with 0

# --- 12. A stop leaves the boxes of the grid in progress on screen. With -d
# every redraw reports how many boxes it draws, and a stopped window keeps
# redrawing, so the trace shows the list standing still. A stop that lands
# as a grid begins has almost nothing to show: start again and stop later.
start_program -d -i "$SMALL" -p -n 1000 -b2 20
W=$(wait_window '^Talvor : ') || { echo "FATAL: no window"; exit 1; }
# last_redraws K: the box counts of the last K redraws, one per line.
# The log's last line may still be half written: it is left out.
last_redraws() { head -n -1 "$OUT/err.log" | grep -E '^Display update, nbox = [0-9]+$' | tail -n "$1" | awk '{print $5}'; }
# stopped_still: the last 50 redraws all drew the same list (while counting
# the list grows between two redraws a tenth of a second apart).
stopped_still() { [ "$(last_redraws 50 | wc -l)" = 50 ] && [ "$(last_redraws 50 | sort -u | wc -l)" = 1 ]; }
NBOX=0
for try in 1 2 3 4 5 6 7 8; do
    mark
    wait_log 'Box size' 10
    key "$W" P
    poll 10 stopped_still || break
    NBOX=$(last_redraws 1)
    [ "$NBOX" -ge 10 ] && break
    key "$W" p
done
check "a stop with boxes in the list" test "$NBOX" -ge 10
mark
shot "$W" "$OUT/stopped-1.xwd"
poll 10 has_line '^Display update' # at least one more redraw since
# Boxes of 22 to 48 pixels: an outline adds at least 20 red pixels even where
# it shares its edges with neighbours.
check "the stopped boxes stay on screen" shot_passes "$W" "$OUT/stopped-2.xwd" \
    same "$OUT/stopped-1.xwd" 0,0,243,243 count 0,0,243,243=$RED'>='$((NBOX * 20))
check "  ... and every later redraw draws the same list" \
    test "$(head -n -1 "$OUT/err.log" | tail -n +"$((MARK + 1))" | grep -E '^Display update' | sort -u)" = "Display update, nbox = $NBOX"
key "$W" q
check "q ends the stopped program" exited_with 0

gui_end
