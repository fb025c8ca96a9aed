#!/usr/bin/env bash
# escape.sh QUELMARK: the ESC key, pressed while a large file is being read, ends the reading with its message.
set -u
program=$(realpath "$1")
. "$(dirname "$0")/screen.sh"
unset QUELMARKINPUT
# Over and over the same polygons of a part, so that the reading lasts for seconds.
{ echo 'obj suf large { atr a'; for _ in $(seq 9000); do echo 'parts part'; done; echo '}'; } > "$folder/large.suf"
{ echo 'obj suf part { atr a'; for _ in $(seq 5000); do echo 'prim poly ( 0 0 0 )'; done; echo '}'; } > "$folder/part.suf"
printf 'CodeSize = 64\nGlobal = 128\nFunction = 64\nStack = 1000\nBufferSize = 1024\nSourceFile = escape.qms\n' > "$folder/Quelmark.ini"
cat > "$folder/escape.qms" <<'QMS'
function read() {
    print("reading\n");
    print("result", ReadFile("large.suf"));
    Quit();
}
KeyEvent(read, "r");
QMS
cd "$folder" || exit 1
MODELPATH="$folder" "$program" >"$folder/printed" 2>/dev/null &
window=$!
for _ in $(seq 100); do xdotool search --name '^Quelmark' >/dev/null 2>&1 && break; sleep 0.05; done
# The key may come before the window takes keys.
for _ in $(seq 20); do xdotool key r; sleep 0.5; grep -q reading "$folder/printed" && break; done
sleep 0.3
kill -0 $window 2>/dev/null || { echo "the reading was over too soon"; cat "$folder/printed"; exit 1; }
xdotool key Escape
for _ in $(seq 100); do kill -0 $window 2>/dev/null || break; sleep 0.1; done
kill -0 $window 2>/dev/null && { echo "the reading goes on"; kill $window; exit 1; }
iconv -f CP932 -t UTF-8 "$folder/printed" | tail -3 > "$folder/last"
grep -q ' ESC キーが押されました。' "$folder/last" && grep -q 'result 0' "$folder/last" || { echo "no message"; cat "$folder/last"; exit 1; }
