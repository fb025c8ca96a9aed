#!/usr/bin/env bash
# session.sh QUELMARKC: the lines of an input file, good and bad.
# shellcheck source=cases.sh disable=SC2154
. "$(dirname "$0")/cases.sh"
config
script 'print("ran\n");
function Key(code, shift) { print("key", code, shift, "\n"); }
var i; for (i = 0; i < 128; i++;) { KeyEvent(Key, i); }
KeyEvent(Key, KEY_F1, KEY_NUMPAD_PERIOD, KEY_DEL);'
# session NAME TEXT: runs with these lines.
session() {
    printf '%s\n' "$1" > input.txt
    run QUELMARKINPUT=input.txt --
}
# bad LINE TEXT: the line, after good ones, is refused before anything runs.
bad() {
    session "# a session
key a
$1"
    refused "the line '$1'" 3 "$2"
}
bad nonsense "not an event: nonsense"
bad "Key a" "not an event"
bad key "no key of that name"
bad "key KEY_F16" "no key of that name"
bad "key ab" "no key of that name"
bad "key -1" "no key of that name"
bad "key 65536" "no key of that name"
bad "key 0x" "no key of that name"
bad "key ☃" "no key of that name"
bad "key ''" "no key of that name"
bad "key 'ab'" "no key of that name"
bad "key 4294967393" "no key of that name"
bad "key a b" "shift state"
bad "key a 4" "shift state"
bad "key a 1 2" "shift state"
bad "mouse 1 2" "mouse takes"
bad "mouse 1 2 4" "mouse takes"
bad "mouse 1 2 -1" "mouse takes"
bad "mouse 1 x 1" "mouse takes"
bad "mouse 1.5 2 1" "mouse takes"
bad "mouse 1 2 1 0" "mouse takes"
bad "mouse 2147483648 2 1" "mouse takes"
bad "mouse,1,2,1" "not an event"
bad "MOUSE 1 2 1" "not an event"
bad "menu 12 0" "menu takes"
bad "menu -1 0" "menu takes"
bad "menu 0" "menu takes"
bad "menu 0 256" "menu takes"
bad "menu 0 0 0" "menu takes"
bad "open" "open takes"
bad "open 12" "open takes"
bad "size 0 100" "size takes"
bad "size 100" "size takes"
bad "size 16385 10" "size takes"
bad "size 100 99999" "size takes"
bad "close now" "close takes"
bad "answer" "answer takes"
bad "answer x 1" "answer takes"
bad "answer -1 x" "answer takes"
bad "answer 30 1" "answer takes"
bad "answer 0 ☃" "Shift-JIS cannot carry"
bad "button" "button takes"
bad "button x" "button takes"
bad "button 1 2" "button takes"
bad "wait" "wait takes"
bad "wait -5" "wait takes"
bad "wait 2147483648" "wait takes"
bad "wait 5s" "wait takes"
bad "shot" "shot takes"
bad "wheel 1 2" "wheel takes"
bad "drop" "drop takes"
session "shot nowhere/x.ppm"
[ "$status" = 2 ] || { echo "a picture that cannot be written: $status"; failures=1; }
run QUELMARKINPUT=gone.txt --
[ "$status" = 2 ] && [ -z "$printed" ] || { echo "a missing session: $status $printed"; failures=1; }
run QUELMARKINPUT=home --
[ "$status" = 2 ] && [ -z "$printed" ] || { echo "a folder as session: $status $printed"; failures=1; }
: > input.txt
run QUELMARKINPUT=input.txt --
is "an empty session" 0 "ran"
printf '\xEF\xBB\xBF  # a comment\r\n\r\n\tkey  KEY_F1   2\r\nkey b' > input.txt
run QUELMARKINPUT=input.txt --
is "marks, blanks and line ends" 0 "ran
key 32769 2
key 98 0"
session "key 97
key 0x61 3
key '1'
key 010
key ' ' 1
key #
key '#'
key '
key KEY_NUMPAD_PERIOD # the last one
key ESC 0 # a comment
key -"
is "the ways to name a key" 0 "ran
key 97 0
key 97 3
key 49 0
key 10 0
key 32 1
key 35 0
key 35 0
key 39 0
key 32813 0
key 27 0
key 45 0"
script 'function Key(code, shift) { print(KeyCode(), code, shift, "\n"); } var i; for (i = 0; i < 128; i++;) { KeyEvent(Key, i); }'
session "key 表 1
key ｱ"
is "a double-byte character is two keys, a handler sees seven bits" 0 "149 21 1
92 92 1
177 49 0"

