#!/usr/bin/env bash
# run.sh QUELMARKC COMPARE CASE.qms FAILED: runs model.qms and CASE.qms through the console program and compares every picture that
# is taken with pictures/PICTURE.ppm.gz, byte for byte. The events are those of CASE.input, or, when there is none, those of
# default.input with the case's name. Pictures that differ are written to the folder FAILED, with the differences beside them.
# With QUELMARK_RENEW=1 the kept pictures become what was drawn: look at them before they are kept.
set -u
program=$(realpath "$1")
compare=$(realpath "$2")
script=$(realpath "$3")
failed=$4
home=$(dirname "$script")
name=$(basename "$script" .qms)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$home/model.qms" "$script" "$folder/"
cd "$folder" || exit 1
printf 'CodeSize = 256\nGlobal = 512\nFunction = 512\nStack = 20000\nBufferSize = 1024\nSourceFile = model.qms\nSourceFile = %s\n' \
    "$name.qms" > Quelmark.ini
if [ -f "$home/$name.input" ]; then
    cp "$home/$name.input" events
else
    sed "s/CASE/$name/" "$home/default.input" > events
fi
MODELPATH="$folder" QUELMARKINPUT=events "$program" > printed.txt 2> errors.txt
status=$?
if [ $status -ne 0 ] || [ -s printed.txt ] || [ -s errors.txt ]; then
    echo "exit status $status"
    iconv -f CP932 -t UTF-8 printed.txt
    cat errors.txt
    exit 1
fi
bad=0
pictures=0
for picture in $(sed -n 's/^shot //p' events); do
    pictures=$((pictures + 1))
    kept="$home/pictures/$picture.gz"
    mkdir -p "$failed"
    rm -f "$failed/$picture" "$failed/${picture%.ppm}.difference.ppm"
    gzip -dc "$kept" > kept.ppm 2> /dev/null
    if cmp -s kept.ppm "$picture"; then
        continue
    fi
    if [ "${QUELMARK_RENEW:-0}" = 1 ]; then
        gzip -9nc "$picture" > "$kept"
        echo "renewed $kept"
        continue
    fi
    bad=1
    cp "$picture" "$failed/$picture"
    if [ -s kept.ppm ]; then
        echo "$picture: $("$compare" kept.ppm "$picture" "$failed/${picture%.ppm}.difference.ppm")"
    else
        echo "$picture: no picture is kept"
    fi
    echo "  drawn: $failed/$picture"
done
if [ $pictures -eq 0 ]; then
    echo "no picture is taken"
    exit 1
fi
exit $bad
