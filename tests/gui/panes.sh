#!/usr/bin/env bash
# panes.sh QUELMARK: the real mouse on the panes: a button is drawn pressed until the release and calls its function then, one that repeats calls it
# all the while, a disabled one never; the lists scroll by their marks and by the wheel, a press on a row chooses it, the coordinates call
# their function; a resting pointer shows the full name.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
start_script 'var n = 0, i;
function Pressed(slot) { print("button", slot, "\n"); }
function Repeated(slot) { n++; print("repeat", n, "\n"); }
function Control(row) { print("control", row, "\n"); }
function Object(number) { print("object", number, "\n"); }
function Wheel(turns) { print("wheel", turns, "\n"); }
ButtonArea(46);
CreateButton(2, 2, "abc", Pressed);
CreateButton(24, 2, "rep", Repeated, 3);
CreateButton(2, 30, "off", Pressed, 0);
ControlEvent(Control);
ObjEvent(Object);
WheelEvent(Wheel);
for (i = 0; i < 60; i++;)
    AttrAppend("attribute" + i, 2);
for (i = 0; i < 3; i++;)
    ObjAppend("objectname" + i, "");
AttrCurrent(0);'
at() { xdotool mousemove "$1" "$2"; settle 0.15; }
# The panel of the buttons begins at 1024 - 79 - 46, the list's rows are 17 pixels high.
panel=899
# Where a line of text stands in the list: rows of the current attribute are on a bar.
row_is_current() { [ "$(pixel 950 $(($1 * 17 + 15)))" = 646464 ]; }

at $((panel + 10)) 10
[ "$(pixel $((panel + 2)) 10)" = ffffff ] || fail "the button is not drawn raised"
xdotool mousedown 1; settle 0.3
[ "$(pixel $((panel + 2)) 10)" = 646464 ] || fail "the button is not drawn pressed"
text | grep -q button && fail "its function was called before the release"
xdotool mouseup 1; printed 'button 0'; settle 0.2
[ "$(pixel $((panel + 2)) 10)" = ffffff ] || fail "the button stays pressed"
at $((panel + 32)) 10
xdotool mousedown 1; printed 'repeat 4'; xdotool mouseup 1; settle 0.3
times=$(text | grep -c repeat); settle 0.4
[ "$(text | grep -c repeat)" = "$times" ] || fail "it repeats after the release"
at $((panel + 10)) 40; xdotool click 1; settle 0.2
[ "$(text | grep -c button)" = 1 ] || fail "a disabled button has been called"

row_is_current 2 || fail "the first attribute is not shown as current"
at 1000 45; at 1000 44; settle 0.2
xdotool click 5; settle 0.3
row_is_current 2 && fail "the wheel has not scrolled the list"
xdotool click 4; settle 0.3
row_is_current 2 || fail "the wheel has not scrolled back"
text | grep -q wheel && fail "the scripts were told of the wheel on the list"
# The mark below the attributes, held for two steps; then the one above, held long.
rows=$((768 / 17))
at 1000 $(((rows - 15) * 17 + 8)); xdotool mousedown 1; settle 0.3; xdotool mouseup 1; settle 0.3
row_is_current 2 && fail "the mark has not scrolled the list"
at 1000 25; xdotool mousedown 1; settle 1; xdotool mouseup 1; settle 0.3
row_is_current 2 || fail "the mark above has not scrolled back"
at 1000 $((5 * 17 + 8)); xdotool click 1; settle 0.4
row_is_current 5 || fail "a press has not chosen its attribute"
row_is_current 2 && fail "two attributes are current"

first=$((rows - 13))
at 1000 $(((first + 2) * 17 + 8)); xdotool click 1; printed 'object 1'
at 1000 $(((first + 5) * 17 + 8)); xdotool click 1; printed 'object -1'
for row in 0 1 2; do at 1000 $(((rows - 5 + row) * 17 + 8)); xdotool click 1; printed "control $row"; done
at 300 300; xdotool click 4; printed 'wheel 1'

# The tip is a yellow box with the whole name, more than the panel has room for.
at 1000 $(((first + 2) * 17 + 8)); at 1001 $(((first + 2) * 17 + 9)); settle 1.3
import -window root -depth 8 tip.ppm
yellow=$(convert tip.ppm -fill black +opaque '#ffffdc' -fill white -opaque '#ffffdc' -format '%[fx:round(mean*w*h)]' info:)
[ "$yellow" -gt 700 ] || fail "no tip with the full name ($yellow pixels)"
kill $window
finish
