#!/usr/bin/env bash
# child_wait.sh QUELMARK CLOSE_WINDOW: while a script waits for another program, of the keys that are typed only the last one waits for the
# script, and clicks are forgotten; Shift+Ctrl+Delete ends the wait with its message, and so does the button that closes the window, when
# the script's can-close handler agrees or there is none. A wait that is left does not end the other program.
set -u
program=$(realpath "$1")
close_window=$(realpath "$2")
. "$(dirname "$0")/program.sh"
mkdir "$folder/path"
PATH=$folder/path:$PATH
printf '#!/bin/sh\nwhile [ -d "%s" ] && ! [ -f "%s/go" ]; do sleep 0.05; done; echo slow ended\n' "$folder" "$folder" > "$folder/path/slow"
chmod +x "$folder/path/slow"
script='function Wait() { print("waiting\n"); "slow".Child(TRUE); print("waited\n"); }
function Key(code) { print("key", code, "\n"); }
function Press(button) { print("press", button, "\n"); }
var asked = 0;
function MayClose() {
    asked++;
    print("asked", asked, "\n");
    if (asked == 2)
        return 1 + "a";
    return asked == 3;
}
function Bind() { CanCloseEvent(MayClose); print("bound\n"); }
KeyEvent(Wait, "w"); KeyEvent(Key, "klm"); KeyEvent(Bind, "b"); PressEvent(Press);'

start_script "$script"
xdotool key w; printed waiting
xdotool mousemove 300 200 click 1 key k key k key l key k key m; settle 0.6
xdotool click 3 click 1; settle
touch "$folder/go"; printed waited; printed 'key 109'
[ "$(text | grep -c 'key\|press')" = 1 ] || fail "more has waited than the last key"
xdotool key k; printed 'key 107'
xdotool click 1; printed 'press 1'
rm "$folder/go"

xdotool key w; printed waiting 2
xdotool key Delete key ctrl+Delete; settle
text | grep -q 強制終了 && fail "another key has ended the wait"
xdotool key shift+ctrl+Delete; printed '.*test.qms: *1:.*強制終了しました'
xdotool key l; printed 'key 108'

xdotool key b; printed bound; xdotool key w; printed waiting 3
"$close_window" "$id"; printed 'asked 1'; settle
[ "$(text | grep -c waited)" = 1 ] || fail "a wait has ended although the window stays open"
"$close_window" "$id"; printed 'asked 2'; printed '.*test.qms: *9:.*'
xdotool key w; printed waiting 4
"$close_window" "$id"; printed 'asked 3'
wait_end
[ "${status:-1}" = 0 ] || fail "exit status ${status:-none}"

start_script "$script"
xdotool key w; printed waiting
"$close_window" "$id"
wait_end
[ "${status:-1}" = 0 ] || fail "exit status ${status:-none}"
text | grep -q 'waited\|ended' && fail "the script has gone on, or the other program has been ended"
touch "$folder/go"; printed 'slow ended'
finish
