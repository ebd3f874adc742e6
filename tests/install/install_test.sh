#!/bin/bash
# Installs the build into a scratch prefix and uses it as a user would: a C
# program compiled and linked against the installed libraries through
# pkg-config alone, the installed program, batch script and manual page.
#
#   install_test.sh BUILD_DIR C_COMPILER [EXTRA_FLAGS]
# EXTRA_FLAGS are the flags the libraries were built with (the sanitizers).
set -u
BUILD=$1 CC=$2 EXTRA=${3:-}
HERE=$(cd "$(dirname "$0")" && pwd)
T=$(mktemp -d /tmp/talvor-install-XXXXXX)
trap 'rm -rf "$T"' EXIT
P="$T/pre fix" # a blank in the prefix must not matter
failed=0
check() {
    local name=$1
    shift
    if "$@"; then echo "PASS $name"; else echo "FAIL $name"; failed=1; fi
}

cmake --install "$BUILD" --prefix "$P" >"$T/install.log" || { cat "$T/install.log"; exit 1; }
check "program, batch script and manual page installed" test -x "$P/bin/talvor" -a -x "$P/bin/talvor-batch" \
    -a -f "$P/share/man/man1/talvor.1"
check "libraries installed under lib" test -f "$P/lib/libtalvor-bitmap.a" -a -f "$P/lib/libtalvor-util.a"
check "headers under include/talvor" test -f "$P/include/talvor/bitmap.h" -a -f "$P/include/talvor/util.h"
check "no header outside include/talvor" test "$(ls "$P/include")" = talvor

export PKG_CONFIG_PATH="$P/lib/pkgconfig"
check "pkg-config knows both libraries" pkg-config --exists talvor-bitmap talvor-util
check "pkg-config names the install prefix" test "$(pkg-config --variable=prefix talvor-util)" = "${P// /\\ }"
# The flags come back with the blank escaped for the shell.
eval "flags=($(pkg-config --cflags --libs talvor-bitmap talvor-util))"
# shellcheck disable=SC2086,SC2154
check "a C program builds against the installed libraries" \
    "$CC" -std=c99 -Wall -Wextra -Werror $EXTRA "$HERE/consumer.c" "${flags[@]}" -o "$T/consumer"
check "  ... and runs" "$T/consumer" "$T/triangle.tga"

# The installed program finds nothing of the build tree. The estimate of a
# 256-pixel triangle moves with the clock's offsets (1.43 to 1.59 seen): the
# bounds only say it is a fractal's.
out=$(env -i HOME="$T" PATH=/usr/bin:/bin "$P/bin/talvor" -q -i "$T/triangle.tga")
check "the installed program measures the picture" grep -qE '^Estimated fractal dimension:  1\.[3-7][0-9][0-9]$' \
    <<<"$out"
csv=$(env -i HOME="$T" PATH=/usr/bin:/bin "$P/bin/talvor-batch" "$T/triangle.tga")
check "the installed batch script finds the program beside it" grep -qE "^$T/triangle.tga,1\.[3-7][0-9]{2},.*,0,$" \
    <<<"$csv"
# The README's batch over the bundled examples folder.
csv=$(cd "$BUILD" && env -i HOME="$T" PATH="$P/bin:/usr/bin:/bin" talvor-batch examples/)
check "a batch over the bundled examples" grep -qE '^examples/carpet\.tga,1\.[6-9][0-9]{2},0\.99[0-9]+,.*,0,$' <<<"$csv"
check "man finds the installed page" bash -c "MANPATH='$P/share/man' MANWIDTH=80 man talvor 2>&1 | grep -q 'box-counting'"

[ "$failed" = 0 ]
