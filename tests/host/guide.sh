#!/usr/bin/env bash
# guide.sh QUELMARKC PROJECT: the tables of both halves of the user's guide, the Japanese and the English, have every item of every menu with
# its key, in the menus' order, and no other.
set -u
program=$(realpath "$1")
guide=$(realpath "$2/docs/user-guide.md")
stock=$(realpath "$2/stock")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset MODELPATH
export HOME="$folder"
cp "$stock/Quelmark.ini" .

for position in 0 1 2 3 4 5 6 7 8; do
    echo "open $position" > open.input
    QUELMARKINPUT=open.input "$program" | iconv -f CP932 -t UTF-8
done | grep -v '^-' > items
cut -f1 items | sed 's/\.\.\.$//; s/ *$//' > labels
[ "$(wc -l < labels)" -gt 100 ] || { echo "the menus have $(wc -l < labels) items"; exit 1; }

# A row tells of one item, or of some with marks between them.
table() {
    awk -F ' *[|] *' '/^[|] (項目|item) [|]/ { inside = 1; next } !/^[|]/ { inside = 0 } inside && $2 !~ /^-/ { print $'"$1"' }' "$2"
}
failures=0
sed '/^# Using Quelmark/,$d' "$guide" > japanese
sed -n '/^# Using Quelmark/,$p' "$guide" > english
for half in japanese english; do
    table 2 $half | sed 's/、/\n/g; s/, /\n/g' > told
    diff -u labels told > difference || { echo "the $half half:"; cat difference; failures=1; }
done

# The keys of the rows, one after the other; what brackets add is left out.
awk -F '\t' 'NF == 3 { print $2 }' items > keys
for half in japanese english; do
    table 3 $half | sed 's/（[^）]*）//g; s/ ([^)]*)//g; s/`//g; s/Page /Page/g; s/、/\n/g; s/, /\n/g' | grep . > told
    diff -u keys told > difference || { echo "the keys of the $half half:"; cat difference; failures=1; }
done
exit $failures
