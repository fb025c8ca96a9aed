#!/usr/bin/env bash
# page.sh QUELMARKC PAGE.md: runs the ```qms examples of a page of the manual as one script.
set -u
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
{
    printf '\xEF\xBB\xBF'
    awk '/^```qms/ { inside = 1; next } /^```/ { inside = 0 } inside' "$2"
} > "$folder/example.qms"
grep -q '// expect' "$folder/example.qms" || { echo "no example of $2 expects anything"; exit 1; }
"$(dirname "$0")/run.sh" "$1" "$folder/example.qms"
