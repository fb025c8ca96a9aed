#!/usr/bin/env bash
# break.sh QUELMARK CLOSE_WINDOW: Shift+Ctrl+Delete ends a script in an endless loop with its message and the program goes on; meanwhile the
# window is painted at a new size, and the button that closes it ends the program, when the script's can-close handler agrees.
set -u
program=$(realpath "$1")
close_window=$(realpath "$2")
. "$(dirname "$0")/program.sh"
start_script 'function Loop() {
    var i = 0;
    print("loop\n");
    while (TRUE)
        i++;
}
function Still() { print("still here\n"); }
var asked = 0;
function MayClose() {
    asked++;
    print("asked", asked, "\n");
    return asked == 2;
}
KeyEvent(Loop, "l");
KeyEvent(Still, "s");
CanCloseEvent(MayClose);'

# The list panel at the right edge is black; there the views go on in a wider window.
[ "$(pixel 1000 300)" = 000000 ] || fail "the list panel is not where it is looked for"
xdotool key l; printed loop
xdotool windowsize "$id" 1300 800
for _ in $(seq 40); do [ "$(pixel 1000 300)" = 646464 ] && [ "$(pixel 1270 300)" = 000000 ] && break; sleep 0.05; done
[ "$(pixel 1000 300)" = 646464 ] && [ "$(pixel 1270 300)" = 000000 ] || fail "the window is not painted while a script runs"
xdotool key s key Delete key shift+Delete key ctrl+Delete; settle
text | grep -q 強制終了 && fail "another key has ended the script"
xdotool key shift+ctrl+Delete; printed '.*test.qms: *4:.*強制終了しました'
xdotool key s; printed 'still here'

xdotool key l; printed loop 2
"$close_window" "$id"; printed 'asked 1'
settle
kill -0 $window 2>/dev/null || fail "the handler's refusal has been ignored"
"$close_window" "$id"; printed 'asked 2'
wait_end
[ "$status" = 0 ] || fail "exit status $status"
[ "$(text | grep -c Error)" = 1 ] || fail "other messages"
finish
