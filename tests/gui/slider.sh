#!/usr/bin/env bash
# slider.sh QUELMARK: the number of a dialog's slider can be typed as well as dragged; the dialog's handler is called for both, and a number
# outside the slider's range cannot be typed.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
start_script 'function Changed(row) { print("changed", row, DlogAnswer(row), "\n"); }
function Ask() {
    DlogOpen("ask", 2);
    DlogSlider(0, "width", 5, -30, 150, 1);
    DlogSlider(1, "height", 1, 9, 2);
    DlogEvent(Changed);
    print("ended", DlogWait(), DlogAnswer(0), DlogAnswer(1), "\n");
}
KeyEvent(Ask, "a");
function End() { Quit(); }
KeyEvent(End, "q");'
key() { xdotool key "$@"; sleep 0.15; }

xdotool key a
find_window ask dialog
# Typed: each digit is a change. A number that lies outside is not taken.
key Tab; key ctrl+a; key 1; printed 'changed 0 1'
key 4; printed 'changed 0 14'
key 9; printed 'changed 0 149'
key 9; key ctrl+a; key minus; key 3; printed 'changed 0 -3'
key 1; key Up; printed 'changed 0 -2'
text | grep -qE 'changed 0 (1499|-31)$' && fail "a number outside the range has been taken"
# Dragged far to the right; the number follows, so one less is one below the upper bound.
eval "$(xdotool getwindowgeometry --shell "$dialog" | grep -E '^[XY]=')"
xdotool mousemove $((X + 92)) $((Y + 39)) mousedown 1; settle 0.1
for x in 100 200 800; do xdotool mousemove $((X + x)) $((Y + 39)); settle 0.1; done
xdotool mouseup 1
printed 'changed 0 150'
key Tab; key Down; printed 'changed 0 149' 2
# The second slider starts at its lower bound.
key Tab; key Tab; key ctrl+a; key 8; printed 'changed 1 8'
xdotool key Return
printed 'ended 1 149 8'
xdotool windowfocus "$id"; key q
wait_end
finish
