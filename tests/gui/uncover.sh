#!/usr/bin/env bash
# uncover.sh QUELMARK COVER_WINDOW: what other windows have covered, what was off the screen and what was hidden comes back as it was: it is
# copied, and the model is not drawn again. A line that a redraw erases is still there, and polygons that have been added, selected and
# moved since the last redraw are not as a redraw shows them, until the script asks for one.
set -u
program=$(realpath "$1")
cover_window=$(realpath "$2")
. "$(dirname "$0")/program.sh"
start_script 'function Face(left) {
    PolyVertexs(0);
    PolyInsVertex(Vertex(left, -80, -80), 0);
    PolyInsVertex(Vertex(left + 60, -80, 80), 1);
    PolyInsVertex(Vertex(left + 30, 80, 0), 2);
    PolyAppend();
}
function Draw() {
    AttrAppend("green", 4);
    ObjAppend("object", "");
    Face(-150);
    Face(20);
    SetGrid(40, 1);
    SetPers(move(UNIT_MATRIX, 600, 0, 0));
    Update(CLEAR);
    Face(90);
    SelectAll(TRUE);
    SetCenter(Vertex(15, 15, 15));
    DrawLine(Vertex(-150, 60, 90), Vertex(150, -60, -90), LINE_OR);
    DrawLine(Vertex(-150, -60, 90), Vertex(150, 60, -90));
    DrawText("before", 60, 60);
    print("drawn\n");
}
function Clean() { Update(CLEAR); print("redrawn\n"); }
function Over() { Update(OVERWRITE); print("redrawn\n"); }
KeyEvent(Draw, "d"); KeyEvent(Clean, "c"); KeyEvent(Over, "o");'
picture() { import -window root -depth 8 -crop "${width}x${height}+0+0" +repage "$1.ppm"; }
same() {
    picture now
    cmp -s drawn.ppm now.ppm || fail "not as it was: $1"
}
# cover NAME X Y WIDTH HEIGHT: a window is put there and taken away again.
cover() {
    local name=$1
    shift
    mkfifo end
    "$cover_window" "$@" < end > covering &
    cover=$!
    exec 4> end
    for _ in $(seq 100); do [ -s covering ] && break; sleep 0.05; done
    settle
    [ "$(pixel $(($1 + 5)) $(($2 + 5)))" = ffffff ] || fail "nothing covers the window: $name"
    exec 4>&-
    wait $cover
    rm end covering
    settle
    same "$name"
}
eval "$(xdotool getwindowgeometry --shell "$id" | sed -n 's/^WIDTH=/width=/p; s/^HEIGHT=/height=/p')"

xdotool key d; printed drawn; settle; picture drawn
[ "$(convert drawn.ppm -format %k info:)" -ge 5 ] || fail "nothing is drawn"
cover "a corner was covered" 0 0 300 250
cover "the middle was covered" 250 150 300 300
cover "all was covered" 0 0 "$width" "$height"
xdotool windowmove "$id" -500 -300; settle; xdotool windowmove "$id" 0 0; settle; same "it was half off the screen"
xdotool windowmove "$id" 3000 0; settle; xdotool windowmove "$id" 0 0; settle; same "it was off the screen"
xdotool windowunmap "$id"; settle; [ "$(pixel 300 300)" = 000000 ] || fail "the window is not hidden"
xdotool windowmap "$id"; settle; same "it was hidden"
# A redraw of either kind is another picture.
xdotool windowfocus "$id"; settle 0.1
xdotool key o; printed redrawn; settle; picture over
cmp -s drawn.ppm over.ppm && fail "a redraw over the picture shows nothing else"
xdotool key c; printed redrawn 2; settle; picture cleared
cmp -s drawn.ppm cleared.ppm && fail "a redraw shows nothing else"
cmp -s over.ppm cleared.ppm && fail "a redraw that clears leaves the line"
kill $window
finish
