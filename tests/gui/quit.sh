#!/usr/bin/env bash
# quit.sh QUELMARK: Quit() in the handler of a dialog ends the dialog and the program, also in one that such a handler has opened.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
start_script 'function Inner(row) { print("inner\n"); Quit(); }
function Outer(row) {
    DlogOpen("inner", 1);
    DlogToggle(0, "", "quit", OFF);
    DlogEvent(Inner);
    DlogWait();
    print("not reached\n");
}
function Ask() {
    DlogOpen("outer", 1);
    DlogToggle(0, "", "open", OFF);
    DlogEvent(Outer);
    DlogWait();
    print("not reached\n");
}
KeyEvent(Ask, "a");'
xdotool key a
find_window outer outer
xdotool key space
find_window inner inner
xdotool key space
printed inner
wait_end
[ "$status" = 0 ] || fail "exit status $status"
[ "$(text)" = inner ] || fail "the scripts have gone on"
finish
