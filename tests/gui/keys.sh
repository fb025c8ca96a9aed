#!/usr/bin/env bash
# keys.sh QUELMARK: the codes and shift states of real keys: function keys, the keypad, the keys that move, letters with Shift and Ctrl, signs,
# and control characters; what the keypad's table leaves out is a character as on the rest of the keyboard.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/program.sh"
start_script 'function Key(code, shift) { if (code != KEY_CLR) print(sprintf("%X", code), shift, "\n"); }
var i;
for (i = 0; i < 128; i++;)
    KeyEvent(Key, i);
for (i = 0x8000; i < 0x802E; i++;)
    KeyEvent(Key, i);
print("ready\n");'
printed ready
count=0
# key NAME CODE SHIFT; Num Lock, which is pressed for the keypad's digits, is left out.
key() {
    count=$((count + 1))
    xdotool key "$1"
    for _ in $(seq 60); do [ "$(text | grep -vc ready)" -ge $count ] && break; sleep 0.03; done
    [ "$(text | grep -v ready | sed -n ${count}p)" = "$2 $3" ] || fail "$1 is not $2 $3"
}
for n in $(seq 1 15); do key "F$n" "80$(printf %02X "$n")" 0; done
for n in $(seq 0 9); do key "KP_$n" "80$(printf %02X $((28 + n)))" 0; done
key KP_Multiply 8027 0; key KP_Add 8029 0; key KP_Subtract 8028 0; key KP_Divide 8026 0; key KP_Decimal 802D 0
key KP_Enter D 0; key KP_Equal 3D 0; key KP_Separator 2C 0
key Prior 8011 0; key Next 8010 0; key End 801B 0; key Home 801A 0; key Left 8015 0; key Up 8014 0; key Right 8016 0; key Down 8017 0
key Insert 8012 0; key Delete 8013 0;
key Escape 1B 0; key BackSpace 8 0; key Return D 0; key Tab 9 0; key space 20 0; key shift+Tab 9 1
key a 61 0; key shift+a 41 1; key ctrl+a 1 2; key ctrl+shift+a 1 3; key ctrl+z 1A 2
key 1 31 0; key shift+1 21 1; key minus 2D 0; key asterisk 2A 1
key shift+F5 8005 1; key ctrl+F1 8001 2; key ctrl+shift+F15 800F 3; key shift+Left 8015 1; key ctrl+KP_Add 8029 2
key ctrl+97 1F 2; key ctrl+underscore 1F 3
kill $window
finish
