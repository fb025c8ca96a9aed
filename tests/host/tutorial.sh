#!/usr/bin/env bash
# tutorial.sh QUELMARKC PROJECT: the session of the tutorial makes the kept sample and the kept pictures, and undoing it to the start
# leaves nothing of it. With QUELMARK_RENEW=1 the kept ones become what was made: look at them before they are kept.
set -u
program=$(realpath "$1")
project=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset MODELPATH
export HOME="$folder"
cp "$project/stock/Quelmark.ini" .
echo "SourceFile = probe.qms" >> Quelmark.ini
cat > probe.qms <<'S'
function probe() { print("left", ObjPolygons(), Attrs() > 1 | AttrName(0) != "", UndoText() + ".\n"); }
KeyEvent(probe, KEY_F15);
S

# What each menu item is picked by: position, item, text.
for position in 0 1 2 3 4 5 6 7; do
    echo "open $position" > open.input
    QUELMARKINPUT=open.input "$program" | iconv -f CP932 -t UTF-8 |
        awk -F '\t' -v position=$position '{ print position "\t" NR - 1 "\t" $1 }'
done > items
awk -F '\t' 'NR == FNR { at[$3] = "menu " $1 " " $2; next }
    /^pick / { text = substr($0, 6); if (!(text in at)) { print "no item: " text > "/dev/stderr"; exit 1 } print at[text]; next }
    { print }' items "$project/docs/tutorial.input" > tutorial.input || exit 1
grep -v '^close' tutorial.input > session.input
for _ in $(seq 40); do echo 'key 26'; done >> session.input
printf 'key KEY_F15\nbutton 1\nclose\n' >> session.input

QUELMARKINPUT=session.input "$program" > printed.txt || exit 1
printed=$(iconv -f CP932 -t UTF-8 printed.txt | sed 's/ *$//')
[ "$printed" = 'left 0 FALSE .' ] || { echo "printed: $printed"; exit 1; }

failures=0
if [ "${QUELMARK_RENEW:-}" = 1 ]; then
    cp desk.suf "$project/samples/"
    for picture in tutorial-*.ppm; do
        convert "$picture" -colors 16 -type Palette -define png:compression-level=9 "$project/docs/pictures/${picture%.ppm}.png"
    done
fi
cmp desk.suf "$project/samples/desk.suf" || failures=1
for picture in tutorial-*.ppm; do
    convert "$project/docs/pictures/${picture%.ppm}.png" kept.ppm
    cmp "$picture" kept.ppm || { echo "$picture differs"; failures=1; }
done
exit $failures
