#!/usr/bin/env bash
# drop.sh QUELMARK DRAG_SOURCE: files dragged from another program with the real mouse and dropped on the window reach the scripts one by one,
# by their paths, and stay where they are; a name that Shift-JIS cannot carry is refused. Without a handler nothing is taken.
set -u
program=$(realpath "$1")
source=$2
. "$(dirname "$0")/screen.sh"
export LC_ALL=C.UTF-8
unset QUELMARKINPUT
printf 'CodeSize = 64\nGlobal = 128\nFunction = 64\nStack = 1000\nBufferSize = 1024\nSourceFile = drop.qms\n' > "$folder/Quelmark.ini"
{ printf '\xEF\xBB\xBF'; cat <<'QMS'; } > "$folder/drop.qms"
function Dropped(path) { print("dropped", path + "\n"); }
function Press(button) {
    if (button == 2)
        return Quit();
    DropEvent(Dropped);
    print("taking\n");
}
PressEvent(Press);
QMS
cd "$folder" || exit 1
touch "one file" '表.suf' '☃'
MODELPATH="$folder" "$program" >"$folder/printed" 2>/dev/null &
window=$!
"$source" "$folder/one file" "$folder/表.suf" "$folder/☃" &
dragged=$!
failures=0
fail() { echo "$1"; failures=1; }
printed() { for _ in $(seq 100); do iconv -f CP932 -t UTF-8 "$folder/printed" | grep -qF "$1" && return; sleep 0.05; done; fail "not printed: $1"; }
drag() {
    xdotool mousemove 1200 100 mousedown 1; sleep 0.2
    for x in 1150 1000 800 600 400; do xdotool mousemove $x 200; sleep 0.1; done
    xdotool mouseup 1; sleep 0.4
}
for name in Quelmark source; do
    for _ in $(seq 100); do xdotool search --name "^$name" >/dev/null 2>&1 && break; sleep 0.05; done
done
sleep 0.5
drag
xdotool mousemove 400 200 click 1; printed taking
drag
printed 'このファイル名はシフトJISで表せないので使えません。'
iconv -f CP932 -t UTF-8 printed > got
path="C:${folder//\//\\}"
printf 'taking\ndropped %s\ndropped %s\nこのファイル名はシフトJISで表せないので使えません。\n' "$path\\one file" "$path\\表.suf" > wanted
cmp -s wanted got || { fail "printed otherwise"; diff wanted got; }
[ -f "one file" ] && [ -f '表.suf' ] || fail "the files have been taken away"
xdotool click 3
for _ in $(seq 40); do kill -0 $window 2>/dev/null || break; sleep 0.05; done
kill -0 $window 2>/dev/null && { fail "the program goes on"; kill $window; }
kill $dragged
exit $failures
