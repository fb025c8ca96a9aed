#!/usr/bin/env bash
# authors.sh PROJECT: what the page for script authors calls parts of the stock scripts are functions of theirs, with those arguments.
set -u
cd "$1" || exit 1
told=$(sed -n '/^## 標準のスクリプトの部品/,/^## つまずき/p' docs/script-authors.md | awk -F ' *[|] *' '/^[|] `/ { print $2 }' |
    grep -o '`[A-Za-z]*([^`]*)`' | tr -d '`')
[ "$(printf '%s\n' "$told" | wc -l)" -gt 20 ] || { echo "the table tells of: $told"; exit 1; }
failures=0
while read -r call; do
    grep -qF "function $call {" stock/MACRO/*.qms || { echo "no function of the stock scripts: $call"; failures=1; }
done <<< "$told"
exit $failures
