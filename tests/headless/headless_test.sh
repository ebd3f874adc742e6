#!/bin/bash
# The build without a window: linked to no display library, says so when
# asked for a window, and (given the full build to compare with) prints
# byte for byte what the full build prints in quiet mode, under one frozen
# clock.
#
#   headless_test.sh TALVOR MAKEFRACTAL [FULL_BUILD_TALVOR]
set -u
TALVOR=$1 MAKEFRACTAL=$2 FULL=${3:-}
T=$(mktemp -d /tmp/talvor-headless-XXXXXX)
trap 'rm -rf "$T"' EXIT
failed=0
check() {
    local name=$1
    shift
    if "$@"; then echo "PASS $name"; else echo "FAIL $name"; failed=1; fi
}

libs=$(ldd "$TALVOR" | grep -i -E 'libX|libGL|libglut|libforms|libxcb|libwayland')
check "linked to no display library" test -z "$libs"
"$TALVOR" -n 2 >"$T/out" 2>"$T/err"
check "without -q: status 1" test $? = 1
check "without -q: one line on standard error, nothing else" \
    test "$(wc -l <"$T/err")" = 1 -a ! -s "$T/out"

if [ -n "$FULL" ]; then
    "$MAKEFRACTAL" carpet 243 "$T/carpet.tga" && "$MAKEFRACTAL" triangle 256 "$T/tri.tga" || exit 1
    head -c 300 "$T/tri.tga" >"$T/short.tga"
    while read -r args; do
        for build in full headless; do
            prog=$TALVOR
            [ $build = full ] && prog=$FULL
            # shellcheck disable=SC2086 # the arguments are words
            (cd "$T" && faketime -f '2026-01-02 03:04:05' "$prog" -q $args; echo "status $?") >"$T/$build" 2>&1
        done
        check "same bytes: $args" cmp -s "$T/full" "$T/headless"
    done <<'CASES'
-i carpet.tga
-i tri.tga -n 3 -b1 60 -b2 3 -bf 1.3 -sl 10 -sr 200 -sb 5 -st 240
-i tri.tga -bw -n 1
-i short.tga
-i missing.tga
-n 2
CASES
fi
exit $failed
