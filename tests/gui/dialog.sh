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
