#!/usr/bin/env bash
# close.sh QUELMARK CLOSE_WINDOW: what is drawn in the colour that pulses swells and fades while the program waits; without a can-close handler
# the button that closes the window ends the program, with one that fails it does not.
set -u
program=$(realpath "$1")
close_window=$(realpath "$2")
. "$(dirname "$0")/program.sh"
start_script 'function Show() { DrawText("########", 100, 100, 14); print("shown\n"); }
function Fail() { print("asked\n"); return 1 + "a"; }
function Bind() { CanCloseEvent(Fail); print("bound\n"); }
KeyEvent(Show, "s"); KeyEvent(Bind, "b");'
xdotool key s; printed shown; settle
for _ in 1 2 3 4 5 6 7 8; do
    import -window root -depth 8 -crop 64x16+100+100 +repage rgb:- | od -An -v -tx1 -w3 | tr -d ' ' | sort | uniq -c | sort -rn | awk '$2 != "646464" { print $2; exit }'
    settle 0.07
done > colours
[ "$(sort -u colours | wc -l)" -ge 3 ] || fail "nothing pulses"
grep -qvE '^([c-f][0-9a-f])0[0-9a-f]\1$' colours && { fail "other colours than magenta:"; cat colours; }
"$close_window" "$id"
wait_end
[ "${status:-1}" = 0 ] || fail "exit status ${status:-none}"
start_script "$(tail -c +4 test.qms)"
xdotool key b; printed bound
"$close_window" "$id"; printed asked; settle
kill -0 $window 2>/dev/null || fail "a handler that fails has let the window close"
text | grep -q Error || fail "its error is not told"
xdotool key b; printed bound 2
kill $window
finish
