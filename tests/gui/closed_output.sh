#!/usr/bin/env bash
# closed_output.sh QUELMARK: the window stays when nobody reads any more what the program prints.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
mkfifo "$folder/printed"
head -1 "$folder/printed" > "$folder/first" &
start_script 'function Say() { print("said\n"); }
function Write() { var f = fileopen("alive", "w"); fileputs(f, "yes"); fileclose(f); }
function End() { Quit(); }
KeyEvent(Say, "a");
KeyEvent(Write, "b");
KeyEvent(End, "q");'
xdotool key a
for _ in $(seq 100); do [ -s "$folder/first" ] && break; sleep 0.05; done
for _ in 1 2 3; do xdotool key a; settle; done
xdotool key b; settle
[ -s "$folder/alive" ] || fail "a line that nobody reads has ended the program"
xdotool key q
wait_end
[ "$status" = 0 ] || fail "exit status $status"
cp "$folder/first" "$folder/printed.text"
rm "$folder/printed"; mv "$folder/printed.text" "$folder/printed"
finish
