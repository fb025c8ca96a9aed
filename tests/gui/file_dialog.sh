#!/usr/bin/env bash
# file_dialog.sh QUELMARK: the file dialog shows the files of its filter alone, adds the extension to a name without one, starts at the initial
# name and gives an empty text when it is left; the button beside a file field opens it and fills the field.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
mkdir "$folder/files"
touch "$folder/files/one.suf"
start_script 'function Name(text) {
    var i;
    if (text == "") return "nothing";
    for (i = !text - 1; i >= 0; i--;)
        if (substr(substr(text, i - !text), 1) == "\\") return substr(text, i + 1 - !text);
    return text;
}
function Open() { print("chosen", Name(DlogFileOpen("choose", "files/", "形状ファイル(*.suf)", "文書(*.txt)")), "\n"); }
function Again() { print("chosen", Name(DlogFileOpen("choose", "files/first.suf", "形状ファイル(*.suf)")), "\n"); }
function Field() {
    DlogOpen("ask", 1);
    DlogString(0, "file", "files/old.suf", 40, "形状ファイル(*.suf)");
    print("answer", DlogWait(), Name(DlogAnswer(0)), "\n");
}
KeyEvent(Open, "o"); KeyEvent(Again, "a"); KeyEvent(Field, "f");'
open() { xdotool windowfocus "$id"; settle 0.2; xdotool key "$1"; find_window "${2:-choose}" dialog; xdotool windowfocus "$dialog"; settle; }
picture() { open o; eval "$(xdotool getwindowgeometry --shell "$dialog" | grep -E '^(X|Y|WIDTH|HEIGHT)=')"; import -window root -depth 8 -crop "$((WIDTH - 140))x$((HEIGHT - 120))+$((X + 130))+$((Y + 60))" +repage "$1"; xdotool key Escape; settle; }
picture one.ppm; printed 'chosen nothing'
touch files/other.txt; picture still.ppm
touch files/two.suf; picture two.ppm
cmp -s one.ppm still.ppm || fail "a file of another kind is shown"
cmp -s one.ppm two.ppm && fail "a file of this kind is not shown"
open o; xdotool type two; settle 0.2; xdotool key Return; printed 'chosen two.suf'
open a; xdotool key Return; printed 'chosen first.suf'
open f ask; xdotool key Tab space; find_window file browser; xdotool windowfocus "$browser"; settle
xdotool key ctrl+a; xdotool type new; settle 0.2; xdotool key Return; settle
xdotool windowfocus "$dialog"; settle 0.2; xdotool key Return
printed 'answer 1 new.suf'
kill $window
finish
