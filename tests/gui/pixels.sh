#!/usr/bin/env bash
# pixels.sh QUELMARK QUELMARKC SAMPLE PERCENT CELL: on a screen of this scale the views show exactly the pixels that the console program
# writes for the same session, each as a square of CELL screen pixels; only the colour that pulses is left out. The pointer hits the same
# pixels of the views and the right rows of the list.
set -u
program=$(realpath "$1")
console=$(realpath "$2")
sample=$(realpath "$3")
percent=$4
cell=$5
screen=1500x1200
. "$(dirname "$0")/screen.sh"
unset MODELPATH QUELMARKINPUT
{ cat "$(dirname "$program")/Quelmark.ini"; echo "ViewTitles = 0"; } > "$folder/Quelmark.ini"  # no texts of the window over the picture
cd "$folder" || exit 1
HOME="$folder" QT_SCALE_FACTOR=$(awk "BEGIN { print $percent / 100 }") "$program" "$sample" >printed 2>/dev/null &
window=$!
failures=0
fail() { echo "$1"; failures=1; }
picture() { import -window root -depth 8 "$1"; }
# pixels IMAGE GEOMETRY: the colours of a line of pixels, one RRGGBB a line
pixels() { convert "$1" -crop "$2" +repage -depth 8 rgb:- | od -An -v -tx1 -w3 | tr -d ' '; }

for _ in $(seq 100); do id=$(xdotool search --name '^Quelmark' 2>/dev/null | head -1); [ -n "$id" ] && break; sleep 0.05; done
[ -n "$id" ] || { echo "no window"; exit 1; }
settle
xdotool windowsize "$id" $((701 * percent / 100)) $((561 * percent / 100)); settle
picture root.ppm
eval "$(xdotool getwindowgeometry --shell "$id" | grep -E '^(WIDTH|HEIGHT)=')"
# The views begin with their background; the status bar begins with a white line; left of the list panel's black is its edge.
top=$(pixels root.ppm "1x200+0+0" | grep -n 646464 | head -1 | cut -d: -f1)
top=$((top - 1))
status=$(pixels root.ppm "1x$((HEIGHT - top))+0+$top" | grep -n ffffff | head -1 | cut -d: -f1)
status=$((top + status - 1))
list=$(pixels root.ppm "${WIDTH}x1+0+$((status - 1))" | grep -nv 000000 | tail -1 | cut -d: -f1)
list=$((list / cell - 1))
height=$(((status - top) / cell))
line=$(((HEIGHT - status + cell - 1) / cell - 6))
[ "$height" -gt 300 ] && [ "$line" -gt 10 ] && [ "$list" -gt 300 ] || { echo "the panes are not where they are looked for: $top $status $list"; exit 1; }

# The console's window has characters of 8 × 16: a client size with the same room for the views.
x=$(((list - 46) * 60 / 576))
y=$((height * 180 / 519))
cat > session.txt <<S
size $((list + 79)) $((height + 22))
key f
mouse $x $y 1
mouse $x $y 0
wheel 200 150 1
wait 300
shot views.ppm
S
HOME="$folder" QUELMARKINPUT=session.txt "$console" "$sample" >printed.txt || fail "the console program has failed"
at() { xdotool mousemove "$(($1 * cell))" "$((top + $2 * cell))"; }

at $x $y; xdotool key f; settle
xdotool click 1; settle
at 200 150; xdotool click 4; settle
picture root.ppm
width=$(identify -format %w views.ppm)
convert root.ppm -crop "$((width * cell))x$((height * cell))+0+$top" +repage shown.ppm
convert views.ppm -crop "${width}x$height+0+0" +repage -sample "$((cell * 100))%" wanted.ppm

# What is selected pulses: the console's clock stands still.
PULSE='#fe00fe'
convert wanted.ppm -fill black +opaque "$PULSE" -fill white -opaque "$PULSE" -transparent black mask.png
convert shown.ppm mask.png -composite shown.png
convert wanted.ppm mask.png -composite wanted.png
[ "$(convert wanted.ppm -format %k info:)" -ge 6 ] || fail "the picture shows too little"
[ "$(pixels wanted.ppm 0x0 | grep -c "${PULSE#\#}")" -gt 50 ] || fail "the click has selected nothing"
different=$(compare -metric AE shown.png wanted.png null: 2>&1)
[ "$different" = 0 ] || fail "$different pixels of the views are others than the console program's"

# The fourth attribute's row.
at $((list + 20)) $((line * 5 + line / 2)); xdotool click 1; settle
picture root.ppm
row() { pixels root.ppm "1x1+$(((list + 4) * cell))+$((top + ($1 * line + line / 2) * cell))"; }
[ "$(row 5)" != 000000 ] && [ "$(row 2)" = 000000 ] && [ "$(row 4)" = 000000 ] && [ "$(row 6)" = 000000 ] || fail "a click has not chosen its row"
kill $window
[ $failures -eq 0 ] || { [ -n "${KEEP:-}" ] && cp ./*.p?? session.txt "$KEEP"; }
exit $failures
