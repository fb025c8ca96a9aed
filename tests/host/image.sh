#!/usr/bin/env bash
# image.sh QUELMARKC STOCK SAMPLES: the PNG that ViewImage writes has the pixels of the frame, for all views and for one.
set -u
program=$(realpath "$1")
stock=$(realpath "$2")
samples=$(realpath "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
{
    grep -v '^SourceFile = image.qms' "$stock/Quelmark.ini"
    echo "SourceFile = image.qms"
} > Quelmark.ini
cat > image.qms <<'S'
function picture() {
    print(ViewImage("all.png"), ViewImage("one.png", WIN_PERS), ViewImage("none.png", 0), "\n");
    print(ViewImage("no/folder.png"), "\n");
}
KeyEvent(picture, KEY_F15);
S
printf 'key a\nkey KEY_F15\nshot frame.ppm\n' > events
HOME="$folder" QUELMARKINPUT=events "$program" "$samples/house.suf" | iconv -f CP932 -t UTF-8 | sed 's/ *$//' > printed.txt
printf 'TRUE TRUE FALSE\nファイルがオープンできません\nFALSE\n' | diff - printed.txt || exit 1
[ ! -e none.png ] || exit 1

# same PNG GEOMETRY: the picture shows the part of the frame at its place.
same() {
    local size
    size=$(identify -format '%wx%h' "$1")
    convert "$1" one.ppm && convert frame.ppm -crop "$size$2" +repage two.ppm || exit 1
    cmp one.ppm two.ppm || exit 1
    echo "$1 $size"
}
same all.png +0+0
width=$(identify -format %w all.png)
same one.png "+$((width / 2))+0"
