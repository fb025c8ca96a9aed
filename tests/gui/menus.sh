#!/usr/bin/env bash
# menus.sh QUELMARK: the menu bar by the keyboard: Alt, F10 and the marked letters open menus, the arrows pass over separators and greyed items,
# Enter picks, Escape leaves. Check marks and greyed items are seen; keys with Alt do not reach the scripts.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
start_script 'var flags = 0;
function Picked(n) { print("first", n, "\n"); }
function Other(n) { print("other", n, "\n"); }
function Query(n) { return flags; }
function Key(code, shift) { print("key", code, "\n"); }
function Check() { flags = MENU_CHECK; print("flags 1\n"); }
function Grey() { flags = MENU_DISABLE; print("flags 2\n"); }
function BindF10() { KeyEvent(Key, KEY_F10); print("bound\n"); }
KeyEvent(Key, "axv");
KeyEvent(Key, KEY_ESC, KEY_RET, KEY_DOWN, KEY_F9);
KeyEvent(Check, "c");
KeyEvent(Grey, "g");
KeyEvent(BindF10, "b");
("File".Menu("Open", Picked, "-", SEPARATE_MENU, "Never", Picked, MENU_DISABLE, "Asked", Picked, Query, "Last", Picked)).MenuPosition(0);
("表示(V)".Menu("上(U)", Other, "R & D\tCtrl+D", Other)).MenuPosition(1);'
xdotool mousemove 600 500

xdotool key Alt_L Down; settle 0.2; xdotool key Down Return; printed 'first 3'
xdotool key F10 Down Down Down Down Return; printed 'first 0'      # once around
xdotool key Alt_L Right Down Down Return; printed 'other 1'
xdotool key alt+v; settle 0.2; xdotool key u; printed 'other 0'
xdotool key alt+f; settle 0.2; xdotool key l; printed 'first 4'
xdotool key alt+f; settle 0.2; xdotool key n; settle 0.2; xdotool key Escape; settle 0.2
xdotool key F9; printed 'key 32777'
text > before
grep -qE 'first (1|2)$|key (27|13|118|32789|32792)' before && fail "a separator or a greyed item was picked, or a menu's key reached the script"
xdotool key alt+a alt+x; settle 0.2; xdotool key x; printed 'key 120'
[ "$(text | grep -c '^key')" = 2 ] || fail "a key with Alt has reached the script"

# What the menu looks like: plain, checked, greyed. Nothing but the fourth item changes.
menu() { xdotool key alt+f; settle 0.5; import -window root -depth 8 -crop 200x200+0+0 +repage "$1"; xdotool key Escape; settle 0.2; }
# box A B: where two pictures differ.
box() { compare -metric AE "$1" "$2" -compose src -highlight-color white -lowlight-color black difference.ppm 2>/dev/null; convert difference.ppm -trim -format '%w %h %X %Y' info:; }
menu plain.ppm
xdotool key c; printed 'flags 1'; menu checked.ppm
xdotool key g; printed 'flags 2'; menu greyed.ppm
read -r width height left top <<< "$(box plain.ppm checked.ppm)"
[ "$width" -ge 8 ] && [ "$width" -le 20 ] && [ "$height" -ge 8 ] && [ "$height" -le 20 ] && [ "$left" -lt 30 ] || fail "the check mark is $width x $height at $left, $top"
read -r width height left below <<< "$(box plain.ppm greyed.ppm)"
[ "$width" -gt 20 ] && [ "$height" -le 20 ] && [ "$left" -gt 30 ] && [ $((below - top)) -lt 10 ] && [ $((top - below)) -lt 10 ] || fail "the greyed text is $width x $height at $left, $below"
xdotool key alt+f; settle 0.2; xdotool key a; settle 0.3; xdotool key Escape; settle 0.2
[ "$(text | grep -cx 'first 3')" = 1 ] || fail "a greyed item was picked by its letter"

# A script that wants F10 gets it.
xdotool key b; printed bound
xdotool key F10; printed 'key 32778'
xdotool key a; printed 'key 97'
kill $window
finish
