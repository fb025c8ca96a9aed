#!/usr/bin/env bash
# input_method.sh QUELMARK: Japanese that an input method gives comes as two key codes a character to the views, and as text into every field of
# a dialog and of the file dialog; what Shift-JIS cannot carry is refused. The input method is the window library's own, which makes texts of
# sequences of keys; these are of the test's file.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
printf '%s\n' '<F12> <n> <i> : "日本語"' '<F12> <s> <o> : "表ソ能"' '<F12> <y> <u> : "☃"' > "$folder/sequences"
export XCOMPOSEFILE="$folder/sequences" LC_ALL=C.UTF-8 QT_IM_MODULE=compose
start_script 'function Ask() {
    DlogOpen("ask", 2);
    DlogString(0, "name", "", 20);
    DlogString(1, "file", "", 20, "形状ファイル(*.suf)");
    print("answers", DlogWait(), "[" + DlogAnswer(0) + "]", "[" + DlogAnswer(1) + "]", "\n");
}
function File() {
    var name = DlogFileOpen("choose", "", "形状ファイル(*.suf)");
    print("chosen", substr(name, -12), "\n");
}
function main() {
    var k;
    InputMode(1, 0);
    while (TRUE) {
        WaitEvent();
        k = KeyCode();
        if (k != 0) print("code", k, "\n");
        if (k == 97) Ask();
        if (k == 102) File();
        if (k == 113) Quit();
    }
}'
# 表, ソ and 能 have a backslash as their second byte.
xdotool key F12 n i; printed 'code 234'
[ "$(text | paste -sd' ')" = "code 147 code 250 code 150 code 123 code 140 code 234" ] || fail "日本語 came otherwise"
xdotool key F12 s o; for code in 149 131 148; do printed "code $code"; done; printed 'code 92' 3
xdotool key F12 y u; printed 'シフトJISで表せない文字は使えません。'

xdotool key a; find_window ask dialog
xdotool windowfocus "$dialog"; settle 0.2
xdotool key F12 n i; settle 0.1; xdotool key F12 y u; settle 0.1; xdotool key F12 s o; settle 0.1
xdotool key Tab F12 s o x; settle 0.2
xdotool key Return
printed 'answers 1 \[日本語表ソ能\] \[表ソ能x\]'
xdotool windowfocus "$id"; settle 0.2

xdotool key f; find_window choose dialog
xdotool windowfocus "$dialog"; settle 0.3
xdotool key F12 n i; settle 0.2; xdotool key Return
printed 'chosen ..*日本語.suf'
xdotool windowfocus "$id"; settle 0.2
xdotool key q
wait_end
finish
