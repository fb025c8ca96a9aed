#!/usr/bin/env bash
# page.sh QUELMARKC PAGE.md: runs the ```qms examples of a page of the manual as one script, with the lines of its ```input blocks as its
# session.
set -u
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
{
    printf '\xEF\xBB\xBF'
    awk '/^```qms/ { inside = 1; next } /^```/ { inside = 0 } inside' "$2"
} > "$folder/example.qms"
awk '/^```input/ { inside = 1; next } /^```/ { inside = 0 } inside' "$2" > "$folder/example.input"
grep -q '// expect' "$folder/example.qms" || { echo "no example of $2 expects anything"; exit 1; }
"$(dirname "$0")/run.sh" "$1" "$folder/example.qms"
