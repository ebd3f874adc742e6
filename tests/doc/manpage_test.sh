#!/bin/bash
# The manual page formats without a single warning, and documents every
# option the program's usage text lists (plus the unlisted -d).
#
#   manpage_test.sh TALVOR MANPAGE
set -u
TALVOR=$1 PAGE=$2
failed=0
check() {
    local name=$1
    shift
    if "$@"; then echo "PASS $name"; else echo "FAIL $name"; failed=1; fi
}

warnings=$(groff -man -Tutf8 -ww -z "$PAGE" 2>&1)
check "groff formats the page without warnings" test -z "$warnings"
[ -z "$warnings" ] || echo "$warnings"
text=$(MANWIDTH=80 man --warnings -l "$PAGE" 2>"${TMPDIR:-/tmp}/man-warnings.$$")
check "man formats the page without warnings" test ! -s "${TMPDIR:-/tmp}/man-warnings.$$"
rm -f "${TMPDIR:-/tmp}/man-warnings.$$"
for section in NAME SYNOPSIS DESCRIPTION OPTIONS OUTPUT "INTERACTIVE USE" "EXIT STATUS" EXAMPLES; do
    check "section $section" grep -q "^$section\$" <<<"$text"
done

options=$("$TALVOR" -h 2>&1 | awk '$1 ~ /^-/ {print $1}')
check "the usage text lists options" test "$(wc -l <<<"$options")" -ge 12
for o in $options -d; do
    # An option's paragraph starts with it at the left margin (the region
    # options share one).
    check "option $o is documented" grep -qE -- "^       (-[a-z0-9]+ [a-z]+, )*$o( |,|\$)" <<<"$text"
done
for k in "p" "P" "i, I" "o, O" "g, G" "s, S" "ESC, q, Q"; do
    check "key $k is documented" grep -qxE -- "       $k( .*)?" <<<"$text"
done
for status in 0 1 255; do
    check "exit status $status is documented" grep -qE -- "^       $status +[A-Z]" <<<"$text"
done
[ "$failed" = 0 ]
