#!/usr/bin/env bash
# tutorial.sh QUELMARKC PROJECT: the session of the tutorial makes the kept sample, its views are those of the tutorial's pictures, and undoing
# it to the start leaves nothing of it. With QUELMARK_RENEW=1 the sample becomes what was made: look at it before it is kept. The pictures are
# of the window: tests/gui/session.sh makes them.
set -u
program=$(realpath "$1")
project=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset MODELPATH
export HOME="$folder"
sessions="$project/tests/sessions"
cp "$sessions/probe.qms" .
cp "$project/stock/Quelmark.ini" .
printf 'SourceFile = probe.qms\nSourceFile = left.qms\n' >> Quelmark.ini
cat > left.qms <<'S'
function left() { print("left", ObjPolygons(), Attrs() > 1 | AttrName(0) != "", UndoText() + ".\n"); }
KeyEvent(left, KEY_F15);
S

echo 'key KEY_F12' > items.input
QUELMARKINPUT=items.input "$program" | iconv -f CP932 -t UTF-8 | grep '^item' > items
awk -F '\t' -v client="1024 768" -v out=tutorial -f "$sessions/replay.awk" items "$project/docs/tutorial.input" || exit 1
grep -v '^key 17$' tutorial.input > session.input
for _ in $(seq 40); do echo 'key 26'; done >> session.input
printf 'key KEY_F15\nbutton 1\nclose\n' >> session.input

QUELMARKINPUT=session.input "$program" > printed.txt || exit 1
printed=$(iconv -f CP932 -t UTF-8 printed.txt | sed 's/ *$//')
[ "$printed" = 'left 0 FALSE .' ] || { echo "printed: $printed"; exit 1; }

failures=0
[ "${QUELMARK_RENEW:-}" != 1 ] || cp desk.suf "$project/samples/"
cmp desk.suf "$project/samples/desk.suf" || failures=1
# The views in a picture of the window, below its menu bar and above its status bar. Their titles are the window's own, and what is selected
# pulses there, which the console program's clock does not let it.
views() { convert "$1" -crop "899x746+0+$2" +repage -fill black -draw 'rectangle 0,0 140,18 rectangle 449,0 590,18 rectangle 0,373 140,391 rectangle 449,373 590,391' \
    -fill yellow -opaque '#e900e9' "$3"; }
for picture in tutorial-*.ppm; do
    views "$project/docs/pictures/${picture%.ppm}.png" 19 kept.ppm
    views "$picture" 0 made.ppm
    cmp made.ppm kept.ppm || { echo "$picture differs"; failures=1; }
done
exit $failures
