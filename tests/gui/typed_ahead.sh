#!/usr/bin/env bash
# typed_ahead.sh QUELMARK: keys and presses that come while a script computes are told afterwards in the order in which they came, each with
# the place that the pointer had and the buttons that were held; none is lost.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
start_script 'function Compute() { print("computing\n"); while (!"go".access(0)) { } print("computed\n"); }
function Key(code) { print("key", asctostr(code), MouseX(), MouseButton(), "\n"); }
function Press(button) {
    print("press", button, MouseX(), "\n");
    while (MouseButton()) {
        WaitEvent();
        if (KeyCode() != 0)
            print("meanwhile", asctostr(KeyCode()), MouseX(), "\n");
    }
    print("released", MouseX(), "\n");
    return TRUE;
}
KeyEvent(Compute, "c"); KeyEvent(Key, "klmn"); PressEvent(Press); InputMode(0, 0);'
xdotool key c; printed computing; settle
xdotool mousemove 100 100 key k mousemove 200 200 click 1 key l mousemove 300 300 mousedown 3 key m mousemove 350 300 mouseup 3 key n
settle; touch go; printed computed; printed 'key n .*'
cat > wanted <<'T'
key k 100 0
press 1 200
released 200
key l 200 0
press 2 300
meanwhile m 300
released 350
key n 350 0
T
text | sed '1,/computed/d; s/  */ /g' | diff wanted - || fail "not what was typed and pressed"
kill $window
finish
