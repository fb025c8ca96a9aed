#!/usr/bin/env bash
# renderer.sh QUELMARK RENDERER SCALE: a program that is handed the text of RendParameter draws into exactly the views' area, less 12 pixels on
# each side, of the window that the text names, below a menu bar too, at this scale of the screen; the next redraw shows the views again,
# and the pointer is at the pixel where it is seen.
set -u
program=$(realpath "$1")
PATH=$(dirname "$(realpath "$2")"):$PATH
scale=$3
screen=2100x1700
export QT_SCALE_FACTOR=$scale
. "$(dirname "$0")/program.sh"
start_script 'function Render() {
    print(RendParameter(), "\n");
    ("renderer " + RendParameter()).Child(TRUE);
    print("drawn\n");
}
function AddMenu() {
    ("one".Menu("item", Render)).MenuPosition(0);
    print(RendParameter(), "\n");
    print("menu\n");
}
function Again() {
    UpdateAll();
    print("again\n");
}
function Press() {
    print("pressed", MouseX(), MouseY(), "\n");
    return TRUE;
}
// What is selected would pulse over the picture.
PolyInsVertex(Vertex(-50, -50, -50), 0);
PolyInsVertex(Vertex(50, -50, 50), 1);
PolyInsVertex(Vertex(50, 50, 50), 2);
PolyAppend(ON);
PressEvent(Press);
KeyEvent(Render, "r");
KeyEvent(AddMenu, "m");
KeyEvent(Again, "u");'
xdotool windowsize "$id" $((800 * scale)) $((600 * scale)); settle

# check TOP: the area that is drawn on the screen, for views that begin at line TOP.
check() {
    local numbers left top width height
    numbers=$(text | sed -nE 's/^--inline=[0-9]+,([0-9]+),([0-9]+) -c([0-9]+)x([0-9]+)$/\1 \2 \3 \4/p' | tail -1)
    read -r left top width height <<< "$numbers"
    [ "$left $top" = "$((12 * scale)) $((12 * scale))" ] || fail "the area begins at $left, $top"
    [ "$width" = "$(((800 - 79 - 24) * scale))" ] || fail "the area is $width wide"
    [ "$height" = "$((600 * scale - $1 - 24 * scale))" ] || fail "the area is $height high"
    import -window root -depth 8 root.ppm
    convert root.ppm -fill black +opaque '#123456' -trim -format '%wx%h%O\n' info: > drawn
    [ "$(cat drawn)" = "$((width - 2))x$((height - 2))+$((left + 1))+$((top + $1 + 1))" ] || fail "drawn at $(cat drawn)"
    convert root.ppm -fill black +opaque '#fedcba' -trim -format '%wx%h%O\n' info: > drawn
    [ "$(cat drawn)" = "${width}x$height+$left+$((top + $1))" ] || fail "its edge is at $(cat drawn)"
    sleep 0.5
    import -window root -depth 8 later.ppm
    cmp -s root.ppm later.ppm || fail "the picture is painted over"
}
xdotool key r; printed drawn; settle
check 0
xdotool key u; printed again; settle
[ "$(pixel $((100 * scale)) $((100 * scale)))" = 646464 ] || fail "the views do not come back"
xdotool key m; printed menu; settle
atOnce=$(text | grep inline | tail -1)
xdotool key r; printed drawn 2; settle
# The menu bar lies above the background of the views.
bar=$(import -window root -depth 8 -crop "1x200+2+0" +repage rgb:- | od -An -v -tx1 -w3 | tr -d ' ' | grep -n 646464 | head -1 | cut -d: -f1)
[ "${bar:-1}" -gt 10 ] || fail "there is no menu bar"
check $((bar - 1))
[ "$(text | grep inline | tail -1)" = "$atOnce" ] || fail "the area below a new menu bar is told too late: $atOnce"
for place in "101 201" "302 403" "555 306"; do
    read -r x y <<< "$place"
    xdotool mousemove "$x" "$y"; settle 0.2
    xdotool click 1; printed "pressed $((x / scale)) $(((y - bar + 1) / scale))"
done
kill $window
finish
