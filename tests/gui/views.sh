#!/usr/bin/env bash
# views.sh QUELMARK SAMPLE: boxes are dragged and the perspective view is turned in the real window, on a model of tens of thousands of
# polygons. The band is seen while a box is dragged and leaves nothing behind; turning and coming back shows the same picture, and changes
# no other view.
set -u
program=$(realpath "$1")
sample=$2
. "$(dirname "$0")/screen.sh"
unset MODELPATH QUELMARKINPUT
cp "$(dirname "$program")/Quelmark.ini" "$folder/"
HOME="$folder" "$program" "$sample" >"$folder/printed" 2>/dev/null &
window=$!
failures=0
fail() { echo "$1"; failures=1; }
# picture NAME: a corner of the flat view at the left, without the cursor, which pulses over blue, and the perspective view at the right
picture() {
    import -window root -depth 8 "$folder/root.ppm"
    convert "$folder/root.ppm" -crop 180x140+20+40 +repage "$folder/$1.flat.ppm"
    convert "$folder/root.ppm" -crop 380x300+480+40 +repage "$folder/$1.pers.ppm"
}
same() { cmp -s "$folder/$1.ppm" "$folder/$2.ppm"; }
# drag BUTTON FROM-X FROM-Y TO-X TO-Y: the button stays down
drag() {
    xdotool mousemove "$2" "$3" mousedown "$1"
    for step in 1 2 3 4 5; do
        sleep 0.03
        xdotool mousemove $(($2 + ($4 - $2) * step / 5)) $(($3 + ($5 - $3) * step / 5))
    done
    settle
}
selected() { xdotool key c; settle; iconv -f CP932 -t UTF-8 "$folder/printed" | tail -1 | awk '{ print $2 }'; }

id=
for _ in $(seq 200); do id=$(xdotool search --name '^Quelmark' 2>/dev/null | head -1); [ -n "$id" ] && break; sleep 0.05; done
[ -n "$id" ] || { echo "no window"; exit 1; }
xdotool mousemove 500 500; sleep 1; settle
picture start

# A box in the flat view, taken back by deselecting.
drag 1 100 80 300 250; picture band; xdotool mouseup 1; settle
same start.flat band.flat && fail "no band is seen in the flat view"
count=$(selected)
[ "$count" -gt 5000 ] && [ "$count" -lt 29000 ] || fail "a box has selected $count polygons"
xdotool key n; settle; picture after
same start.flat after.flat && same start.pers after.pers || fail "the box in the flat view has left a trace"
# One that ends in another view still counts in its own.
drag 1 25 35 880 640; xdotool mouseup 1; settle
[ "$(selected)" = 30000 ] || fail "a box that leaves its view has selected $(selected)"
xdotool key n; settle
# Escape gives a box up.
drag 1 100 80 300 250; xdotool key Escape; settle; picture given
same start.flat given.flat || fail "a box that was given up is still there"
xdotool mouseup 1; settle
drag 1 100 80 990 700; xdotool key Escape; settle; picture given; xdotool mouseup 1; settle
same start.flat given.flat || fail "a box that was given up over the list is still there"
[ "$(selected)" = 0 ] || fail "a box that was given up over the list has selected $(selected)"
iconv -f CP932 -t UTF-8 "$folder/printed" | grep -q Error && fail "an error: $(cat "$folder/printed")"

# A box in the perspective view.
drag 1 480 60 870 340; picture band; xdotool mouseup 1; settle
same start.pers band.pers && fail "no band is seen in the perspective view"
count=$(selected)
[ "$count" -gt 5000 ] || fail "a box in the perspective view has selected $count polygons"
xdotool key n; settle; picture after
same start.flat after.flat && same start.pers after.pers || fail "the box in the perspective view has left a trace"

# Around the model and back.
drag 3 600 200 700 200; picture turned
same start.pers turned.pers && fail "a drag has not turned the perspective view"
same start.flat turned.flat || fail "turning the perspective view has changed a flat one"
xdotool mousemove 600 200; settle; xdotool mouseup 3; settle; picture after
same start.pers after.pers || fail "turning back shows another picture"
# Sideways and back, nearer and back.
xdotool keydown shift; drag 3 600 200 640 180; picture moved; xdotool mousemove 600 200; settle; xdotool mouseup 3 keyup shift; settle
same start.pers moved.pers && fail "a drag with Shift has not moved the picture"
same turned.pers moved.pers && fail "a drag with Shift turns"
xdotool mousemove 600 200 click 4; settle; picture nearer
same start.pers nearer.pers && fail "the wheel has not come nearer"
same start.flat nearer.flat || fail "the wheel in the perspective view has changed a flat one"
# One view and all four again; fitting brings everything back.
xdotool key 4; settle; picture one
same start.flat one.flat && fail "the perspective view alone does not fill the window"
xdotool key 0; settle; xdotool key Home; settle; xdotool key f; settle; xdotool mousemove 500 500; settle; picture after
same start.flat after.flat && same start.pers after.pers || fail "fitting the model does not show what was shown at the start"
# The grid goes and comes, front faces alone likewise.
for key in g o; do
    xdotool key $key; settle; picture less
    same start.flat less.flat && same start.pers less.pers && fail "the key $key changes nothing"
    xdotool key $key; settle; picture after
    same start.flat after.flat && same start.pers after.pers || fail "the key $key pressed twice has left a trace"
done
kill -0 $window 2>/dev/null || fail "the window has gone"
exit $failures
