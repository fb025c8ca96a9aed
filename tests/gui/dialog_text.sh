#!/usr/bin/env bash
# dialog_text.sh QUELMARK: a dialog's field under Xvfb keeps what Shift-JIS can carry and refuses the rest while it is typed, and a
# text that is longer than an answer can be.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/screen.sh"
unset QUELMARKINPUT
printf 'SourceFile = t.qms\n' > "$folder/Quelmark.ini"
printf '\xEF\xBB\xBF%s\n' 'function ask() {
    DlogOpen("question", 1);
    DlogString(0, "name", "x", 10);
    print(DlogWait(), "[" + DlogAnswer(0) + "]", "\n");
}
function quit() { Quit(); }
KeyEvent(ask, "a"); KeyEvent(quit, "q");' > "$folder/t.qms"
MODELPATH="$folder" "$program" > "$folder/printed" 2> /dev/null &
window=$!
id=
for _ in $(seq 100); do id=$(xdotool search --name '^Quelmark' 2>/dev/null | head -1); [ -n "$id" ] && break; sleep 0.05; done
[ -n "$id" ] || { echo "no window"; exit 1; }
sleep 0.5
xdotool mousemove 200 200 key a
dialog=
for _ in $(seq 100); do dialog=$(xdotool search --name '^question$' 2>/dev/null | head -1); [ -n "$dialog" ] && break; sleep 0.05; done
[ -n "$dialog" ] || { echo "no dialog"; exit 1; }
sleep 0.4
xdotool windowfocus "$dialog" key Tab key Tab key Tab key End
xdotool type 'aéb'
sleep 0.4
# Twice as long again and again; what would be 1536 bytes is refused.
for _ in $(seq 9); do xdotool key ctrl+a key ctrl+c key End key ctrl+v; sleep 0.1; done
xdotool key Return
sleep 0.4
xdotool windowfocus "$id" key q
wait $window
printed=$(iconv -f CP932 -t UTF-8 "$folder/printed" | sed 's/ *$//')
[ "$printed" = "1 [$(for _ in $(seq 256); do printf xab; done)]" ] || { echo "printed: $printed"; exit 1; }
