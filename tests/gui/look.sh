#!/usr/bin/env bash
# look.sh QUELMARK: the fields of a dialog stand in a column, in a font whose characters are all of one width, and a dialog of one row is no
# higher than it needs; a button's label leaves its edges free, one of six characters is whole on two lines; of a name in the list no half of
# a character is shown; a tip is one line.
set -u
program=$(realpath "$1")
screen=1100x800
. "$(dirname "$0")/screen.sh"
unset QUELMARKINPUT QT_SCALE_FACTOR
printf 'CodeSize = 64\nGlobal = 128\nFunction = 64\nStack = 1000\nBufferSize = 1024\nSourceFile = look.qms\n' > "$folder/Quelmark.ini"
{ printf '\xEF\xBB\xBF'; cat <<'QMS'; } > "$folder/look.qms"
function Ask() {
    DlogOpen("ask", 4);
    DlogToggle(0, "", "", OFF);
    DlogString(1, "a", "iiiiiiiiii", 20);
    DlogString(2, "長い名前です", "WWWWWWWWWW", 20);
    DlogSlider(3, "slider", 5, 0, 9, 1);
    DlogWait();
}
function Confirm() {
    DlogOpen("confirm", 1, 0);
    DlogMessage(0, "done");
    DlogWait();
}
KeyEvent(Ask, "a");
KeyEvent(Confirm, "c");
AttrAppend("長い名前の色", 1);
ButtonArea(46);
function Press(slot) { }
CreateButton(24, 2, "HHHHHH", Press);
ButtonTip(CreateButton(2, 2, "WWWW", Press), "a tip of words, more words, still more words, and more");
QMS
cd "$folder" || exit 1
HOME="$folder" MODELPATH="$folder" "$program" >printed 2>/dev/null &
window=$!
failures=0
fail() { echo "$1"; failures=1; }
# lines GEOMETRY: each line of pixels of the screen's part, RRGGBB separated by blanks
lines() { import -window root -depth 8 part.ppm; convert part.ppm -crop "$1" +repage part.ppm; convert part.ppm rgb:- | od -An -v -tx1 -w"$((3 * $(identify -format %w part.ppm)))" | sed 's/ \(..\) \(..\) \(..\)/\1\2\3 /g'; }

for _ in $(seq 100); do xdotool search --name '^Quelmark' >/dev/null 2>&1 && break; sleep 0.05; done
settle
# The list panel is 79 pixels wide, the window 1024; the face begins at 2, 2 and its last line belongs to the shadow.
lines 1x19+901+2 > edge
[ "$(sort -u edge | tr -d ' ')" = ffffff ] || fail "the label lies on the button's edge"
# The two lines of the other button: each has six uprights, and between them there is a line without ink.
lines 18x18+924+3 > two
[ "$(awk '{ ink = 0; for (i = 1; i <= NF; i++) if ($i < "6") ink++; print (ink > 0) }' two | uniq | grep -c 1)" = 2 ] || fail "a label of six characters is not on two lines"
[ "$(awk '{ print $1, $NF }' two | tr ' ' '\n' | sort -u | wc -l)" = 1 ] || fail "a label of six characters is cut"
# The name's fifth character would begin at the panel's last seven pixels.
lines 6x18+1018+36 > name
[ "$(tr ' ' '\n' < name | grep -v '^$' | grep -cvE "646464|000000")" = 0 ] || fail "half a character of a name is shown"
xdotool mousemove 909 10; sleep 0.1; xdotool mousemove 910 11; sleep 1.3
lines 1100x200+0+0 > tip
height=$(awk '{ n = 0; for (i = 1; i <= NF; i++) n += $i == "ffffdc"; if (n > 30) lines++ } END { print lines + 0 }' tip)
[ "$height" -gt 10 ] && [ "$height" -lt 36 ] || fail "the tip is $height pixels high"

xdotool mousemove 300 300 key a; settle
dialog=$(xdotool search --name '^ask' | head -1)
[ -n "$dialog" ] || { echo "no dialog"; kill $window; exit 1; }
eval "$(xdotool getwindowgeometry --shell "$dialog" | grep -E '^(X|Y|WIDTH|HEIGHT)=')"
xdotool key Tab Tab; settle  # no field's text is selected any more
lines "${WIDTH}x$HEIGHT+$X+$Y" > picture
# Lines through a text field are mostly white (the number of a slider is shorter): where the white begins, and where the text ends.
awk 'BEGIN { field = 0 }
     { first = 0; count = 0; last = 0
       for (i = 1; i <= NF; i++) { if ($i == "ffffff") { count++; if (!first) first = i } if ($i ~ /^[0-9].[0-9].[0-9].$/) last = i }
       if (count > 100) { begin[first]++; if (last > end[field]) end[field] = last; within = 1 } else if (within) { field++; within = 0 } }
     END { for (b in begin) if (begin[b] > 5) n++; print n, end[0] + 0, end[1] + 0 }' picture > found
read -r columns first second < found
[ "$columns" = 1 ] || fail "the fields begin in $columns columns"
[ "$first" -gt 0 ] && [ $((second - first)) -le 4 ] && [ $((first - second)) -le 4 ] || fail "narrow and wide characters end at $first and $second"
xdotool key Escape; settle
xdotool key c; settle
dialog=$(xdotool search --name '^confirm' | head -1)
[ -n "$dialog" ] || { echo "no dialog"; kill $window; exit 1; }
eval "$(xdotool getwindowgeometry --shell "$dialog" | grep -E '^HEIGHT=')"
[ "$HEIGHT" -lt 100 ] || fail "a dialog of one row is $HEIGHT pixels high"
kill $window
[ $failures -eq 0 ] || [ -z "${KEEP:-}" ] || cp picture found part.ppm edge two name tip "$KEEP"
exit $failures
