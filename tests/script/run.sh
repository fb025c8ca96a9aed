#!/usr/bin/env bash
# run.sh QUELMARKC SCRIPT.qms: runs a script through the console program, with the events of SCRIPT.input when there is one, and
# compares what it prints, line by line, with its `// expect: …` comments. The message that ends a run is printed like any other line.
# The source line of an internal failure is not compared: any change above it moves it.
set -u
program=$(realpath "$1")
script=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
name=$(basename "$script" .qms)
cp "$script" "$folder/"
cp "$(dirname "$script")/$name".* "$folder/" 2>/dev/null
{
    printf 'CodeSize = 256\nGlobal = 512\nFunction = 512\nStack = 20000\nBufferSize = 1024\n'
    cat "$(dirname "$script")/$name.ini" 2>/dev/null
    printf 'SourceFile = %s\n' "$name.qms"
} > "$folder/Quelmark.ini"
cd "$folder" || exit 1
[ -f "$name.input" ] && export QUELMARKINPUT="$folder/$name.input"
arguments=$(sed -n 's|.*// arguments: ||p' "$name.qms")
# shellcheck disable=SC2086
MODELPATH="$folder" "$program" $arguments > printed.txt 2> errors.txt
status=$?
if [ $status -gt 1 ]; then
    echo "exit status $status"
    cat errors.txt
    exit 1
fi
plain='s/[[:space:]]*$//; s/(Internal check .*), line [0-9A-Z]+\)$/\1)/'
iconv -f CP932 -t UTF-8 printed.txt | sed -E "$plain" > got.txt
sed -nE 's!.*// expect( error)?: ?!!p' "$name.qms" | sed -E "$plain" > wanted.txt
diff -u wanted.txt got.txt
