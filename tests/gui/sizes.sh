#!/usr/bin/env bash
# sizes.sh QUELMARK SCALE: the window at 1 × 1 and at 8000 × 5000 pixels still works; in a window 300 wide the first field of the status bar is
# seen and the fields that leave it no room are not; the menu bar ends in one even edge, and below it the views begin at once. SCALE is
# the screen's.
set -u
program=$(realpath "$1")
export QT_SCALE_FACTOR=$2
. "$(dirname "$0")/program.sh"
start_script 'function Show() { print("alive\n"); }
function End() { Quit(); }
KeyEvent(Show, "s");
KeyEvent(End, "q");
("one".Menu("item", Show)).MenuPosition(0);
("two".Menu("item", Show)).MenuPosition(1);
StatusBarWidth(1, 30);
StatusBarWidth(2, 8);
"########".StatusBar();
"##".StatusBar(2);'
# column: the colours of a column of pixels right of the menu, from the top: how many, which.
column() { import -window root -depth 8 -crop "1x80+300+0" +repage rgb:- | od -An -v -tx1 -w3 | tr -d ' ' | uniq -c | awk '{ print $1, $2 }'; }
column > colours
# The bar, one or two tones of its lower edge, the views: the bar's own colour does not come again.
[ "$(awk '{ print $2 }' colours | sort | uniq -d)" = "" ] || { fail "between the menu bar and the views:"; cat colours; }
[ "$(tail -1 colours | cut -d' ' -f2)" = 646464 ] || { fail "the views do not follow the menu bar:"; cat colours; }

bar=$(awk '$2 != "646464" { rows += $1 } END { print rows }' colours)
for row in 4 3 2 1; do
    tones=$(import -window root -depth 8 -crop "600x1+0+$((bar - row))" +repage -format %k info:)
    [ "$tones" = 1 ] || fail "row $row of the menu bar, counted from below, has $tones tones"
done

xdotool mousemove 0 0  # where the window is, whatever its size
number=0
for size in "1 1" "8000 5000" "300 400" "1 3000" "5000 1" "1000 700"; do
    read -r width height <<< "$size"
    xdotool windowsize "$id" "$width" "$height"; settle 0.6
    number=$((number + 1))
    xdotool key s; printed 'alive' $number
done

if [ "$2" = 1 ]; then
    xdotool windowsize "$id" 300 400; settle
    import -window root -depth 8 "$folder/narrow.ppm"
    # dark LEFT WIDTH: how many black pixels the status bar has there.
    dark() { convert narrow.ppm -crop "$2x18+$1+380" +repage -threshold 30% -format "%[fx:round((1-mean)*w*h)]" info:; }
    first=$(dark 4 90)
    [ "$first" -gt 60 ] || fail "the first field is not seen ($first pixels)"
    last=$(dark 232 60)
    [ "$last" -gt 15 ] || fail "the last field is not seen ($last pixels)"
fi
xdotool key q
wait_end
finish
