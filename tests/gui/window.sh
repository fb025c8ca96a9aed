#!/usr/bin/env bash
# window.sh QUELMARK SAMPLE: the real window under Xvfb, driven with real keys and mouse: clicks select, keys and wheel reach the scripts, the
# views are drawn, resizing to any size and quitting work.
set -u
program=$(realpath "$1")
sample=$2
. "$(dirname "$0")/screen.sh"
unset MODELPATH QUELMARKINPUT
cp "$(dirname "$program")/Quelmark.ini" "$folder/"  # settings are kept here, not where the next test finds them
HOME="$folder" "$program" "$sample" >"$folder/printed" 2>/dev/null &
window=$!
failures=0
fail() { echo "$1"; failures=1; }

id=
for _ in $(seq 100); do id=$(xdotool search --name '^Quelmark' 2>/dev/null | head -1); [ -n "$id" ] && break; sleep 0.05; done
[ -n "$id" ] || { echo "no window"; exit 1; }
settle
# A click on the model selects one polygon.
xdotool mousemove 250 200 click 1; settle
xdotool key c; settle
xdotool key a; settle
xdotool key c; settle
xdotool key n; settle
xdotool key plus; settle
xdotool mousemove 300 200 click 4; settle
xdotool key Right; settle
xdotool mousemove 300 250 mousedown 3; xdotool mousemove 330 260; sleep 0.1; xdotool mousemove 350 270; sleep 0.1; xdotool mouseup 3; settle
xdotool key g; settle
kill -0 $window 2>/dev/null || { echo "the window has gone"; exit 1; }
text=$(iconv -f CP932 -t UTF-8 "$folder/printed")
case "$text" in *"選択したポリゴン 1 "*"選択したポリゴン 1640 "*) ;; *) fail "a click and the key A have not selected: $text" ;; esac
case "$text" in *Error*) fail "an error: $text" ;; esac

# One Escape leaves an open menu: the next key is the scripts'.
counts() { iconv -f CP932 -t UTF-8 "$folder/printed" | grep -o '選択したポリゴン' | wc -l; }
before=$(counts)
xdotool mousemove 30 8 click 1; settle
xdotool key Escape; settle
xdotool mousemove 300 250 key c; settle
[ "$(counts)" = $((before + 1)) ] || fail "a key after a menu was left has not reached the scripts"

# One view alone, fitted: more than the background is to be seen.
xdotool key 1; settle; xdotool key f; settle
import -window root -depth 8 "$folder/root.ppm"
convert "$folder/root.ppm" -crop 400x300+100+100 +repage "$folder/window.ppm"
colours=$(convert "$folder/window.ppm" -format %k info:)
[ "$colours" -ge 3 ] || fail "the view shows $colours colours"

# A new size, a close.
xdotool windowsize "$id" 700 500; settle
xdotool windowsize "$id" 1 1; settle
xdotool windowsize "$id" 1300 900; settle
kill -0 $window 2>/dev/null || fail "resizing has ended the program"
xdotool key ctrl+q; settle
if kill -0 $window 2>/dev/null; then fail "Ctrl+Q has not ended the program"; kill $window; fi
wait $window
[ $? -eq 0 ] || fail "exit status not 0"
exit $failures
