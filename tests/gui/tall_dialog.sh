#!/usr/bin/env bash
# tall_dialog.sh QUELMARK: on a small screen a dialog of thirty rows and long texts fits, its rows scroll with the keyboard and the wheel, and
# the wheel changes no row on its way.
set -u
program=$(realpath "$1")
screen=640x480
. "$(dirname "$0")/screen.sh"
unset QUELMARKINPUT
printf 'CodeSize = 64\nGlobal = 128\nFunction = 64\nStack = 1000\nBufferSize = 1024\nSourceFile = tall.qms\n' > "$folder/Quelmark.ini"
{ printf '\xEF\xBB\xBF'; cat <<'QMS'; } > "$folder/tall.qms"
var changes = 0;
function Changed(row) { print("changed", row, "\n"); changes = changes + 1; }
function Ask() {
    var i, long;
    DlogOpen("tall", 30);
    for (i = 0; i < 28; i++;)
        DlogSlider(i, "slider " + i, 5, 0, 10, 1);
    long = "a text";
    for (i = 0; i < 5; i++;)
        long = long + " and " + long;
    DlogMessage(28, long);
    DlogToggle(29, "", "last", OFF);
    DlogEvent(Changed);
    print("ended", DlogWait(), DlogAnswer(29), changes, "\n");
    Quit();
}
KeyEvent(Ask, "a");
QMS
cd "$folder" || exit 1
MODELPATH="$folder" "$program" >"$folder/printed" 2>/dev/null &
window=$!
failures=0
fail() { echo "$1"; failures=1; }
picture() { import -window root -depth 8 -crop 600x300+20+20 +repage "$1"; }
for _ in $(seq 100); do xdotool search --name '^Quelmark' >/dev/null 2>&1 && break; sleep 0.05; done
sleep 0.5
xdotool key a
dialog=
for _ in $(seq 100); do dialog=$(xdotool search --name '^tall$' 2>/dev/null | head -1); [ -n "$dialog" ] && break; sleep 0.05; done
[ -n "$dialog" ] || { echo "no dialog"; exit 1; }
sleep 0.5
eval "$(xdotool getwindowgeometry --shell "$dialog")"
[ "$X" -ge 0 ] && [ "$Y" -ge 0 ] && [ $((X + WIDTH)) -le 640 ] && [ $((Y + HEIGHT)) -le 480 ] || fail "the dialog is $WIDTH x $HEIGHT at $X, $Y"
picture top.ppm
xdotool mousemove $((X + WIDTH / 4)) $((Y + HEIGHT / 2))
for _ in 1 2 3 4 5 6 7 8; do xdotool click 5; sleep 0.05; done
sleep 0.4
picture scrolled.ppm
cmp -s top.ppm scrolled.ppm && fail "the wheel has not scrolled the rows"
for _ in $(seq 56); do xdotool key Tab; done
xdotool key space; sleep 0.4
xdotool key Return
for _ in $(seq 60); do kill -0 $window 2>/dev/null || break; sleep 0.05; done
kill -0 $window 2>/dev/null && { fail "the dialog has not ended"; kill $window; }
[ "$(sed 's/ *$//' printed)" = "changed 29
ended 1 TRUE 1" ] || { fail "printed:"; cat printed; }
exit $failures
