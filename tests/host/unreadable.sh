#!/usr/bin/env bash
# unreadable.sh QUELMARKC: a shape file, a script and a configuration that the user may not read are refused by name. Root may read
# everything, so its run is another user's.
set -u
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
chmod 755 "$folder"
cp "$1" "$folder/quelmarkc" || exit 1
cd "$folder" || exit 1
as_user=()
[ "$(id -u)" -eq 0 ] && as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
printf 'SourceFile = read.qms\n' > Quelmark.ini
printf 'print(ReadFile("a.suf"));' > read.qms
printf 'obj suf a { atr x prim poly ( 0 0 0 1 0 0 0 1 0 ) }' > a.suf
failures=0
# refused FILE STATUS TEXT: with the file unreadable the run ends with that status and prints the text.
refused() {
    chmod 000 "$1"
    local printed status
    printed=$("${as_user[@]}" env MODELPATH="$folder" ./quelmarkc 2>/dev/null)
    status=$?
    printed=$(printf '%s' "$printed" | iconv -f CP932 -t UTF-8)
    if [ $status -ne "$2" ] || [[ "$printed" != *"$3"* ]]; then
        echo "$1: status $status (wanted $2), printed: $printed"
        failures=1
    fi
    chmod 644 "$1"
}
refused a.suf 0 'ファイル a.suf がオープンできません。'
refused read.qms 1 'read.qms がオープンできません。'
refused Quelmark.ini 1 'Quelmark.ini がオープンできません。'
exit $failures
