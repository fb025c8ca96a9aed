#!/usr/bin/env bash
# run.sh QUELMARKC SESSION: one whole session in the console program. The files that it writes are the kept ones byte for byte, and so are the
# views' pictures; what is undone, or done again, is as it was. With QUELMARK_RENEW=1 the kept ones become what was made: look at them before
# they are kept.
#
# A session has the console program's lines, with keys by the names of xdotool, menu items by their texts and a dialog's answers before what
# opens it:
#   pick TITLE ITEM    the item that begins so in the menu of that title
#   key NAME           ctrl+z, shift+m, Return, a
#   mouse X Y BUTTONS  a place in the views
#   answer ROW TEXT, choose ROW NUMBER, tick ROW, button N (the first or the last), discard (the middle one of three), file NAME
#   from ROW           the keyboard begins at this row of the dialog, not at the first one
#   shot NAME          a picture of the views
#   close, start       the program is left by its key, and starts again; close frame: the button of the window's frame
#   refuse [frame]     likewise, but what is asked then keeps it open
#   same A B           the two files, or pictures, are equal
set -u
program=$(realpath "$1")
session=$(realpath "$2")
here=$(dirname "$session")
name=$(basename "$session" .input)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset MODELPATH
export HOME="$folder"
cp "$here/probe.qms" .
{ cat "$(dirname "$program")/Quelmark.ini"; echo "SourceFile = probe.qms"; } > Quelmark.ini
failures=0
fail() { echo "$1"; failures=1; }

play() { QUELMARKINPUT=$1 timeout 100 "$program" >>printed 2>>errors || { fail "$1: exit status $?"; cat errors; }; }
printf 'key KEY_F12\n' > items.input
play items.input
iconv -f CP932 -t UTF-8 printed | grep '^item' > items
awk -F '\t' -v client="1024 748" -v out="$folder/part" -f "$here/replay.awk" items "$session" || fail "the session cannot be replayed"
for part in part*.input; do play "$part"; done
grep -al "Error\|Fatal" printed && fail "an error in a script"

written=0
for file in *.suf *.frm *.ppm; do
    [ -e "$file" ] || continue
    kept="$here/kept/$name-$file"
    # Only one of equal files is kept.
    awk -v file="$file" '$1 == "same" && $3 == file { found = 1 } END { exit !found }' "$session" && continue
    written=$((written + 1))
    case $file in
        *.suf|*.frm)
            [ "${QUELMARK_RENEW:-}" = 1 ] && cp "$file" "$kept"
            cmp "$file" "$kept" || fail "$file is another file" ;;
        *.ppm)
            kept=${kept%.ppm}.png
            [ "${QUELMARK_RENEW:-}" = 1 ] && convert "$file" -strip -colors 16 -type Palette -define png:compression-level=9 -define png:exclude-chunks=date,time "$kept"
            convert "$kept" wanted.pnm
            cmp "$file" wanted.pnm || fail "$file is another picture" ;;
    esac
done
[ "$written" = "$(find "$here/kept" -name "$name-*" | wc -l)" ] || fail "not as many files as are kept: $written"
while read -r what a b; do
    [ "$what" != same ] || cmp "$a" "$b" || fail "$a and $b differ"
done < "$session"
[ $failures -eq 0 ] || [ -z "${KEEP:-}" ] || cp -r "$folder" "$KEEP"
exit $failures
