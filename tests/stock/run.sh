#!/usr/bin/env bash
# run.sh QUELMARKC TEST.qms: runs the stock scripts with TEST.qms behind them and the events of TEST.input when there is one, and compares
# what is printed, line by line, with the `// expect: …` comments of TEST.qms and the `# expect: …` lines of TEST.input behind them.
# `// arguments: …` names the files to open ($SAMPLES is the folder of the samples), `// setting: KEY VALUE` a line of the configuration.
# `// with: FILE` names a script, seen from the test, that is read before it. `// hints` prints what the status line says, between < and >.
# The session's folder is the current one and HOME, and is empty.
set -u
program=$(realpath "$1")
script=$(realpath "$2")
SAMPLES=$(realpath "$(dirname "$0")/../../samples")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
name=$(basename "$script" .qms)
cp "$(dirname "$script")/$name".* "$folder/"
with=$(sed -n 's|.*// with: ||p' "$script")
[ -n "$with" ] && cp "$(dirname "$script")/$with" "$folder/"
cd "$folder" || exit 1
grep -q '^.*// hints$' "$name.qms" &&
    sed 's|^    StatusBar(text, FIELD_HINT);|&\n    print("<" + text + ">\\n");|' "$(dirname "$program")/MACRO/prompt.qms" > prompt.qms
settings=$(sed -n 's|.*// setting: ||p' "$name.qms")
{
    keys=$(printf '%s\n' "$settings" | awk '{print $1}' | paste -sd'|')
    grep -vE "^(${keys:-none})[[:space:]=]" "$(dirname "$program")/Quelmark.ini"
    [ -n "$with" ] && printf 'SourceFile = %s\n' "$(basename "$with")"
    printf '%s\nSourceFile = %s\n' "$settings" "$name.qms"
} > Quelmark.ini
[ -f "$name.input" ] && export QUELMARKINPUT="$folder/$name.input"
arguments=$(sed -n 's|.*// arguments: ||p' "$name.qms")
unset MODELPATH
# shellcheck disable=SC2086
HOME="$folder" timeout 100 "$program" ${arguments//\$SAMPLES/$SAMPLES} > printed.txt 2> errors.txt
status=$?
iconv -f CP932 -t UTF-8 printed.txt | sed 's/[[:space:]]*$//' > got.txt
{
    sed -nE 's!.*// expect:?( |$)!!p' "$name.qms"
    [ -f "$name.input" ] && sed -nE 's!^# expect:?( |$)!!p' "$name.input"
} | sed 's/[[:space:]]*$//' > wanted.txt
if [ $status -ne 0 ]; then
    echo "exit status $status"
    cat errors.txt got.txt
    exit 1
fi
diff -u wanted.txt got.txt
