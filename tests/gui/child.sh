#!/usr/bin/env bash
# child.sh QUELMARK: other programs out of the window: one in the program's folder goes before one of the search path, quoted words stay whole, a
# help file is opened with the desktop's viewer; without the wait flag the script goes on at once, with it when the program has ended, and
# the window is painted meanwhile.
set -u
original=$(realpath "$1")
. "$(dirname "$0")/program.sh"
mkdir "$folder/bin" "$folder/path"
cp "$original" "$folder/bin/quelmark"
program=$folder/bin/quelmark
PATH=$folder/path:$PATH
tool() { printf '#!/bin/sh\n%s\n' "$2" > "$1"; chmod +x "$1"; }
tool "$folder/path/tool" 'echo "path tool"'
tool "$folder/bin/tool.BAT" 'for word; do echo "word <$word>"; done'
tool "$folder/path/slow" "while [ -d '$folder' ] && ! [ -f '$folder/go' ]; do sleep 0.05; done; echo slow ended"
tool "$folder/path/xdg-open" 'echo "opened $*"'
echo help > "$folder/bin/Manual.Hlp"
echo help > "$folder/other.hlp"
start_script 'function Tool() { "tool \"two words\" 表 one".Child(TRUE); print("tool back\n"); }
function Help() { "Manual.Hlp".Child(); "other.hlp".Child(); print("help back\n"); }
function Start() { "slow".Child(); print("started\n"); }
function Wait() { "slow".Child(TRUE); print("waited\n"); }
function Key(code) { print("key", code, "\n"); }
KeyEvent(Tool, "t"); KeyEvent(Help, "h"); KeyEvent(Start, "s"); KeyEvent(Wait, "w"); KeyEvent(Key, "k");'
xdotool key t; printed 'tool back'
grep -q 'word <two words>' printed && grep -q 'word <表>' printed && grep -q 'word <one>' printed && ! grep -q 'path tool' printed || { fail "the tool has run otherwise:"; cat printed; }
xdotool key h
for _ in $(seq 60); do [ "$(grep -ac opened printed)" = 2 ] && break; sleep 0.05; done
grep -aqE "^opened (file://)?$folder/bin/Manual.Hlp$" printed && grep -aqE "^opened (file://)?$folder/other.hlp$" printed || { fail "the help files are not opened:"; cat printed; }
xdotool key s; printed started
grep -q 'slow ended' printed && fail "the program without waiting has been waited for"
touch "$folder/go"; printed 'slow ended'
rm "$folder/go"
xdotool key w k; settle
xdotool windowsize "$id" 1300 800
for _ in $(seq 40); do [ "$(pixel 1000 300)" = 646464 ] && break; sleep 0.05; done
[ "$(pixel 1000 300)" = 646464 ] && [ "$(pixel 1270 300)" = 000000 ] || fail "the window is not painted while it waits"
text | grep -q 'waited\|key' && fail "it has not waited"
touch "$folder/go"; printed waited; printed 'key 107'
kill $window
finish
