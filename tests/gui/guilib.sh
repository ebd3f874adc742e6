# Helpers for driving the real program on a virtual X server. Every wait
# polls for an effect every 50 ms and gives up after a timeout (seconds,
# default 10); nothing sleeps a fixed time to let something happen.
# Set OUT (a scratch directory) and TALVOR, source this, call gui_begin.

PIXCHECK="$(dirname "${BASH_SOURCE[0]}")/pixcheck.py"
PASSED=0 FAILED=0 PROG_PID="" XVFB_PID="" RUNS=0 MARK=0

gui_begin() {
    mkdir -p "$OUT"
    trap '[ -n "$PROG_PID" ] && kill $PROG_PID; [ -n "$XVFB_PID" ] && kill $XVFB_PID; wait' EXIT
    Xvfb -displayfd 3 -screen 0 "$1" -nolisten tcp -noreset 3>"$OUT/dpy" >"$OUT/xvfb.log" 2>&1 &
    XVFB_PID=$!
    poll 10 test -s "$OUT/dpy" || { echo "FATAL: Xvfb did not start"; cat "$OUT/xvfb.log"; exit 1; }
    export DISPLAY=":$(cat "$OUT/dpy")"
    # Focus the root once: keys then go to the window under the pointer.
    xdotool windowfocus "$(xwininfo -root | awk '/Window id/{print $4}')" 2>/dev/null
    return 0
}

# poll TIMEOUT COMMAND...: runs the command every 50 ms until it succeeds.
poll() {
    local n=$(($1 * 20)) i
    shift
    for ((i = 0; i < n; i++)); do
        "$@" 2>/dev/null && return 0
        sleep 0.05
    done
    return 1
}

# start_program ARGS...: in the background, standard error to $OUT/err.log
# (earlier runs' logs are kept as err-1.log, ...), standard output to out.log.
start_program() {
    [ -s "$OUT/err.log" ] && cp "$OUT/err.log" "$OUT/err-$RUNS.log"
    RUNS=$((RUNS + 1)) MARK=0
    "$TALVOR" "$@" >"$OUT/out.log" 2>"$OUT/err.log" &
    PROG_PID=$!
}

# exited_with STATUS: the program ends within 10 s with that status.
exited_with() {
    poll 10 not_running || return 1
    wait "$PROG_PID"
    local rc=$?
    PROG_PID=""
    [ "$rc" = "$1" ]
}

not_running() { ! kill -0 "$PROG_PID"; }
# settled: the log has not grown for half a second (polled up to 10 s), so
# whatever was under way when a key was sent has finished.
grew() { local n; n=$(wc -l <"$OUT/err.log"); sleep 0.5; [ "$(wc -l <"$OUT/err.log")" = "$n" ]; }
settled() { poll 10 grew; }
mark() { MARK=$(wc -l <"$OUT/err.log"); }                      # later lines only...
new_lines() { tail -n +"$((MARK + 1))" "$OUT/err.log" | grep -cE -- "$1"; }
has_line() { [ "$(new_lines "$1")" -gt 0 ]; }
wait_log() { poll "${2:-10}" has_line "$1"; }                  # ...for these two

find_window() { xdotool search --onlyvisible --name "$1" | head -n 1 | grep .; }
wait_window() { poll "${2:-10}" find_window "$1" >/dev/null && find_window "$1"; }
window_size() { xwininfo -id "$1" | awk '/Width:/{w=$2} /Height:/{h=$2} END{print w "x" h}'; }
find_form() {
    local w
    for w in $(xdotool search --onlyvisible --class XForm); do
        [ "$(window_size "$w")" = "$1" ] && { echo "$w"; return 0; }
    done
    return 1
}
form_shown() { find_form "$1" >/dev/null; }
wait_form() { poll "${2:-10}" find_form "$1" >/dev/null && find_form "$1"; }
hidden() { ! xwininfo -id "$1" 2>/dev/null | grep -q IsViewable; }
wait_gone() { poll 10 hidden "$1"; }
size_is() { [ "$(window_size "$1")" = "$2" ]; }
wait_size() { poll 10 size_is "$1" "$2"; }
name_is() { [ "$(xdotool getwindowname "$1")" = "$2" ]; }
wait_name() { poll 10 name_is "$1" "$2"; }

shot() { xwd -id "$1" -silent >"$2"; }
pixels() { /usr/bin/python3 "$PIXCHECK" "$@" >"$OUT/pixcheck.log" 2>&1; }
shot_passes() {
    local w=$1 f=$2
    shift 2
    shot "$w" "$f" && pixels "$f" "$@"
}
# wait_pixels TIMEOUT WID FILE CHECK...: screenshots until the checks pass.
wait_pixels() {
    local t=$1
    shift
    poll "$t" shot_passes "$@" || { cat "$OUT/pixcheck.log"; return 1; }
}

key() { xdotool key --window "$1" "$2" 2>/dev/null || true; }
click() { xdotool mousemove --window "$1" "$2" "$3" click "${4:-1}" 2>/dev/null; }
# type_into WID X Y TEXT: clicks into an input, clears it, types, Return.
type_into() {
    xdotool windowfocus --sync "$1" 2>/dev/null
    click "$1" "$2" "$3"
    xdotool key ctrl+a ctrl+k 2>/dev/null
    xdotool type --delay 15 "$4" 2>/dev/null
    xdotool key Return 2>/dev/null
}

# check NAME COMMAND...: runs and records a check; on failure shows the log
# tail and keeps a root screenshot.
check() {
    local name=$1
    shift
    if "$@"; then
        echo "PASS $name"
        PASSED=$((PASSED + 1))
    else
        echo "FAIL $name"
        FAILED=$((FAILED + 1))
        tail -n 15 "$OUT/err.log"
        xwd -root -silent >"$OUT/fail-$FAILED-root.xwd"
    fi
}

gui_end() {
    echo "$PASSED passed, $FAILED failed"
    [ "$FAILED" -eq 0 ]
}
