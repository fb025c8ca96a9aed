#!/usr/bin/env bash
# Read by the tests of commands: a folder, the configuration and what is bound. Needs $program and $here.
# shellcheck disable=SC2154
folder=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo /tmp)")  # models are written to the disk itself, thousands of times
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset MODELPATH
export HOME="$folder"
cp "$here"/*.qms .

# configuration PROBE SITUATION [KEY VALUE ...]: the stock configuration with the probe's keys behind it.
configuration() {
    local probe=$1 keys="Situation" settings="Situation = $2"
    shift 2
    while [ $# -gt 0 ]; do
        keys="$keys|$1"
        settings="$settings"$'\n'"$1 = $2"
        shift 2
    done
    {
        grep -vE "^($keys)[[:space:]=]" "$(dirname "$program")/Quelmark.ini"
        printf '%s\nSourceFile = situations.qms\nSourceFile = %s\n' "$settings" "$probe"
    } > Quelmark.ini
}

# play SESSION: what is printed and logged.
play() {
    QUELMARKINPUT=$1 timeout 300 "$program" > printed 2> errors
    status=$?
    iconv -f CP932 -t UTF-8 printed
    return $status
}

# What is bound: the pick and the text of every item of the menus, and of every key.
bound() {
    local position code
    for position in 0 1 2 3 4 5 6 7 8 9 10 11; do
        echo "open $position" > open.input
        play open.input | awk -F '\t' -v position=$position '$1 != "-" { print "menu " position " " NR - 1 "\t" $1 }'
    done > items
    for code in $(seq 1 127) $(seq 32769 32779) $(seq 32784 32813); do
        printf 'key %d\tkey %d\n' "$code" "$code"
    done > keys
}

# The items that a session can go on after, and the rows of each one's dialog: 1 for a text, 0 for a number. In the configuration of
# random_session.qms.
dialog_rows() {
    grep -vE $'\t''(終了|（最近|[1-9]  |新規|開く|元に戻す|やり直す)' items > free
    awk -F '\t' '{ print "key KEY_F12\n" $1 "\nbutton 0\nkey 27\nkey 27"
        for (i = 0; i < 12; i++) print "key KEY_F11"
        print "button 99\nkey KEY_F13" }' free > rows.input
    play rows.input | awk '/^item/ { n++; printf "%s%d", (n > 1 ? "\n" : ""), n } /^row/ { printf " %d:%d", $2, $3 } END { print "" }' > rows
}