# ---- what ends a wait step ----
script 'InputMode(0, 0); var n;
function main() { for (n = 0; n < 99; n++;) { WaitEvent(); print(n, KeyCode(), MouseX(), MouseY(), MouseButton(), MouseMove(), "\n"); } }'
session "wait 100
size 640 480
mouse 10 10 0
mouse 12 10 0
key a
mouse 12 10 1
mouse 12 10 1
mouse 20 10 1
key b 1
mouse 20 10 3
mouse 20 10 0
mouse 30 10 0
open 0
button 1"
is "moves without a button, waits and sizes end no step" 0 "0 97 12 10 0 TRUE
1 0 12 10 1 FALSE
2 0 20 10 1 TRUE
3 98 20 10 1 FALSE
4 0 20 10 3 FALSE
5 0 20 10 0 FALSE"
script 'function Asked(n) { print("asked", n, "\n"); return KeyCode() == 98; } CanCloseEvent(Asked);
function main() { while (TRUE) { WaitEvent(); print("step", KeyCode(), "\n"); } }'
session "close
key a
key b
close
key c"
is "a close that is refused ends no step" 0 "asked 0
step 97
step 98
asked 0"
script 'function Asked(n) { Quit(); } CanCloseEvent(Asked); function Key() { print("key"); } KeyEvent(Key, "a");'
session "close
key a"
is "a handler that quits ends the program though it has no result" 0 ""
script 'function Asked(n) { print(1 + "a"); } CanCloseEvent(Asked); function main() { while (TRUE) { WaitEvent(); print("step", KeyCode(), "\n"); } }'
session "key a
close
key b"
is "a failing close handler is an error of the wait" 0 "step 97
t.qms:1:  Error 整数演算の型が不正です。"
script 'function Asked(n) { print(1 + "a"); } CanCloseEvent(Asked); WaitEvent(); print("never");'
session "close
key b"
is "at the top level it ends the run" 1 "t.qms:1:  Error 整数演算の型が不正です。"

# ---- messages are delivered without taking the next event ----
script 'function Start(code, shift) { "sleep 0.05".Child(1); print("ended\n"); } KeyEvent(Start, "s");
function Key(code, shift) { print("key", code, "\n"); } KeyEvent(Key, "ab");
function Ask() { DlogOpen("t", 1); DlogToggle(0, "l", "c", 0); print(DlogWait(), DlogAnswer(0), "\n"); } KeyEvent(Ask, "d");'
session "key s
key a
key d
answer 0 1
button 1
key a
key b"
is "neither a child nor a dialog swallows a key" 0 "ended
key 97
1 TRUE
key 97
key 98"

# ---- waits inside waits ----
# nested EVENT…: events that begin a wait inside the wait before, three thousand deep, end in errors with which the program goes on.
nested() {
    local lines
    lines=$(printf '%s\n' "$@")
    session "$(for ((i = 0; i < 3000; i++)); do echo "$lines"; done)
key a
mouse 9 9 0
key d
key b
key b"
    printed=$(sort -u <<< "$printed")
    is "nested: $*" 0 "b
t.qms:1:  Error スタックオーバーフロー！！"
}
waiting='function W(n) { WaitEvent(); return 0; } function Asks(n) { DlogOpen("t", 1); DlogToggle(0, "l", "c", 0); DlogEvent(Asks); DlogWait(); }
function b() { print("b\n"); } KeyEvent(b, "b"); ButtonArea(40); CreateButton(0, 0, "w", W); ControlEvent(W); KeyEvent(Asks, "d");'
script "$waiting"' MenuPosition(Menu("m", "pick", W), 0);'
nested 'menu 0 0'
nested 'mouse 1000 690 1' 'mouse 1000 690 0'
nested 'mouse 905 5 1' 'mouse 905 5 0'
nested 'answer 0 1'  # for the dialogs of key d

# ---- what redraws the views ----
script 'function Line() { DrawLine(Vertex(0, 0, 0), Vertex(300, 200, 100)); } KeyEvent(Line, "l");
function Area() { ButtonArea(81); } KeyEvent(Area, "a"); function All() { UpdateAll(); } KeyEvent(All, "u");'
session "shot empty.ppm
key l
shot line.ppm
key a
shot area.ppm
key l
shot again.ppm
key u
shot all.ppm"
cmp -s empty.ppm line.ppm && { echo "no line is drawn"; failures=1; }
cmp -s empty.ppm area.ppm || { echo "a button area of no use leaves the line"; failures=1; }
cmp -s line.ppm again.ppm || { echo "the line is not drawn again"; failures=1; }
cmp -s empty.ppm all.ppm || { echo "redrawing everything leaves the line"; failures=1; }
exit $failures
