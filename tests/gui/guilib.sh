# Helpers for driving the real program on a virtual X server: start Xvfb,
# start and watch the program, find windows, send keys and clicks, take
# screenshots and check their pixels. Every wait polls for an effect every
# 50 ms and gives up after a timeout; nothing sleeps a fixed time.
#
# Source it, set OUT (a scratch directory) and call gui_begin.

PIXCHECK="$(dirname "${BASH_SOURCE[0]}")/pixcheck.py"
PASSED=0
FAILED=0
PROG_PID=""
XVFB_PID=""

gui_begin() {
    mkdir -p "$OUT"
    trap gui_cleanup EXIT
    start_xvfb "${1:-1280x1024x24}"
}

gui_cleanup() {
    [ -n "$PROG_PID" ] && kill "$PROG_PID" 2>/dev/null
    [ -n "$XVFB_PID" ] && kill "$XVFB_PID" 2>/dev/null
    wait 2>/dev/null
}

start_xvfb() {
    rm -f "$OUT/dpy"
    Xvfb -displayfd 3 -screen 0 "$1" -nolisten tcp -noreset 3>"$OUT/dpy" >"$OUT/xvfb.log" 2>&1 &
    XVFB_PID=$!
    local i
    for i in $(seq 1 200); do
        [ -s "$OUT/dpy" ] && break
        sleep 0.05
    done
    if [ ! -s "$OUT/dpy" ]; then
        echo "FATAL: Xvfb did not start"; cat "$OUT/xvfb.log"; exit 1
    fi
    export DISPLAY=":$(cat "$OUT/dpy")"
    # Focus the root once: keys then go to the window under the pointer.
    xdotool windowfocus "$(xwininfo -root | awk '/Window id/{print $4}')" 2>/dev/null
    return 0
}

# start_program ARGS...: runs the program in the background, standard error
# to $OUT/err.log, standard output to $OUT/out.log.
RUNS=0
start_program() {
    # Earlier runs' logs are kept as err-1.log, err-2.log, ...
    [ -s "$OUT/err.log" ] && cp "$OUT/err.log" "$OUT/err-$RUNS.log"
    RUNS=$((RUNS + 1))
    : >"$OUT/err.log"
    "$TALVOR" "$@" >"$OUT/out.log" 2>"$OUT/err.log" &
    PROG_PID=$!
    MARK=0
}

# exited_with STATUS: the program ends (within 10 s) with that exit status.
# Not for use in a command substitution: only this shell can reap it.
exited_with() {
    local i
    for i in $(seq 1 200); do
        if ! kill -0 "$PROG_PID" 2>/dev/null; then
            wait "$PROG_PID"
            local rc=$?
            PROG_PID=""
            [ "$rc" = "$1" ]
            return
        fi
        sleep 0.05
    done
    return 1
}

# mark: only log lines written after this count for wait_log.
mark() { MARK=$(wc -l <"$OUT/err.log"); }

# wait_log REGEX [TIMEOUT]: a new line matching REGEX appears.
wait_log() {
    local n=$(( ${2:-10} * 20 )) i
    for i in $(seq 1 "$n"); do
        tail -n +"$((MARK + 1))" "$OUT/err.log" | grep -qE -- "$1" && return 0
        sleep 0.05
    done
    return 1
}

# new_lines REGEX: how many lines matching REGEX came after the mark.
new_lines() { tail -n +"$((MARK + 1))" "$OUT/err.log" | grep -cE -- "$1"; }

# wait_window REGEX [TIMEOUT]: prints the id of a visible window whose name
# matches; fails when none appears.
wait_window() {
    local n=$(( ${2:-10} * 20 )) i w
    for i in $(seq 1 "$n"); do
        w=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1)
        [ -n "$w" ] && { echo "$w"; return 0; }
        sleep 0.05
    done
    return 1
}

# wait_form WxH [TIMEOUT]: the id of a visible XForms window of that size.
wait_form() {
    local n=$(( ${2:-10} * 20 )) i w
    for i in $(seq 1 "$n"); do
        for w in $(xdotool search --onlyvisible --class XForm 2>/dev/null); do
            [ "$(window_size "$w")" = "$1" ] && { echo "$w"; return 0; }
        done
        sleep 0.05
    done
    return 1
}

# wait_gone WID [TIMEOUT]: the window is no longer viewable.
wait_gone() {
    local n=$(( ${2:-10} * 20 )) i
    for i in $(seq 1 "$n"); do
        xwininfo -id "$1" 2>/dev/null | grep -q 'IsViewable' || return 0
        sleep 0.05
    done
    return 1
}

window_size() { xwininfo -id "$1" 2>/dev/null | awk '/Width:/{w=$2} /Height:/{h=$2} END{print w "x" h}'; }
window_name() { xdotool getwindowname "$1" 2>/dev/null; }

# wait_size WID WxH [TIMEOUT]
wait_size() {
    local n=$(( ${3:-10} * 20 )) i
    for i in $(seq 1 "$n"); do
        [ "$(window_size "$1")" = "$2" ] && return 0
        sleep 0.05
    done
    return 1
}

# wait_name WID NAME [TIMEOUT]: the window's title becomes NAME.
wait_name() {
    local n=$(( ${3:-10} * 20 )) i
    for i in $(seq 1 "$n"); do
        [ "$(window_name "$1")" = "$2" ] && return 0
        sleep 0.05
    done
    return 1
}

shot() { xwd -id "$1" -silent >"$2"; }

# wait_pixels TIMEOUT WID FILE CHECK...: screenshots until the checks pass.
wait_pixels() {
    local n=$(( $1 * 4 )) w=$2 f=$3 i
    shift 3
    for i in $(seq 1 "$n"); do
        shot "$w" "$f" && /usr/bin/python3 "$PIXCHECK" "$f" "$@" >"$OUT/pixcheck.log" 2>&1 && return 0
        sleep 0.2
    done
    cat "$OUT/pixcheck.log"
    return 1
}

key() { xdotool key --window "$1" "$2" 2>/dev/null || true; }

# click WID X Y [BUTTON]: a real (XTEST) click at window-relative X, Y.
click() {
    xdotool mousemove --window "$1" "$2" "$3" 2>/dev/null
    xdotool click "${4:-1}" 2>/dev/null
}

# type_into FORM X Y TEXT: clicks into an input, clears it, types, ends the
# edit with Return.
type_into() {
    xdotool windowfocus --sync "$1" 2>/dev/null
    click "$1" "$2" "$3"
    xdotool key ctrl+a ctrl+k 2>/dev/null
    xdotool type --delay 15 "$4" 2>/dev/null
    xdotool key Return 2>/dev/null
}

# check NAME COMMAND...: runs a check and records it.
check() {
    local name=$1
    shift
    if "$@"; then
        echo "PASS $name"
        PASSED=$((PASSED + 1))
    else
        echo "FAIL $name"
        FAILED=$((FAILED + 1))
        echo "--- last lines of the program's log:"
        tail -n 15 "$OUT/err.log" 2>/dev/null
        xwd -root -silent >"$OUT/fail-$FAILED-root.xwd" 2>/dev/null
    fi
}

gui_end() {
    echo "$PASSED passed, $FAILED failed"
    [ "$FAILED" -eq 0 ]
}
