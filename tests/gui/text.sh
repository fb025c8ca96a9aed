#!/usr/bin/env bash
# text.sh QUELMARK: DrawText under Xvfb. A text shows over the views in its colour, stays over a redraw that clears nothing, and goes when its
# view is redrawn from the background. A title stays in its view's corner, whatever is redrawn, until it is taken away.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/screen.sh"
unset QUELMARKINPUT
mkdir "$folder/home"
printf 'SourceFile = t.qms\n' > "$folder/home/Quelmark.ini"
printf '\xEF\xBB\xBF%s\n' 'function draw(code, shift) {
    "Wide 文字\nand more".DrawText(30, 40, 4);
    DrawText("at a vertex", Vertex(50, 60, -20), 6);
}
function over(code, shift) { Update(OVERWRITE); }
function some(code, shift) { Update(CLEAR, WIN_XY | WIN_YZ); }
function clear(code, shift) { Clear(OVERWRITE); }
function name(code, shift) { "Title".ViewTitle(WIN_PERS, 3); }
function all(code, shift) { Window(WIN_XY); Window(WIN_ALL); Update(ON); Clear(CLEAR); }
function unname(code, shift) { ViewTitle("", WIN_ALL); }
KeyEvent(draw, "d"); KeyEvent(over, "o"); KeyEvent(some, "s"); KeyEvent(clear, "c"); KeyEvent(name, "t"); KeyEvent(all, "a"); KeyEvent(unname, "u");' > "$folder/home/t.qms"
cd "$folder" || exit 1
MODELPATH="$folder/home" "$program" > printed 2> /dev/null &
window=$!
failures=0
id=
for _ in $(seq 100); do id=$(xdotool search --name '^Quelmark' 2>/dev/null | head -1); [ -n "$id" ] && break; sleep 0.05; done
[ -n "$id" ] || { echo "no window"; exit 1; }
sleep 1
# has AREA COLOUR: 1 when some pixel of the area (in the window) has exactly the colour, else 0.
has() {
    local place
    place=$(xdotool getwindowgeometry --shell "$id" | sed -n 's/^[XY]=//p' | paste -sd' ')
    read -r x y <<< "$place"
    IFS='x+' read -r w h left top <<< "$1"
    convert root.ppm -crop "${w}x$h+$((x + left))+$((y + top))" +repage -fill black +opaque "$2" -fill white -opaque "$2" \
        -format '%[fx:maxima>0?1:0]' info:
}
# check KEY WANTED: what is to be seen of the texts and the title after the key, on a slow machine too.
check() {
    xdotool key "$1"
    for _ in $(seq 20); do
        sleep 0.4
        import -window root -depth 8 root.ppm
        got="$(has 200x40+25+38 'rgb(0,255,0)')$(has 150x60+280+110 'rgb(255,255,0)')$(has 150x60+280+560 'rgb(255,255,0)')$(has 300x60+420+0 'rgb(255,0,255)')"
        [ "$got" = "$2" ] && return
    done
    echo "after $1: $got instead of $2"
    failures=1
}
check n 0000
check d 1110
check o 1110
check t 1111
check s 0011
check c 0001
check a 0001
check u 0000
kill -0 $window 2>/dev/null || { echo "the window has gone"; failures=1; }
case "$(cat printed)" in *Error*) echo "an error"; failures=1 ;; esac
kill $window
exit $failures
