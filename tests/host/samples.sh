#!/usr/bin/env bash
# samples.sh QUELMARKC SAMPLES README: every sample reads without a word and has as many polygons as the README says; the stock scripts
# open it, draw it, zoom, select and quit.
set -u
program=$1
samples=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset MODELPATH HOME
failures=0
printf 'SourceFile = count.qms\nBufferSize = 20000\n' > "$folder/Quelmark.ini"
printf 'print(ReadFile(GetArg(1)), ObjPolygons());' > "$folder/count.qms"
cat > "$folder/session.input" <<'EOF'
key f
key '+'
wheel 200 200 1
mouse 200 200 2
mouse 230 210 2
mouse 230 210 0
key a
key c
mouse 100 100 1
mouse 100 100 0
key n
key KEY_F1
key 1
key 0
key g
key i
key v
key KEY_LEFT
size 700 500
key 17
EOF
# The scripts keep their settings in the configuration: the session gets one of its own.
mkdir "$folder/home"
cp "$(dirname "$program")/Quelmark.ini" "$folder/home"
for sample in "$samples"/*.suf; do
    name=$(basename "$sample")
    wanted=$(sed -n "s/^| \`$name\` | \([0-9,]*\) |.*/\1/p" "$samples/README.md" | tr -d ,)
    got=$(MODELPATH="$folder" "$program" "$sample")
    if [ "$got" != "1 $wanted" ]; then
        echo "$name: wanted 1 $wanted, got $got"
        failures=1
    fi
    output=$(HOME="$folder/home" QUELMARKINPUT="$folder/session.input" "$program" "$sample" | iconv -f CP932 -t UTF-8)
    if [[ "$output" != *"選択したポリゴン $wanted "* || "$output" == *Error* ]]; then
        echo "$name with the stock scripts: $output"
        failures=1
    fi
done
exit $failures
