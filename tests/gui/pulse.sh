#!/usr/bin/env bash
# pulse.sh QUELMARK: what is drawn in the colour that pulses goes on swelling and fading while a script computes without ever waiting, and
# what the script draws meanwhile is whole in the end.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
start_script 'function Lines(turns) {
    var i;
    var n;
    for (i = 0; i < 60; i++;) {
        DrawLine2D(40 + i * 7, 60, 460 - i * 7, 300);
        for (n = 0; n < turns; n++;) { }
    }
}
function AtOnce() { DrawText("########", 100, 500, 14); Lines(0); print("at once\n"); }
function Slowly() {
    Clear(OVERWRITE);
    DrawText("########", 100, 500, 14);
    print("drawing\n");
    Lines(50000);
    while (!"go".access(0)) { }
    print("slowly\n");
}
KeyEvent(AtOnce, "a"); KeyEvent(Slowly, "s");'
lines() { import -window root -depth 8 -crop 500x400+0+0 +repage "$1"; }
# The colour that most of the text's pixels have, at eight moments.
colours() {
    for _ in 1 2 3 4 5 6 7 8; do
        import -window root -depth 8 -crop 64x16+100+500 +repage rgb:- | od -An -v -tx1 -w3 | tr -d ' ' | sort | uniq -c | sort -rn | awk '$2 != "646464" { print $2; exit }'
        settle 0.07
    done
}
xdotool key a; printed 'at once'; settle; lines once.ppm
[ "$(convert once.ppm -format %k info:)" -ge 2 ] || fail "nothing is drawn"
xdotool key s; printed drawing
colours > drawing
[ "$(sort -u drawing | wc -l)" -ge 3 ] || fail "nothing pulses while a script draws and computes"
grep -qvE '^([c-f][0-9a-f])0[0-9a-f]\1$' drawing && { fail "other colours than magenta:"; cat drawing; }
touch go; printed slowly; settle; lines slowly.ppm
cmp -s once.ppm slowly.ppm || fail "what is drawn while the colour pulses is not whole"
kill $window
finish
