#!/usr/bin/env bash
# dialog.sh QUELMARK: a dialog under Xvfb, driven with real keys: its handler is called at each change and what it draws is seen behind the
# dialog at once; Shift+Ctrl+Delete stops a handler that never ends, and its error comes when the dialog has closed.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/screen.sh"
unset QUELMARKINPUT
printf 'CodeSize = 64\nGlobal = 128\nFunction = 64\nStack = 1000\nBufferSize = 1024\nSourceFile = dialog.qms\n' > "$folder/Quelmark.ini"
{ printf '\xEF\xBB\xBF'; cat <<'QMS'; } > "$folder/dialog.qms"
var width = 0;
function Changed(row) {
    print("changed", row, DlogAnswer(0), DlogAnswer(1), DlogAnswer(2), "\n");
    if (row == 0) {
        width = DlogAnswer(0);
        SetGrid(width * 20, 0);
        Update(TRUE);
    }
    if (DlogAnswer(2))
        while (TRUE) ;
}
function Ask() {
    DlogOpen("ask", 3);
    DlogSlider(0, "width", 0, 0, 9, 1);
    DlogString(1, "name", "", 10);
    DlogToggle(2, "", "hang", OFF);
    DlogEvent(Changed);
    print("ended", DlogWait(), DlogAnswer(1), "\n");
}
KeyEvent(Ask, "a");
var choices = { "x", "y" };
function AskField() {
    DlogOpen("field", 4);
    DlogSelect(0, "list", choices, 0);
    DlogToggle(1, "", "toggle", OFF);
    DlogString(2, "first", "old", 10);
    DlogString(3, "second", "old", 10);
    print("field", DlogWait(), DlogAnswer(0), DlogAnswer(2), DlogAnswer(3), "\n");
}
KeyEvent(AskField, "f");
function AskList() {
    DlogOpen("list", 2);
    DlogMessage(0, "message");
    DlogSelect(1, "list", choices, 0);
    print("list", DlogWait(), DlogAnswer(1), "\n");
}
KeyEvent(AskList, "l");
function AskButton() {
    DlogOpen("button", 1, "one", "two", "three");
    DlogMessage(0, "message");
    print("button", DlogWait(), "\n");
}
KeyEvent(AskButton, "b");
function End() { print("still", DlogAnswer(0), "\n"); Quit(); }
KeyEvent(End, "q");
QMS
cd "$folder" || exit 1
MODELPATH="$folder" "$program" >"$folder/printed" 2>/dev/null &
window=$!
failures=0
fail() { echo "$1"; failures=1; }
# waits until a line has been printed
printed() { for _ in $(seq 100); do iconv -f CP932 -t UTF-8 "$folder/printed" | grep -q "$1" && return; sleep 0.05; done; fail "not printed: $1"; }
views() { import -window root -depth 8 -crop 300x250+20+60 +repage "$1"; }

for _ in $(seq 100); do xdotool search --name '^Quelmark' >/dev/null 2>&1 && break; sleep 0.05; done
settle
# The keyboard begins at the first field, whatever stands before it; without a field at the list; with messages only at the accept button.
xdotool key f; settle; xdotool key n e w Return; printed 'field 1 0 new old'; settle
xdotool key l; settle; xdotool key Down Return; printed 'list 1 1'; settle
xdotool key b; settle; xdotool key space; printed 'button 2'; settle
xdotool key b; settle; xdotool key shift+Tab space; printed 'button 1'; settle
xdotool key a; settle
xdotool search --name '^ask' >/dev/null 2>&1 || fail "no dialog"
views before.ppm
xdotool key Right; printed 'changed 0 1 .* FALSE'; settle
views after.ppm
cmp -s before.ppm after.ppm && fail "the views behind the dialog have not changed"
xdotool key Tab Tab x; printed 'changed 1 1 x FALSE'
xdotool key Tab space; settle
xdotool key shift+ctrl+Delete; printed '強制終了しました'
xdotool key space; printed 'changed 2 1 x FALSE'
xdotool key Return; settle
xdotool key q; printed 'still 1'
grep -q ended printed && fail "an error in the handler has not ended the command"
for _ in $(seq 40); do kill -0 $window 2>/dev/null || break; sleep 0.05; done
kill -0 $window 2>/dev/null && { fail "the program goes on"; kill $window; }
[ $failures -eq 0 ] || iconv -f CP932 -t UTF-8 printed
exit $failures
