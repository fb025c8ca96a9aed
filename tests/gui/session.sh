#!/usr/bin/env bash
# session.sh QUELMARK QUELMARKC CLOSE_WINDOW SESSION: one session, with real keys and mouse in the window and again in the console program. The
# files that are written are the same byte for byte, and the views show the same pixels.
#
# tests/sessions/run.sh tells the lines of a session. With QUELMARK_PICTURES=FOLDER the whole window is kept in the folder at each shot, with
# the views' titles and what is selected at the same moment of its pulse, and compared with nothing: so the tutorial's pictures are made.
set -u
program=$(realpath "$1")
console=$(realpath "$2")
close_window=$(realpath "$3")
session=$(realpath "$4")
sessions=$(realpath "$(dirname "$0")/../sessions")
# shellcheck source=screen.sh
. "$(dirname "$0")/screen.sh"
unset MODELPATH QUELMARKINPUT
export LC_ALL=C.UTF-8
failures=0
fail() { echo "$1"; failures=1; }
give_up() {
    echo "line $number: $1"
    kill "$window" 2>/dev/null
    [ -z "${KEEP:-}" ] || cp -r "$folder" "$KEEP"
    exit 1
}
settle() { sleep "${1:-0.25}"; }

for part in window console; do
    mkdir "$folder/$part"
    cp "$sessions/probe.qms" "$folder/$part/"
    # The titles of the views are texts of the window: they are no part of the picture.
    { cat "$(dirname "$program")/Quelmark.ini"; printf 'ViewTitles = %d\nSourceFile = probe.qms\n' "${QUELMARK_PICTURES:+1}"; } > "$folder/$part/Quelmark.ini"
done

# ---- the window ----

begin() {
    probes=0
    (cd "$folder/window" && HOME="$folder/window" exec "$program" >printed 2>errors) &
    window=$!
    for _ in $(seq 200); do id=$(xdotool search --name '^Quelmark' 2>/dev/null | head -1); [ -n "$id" ] && break; sleep 0.05; done
    [ -n "$id" ] || { echo "no window"; exit 1; }
    settle 0.5
    xdotool mousemove 300 600
    probe
    # The views are then those of the console program's own window.
    [ -z "${QUELMARK_PICTURES:-}" ] || { xdotool windowsize "$id" 1024 788; settle 0.5; }
    [ -n "${top:-}" ] || { measure; in_console; }
}
ended() {
    for _ in $(seq 100); do kill -0 $window 2>/dev/null || { wait $window; return; }; sleep 0.05; done
    return 1
}
# Waits until all that was done before has reached the scripts.
probe() {
    probes=$((probes + 1))
    xdotool key F12
    for _ in $(seq 200); do grep -qa "^probe[[:blank:]]*$probes\$" "$folder/window/printed" && return; sleep 0.05; done
    picture "$folder/silent.ppm"
    give_up "the window does not answer"
}
picture() { import -window root -depth 8 "$1"; }
pixels() { convert "$1" -crop "$2" +repage -depth 8 rgb:- | od -An -v -tx1 -w3 | tr -d ' '; }
# Where the views are: they begin with their background, end before the status bar's white line; left of the list panel's black is its edge.
measure() {
    local status
    picture "$folder/root.ppm"
    eval "$(xdotool getwindowgeometry --shell "$id" | grep -E '^(WIDTH|HEIGHT)=')"
    top=$(($(pixels "$folder/root.ppm" "1x200+0+0" | grep -n 646464 | head -1 | cut -d: -f1) - 1))
    status=$(pixels "$folder/root.ppm" "1x$((HEIGHT - top))+0+$top" | grep -n ffffff | head -1 | cut -d: -f1)
    status=$((top + status - 1))
    list=$(($(pixels "$folder/root.ppm" "${WIDTH}x1+0+$((status - 1))" | grep -nv 000000 | tail -1 | cut -d: -f1) - 1))
    height=$((status - top))
    [ "$height" -gt 300 ] && [ "$list" -gt 300 ] || { echo "the views are not where they are looked for: $top $status $list"; exit 1; }
    # The console's window has characters of 8 × 16: a client size with the same room for the views.
    client="$((list + 79)) $((height + 22))"
}

# A menu is opened with the mouse and its item found with the arrows, which leave out what is grey.
choose_item() {
    local found place downs
    probe
    found=$(iconv -f CP932 -t UTF-8 "$folder/window/printed" | awk -F '\t' -v title="$1" -v text="$2" '
        /^probe/ { last = now; now = "" }
        /^item/ { now = now $0 "\n" }
        END { n = split(last, lines, "\n")
              for (i = 1; i < n; i++) {
                  split(lines[i], part, "\t")
                  if ((part[5] != title && index(part[5], title "(") != 1) || part[6] == "-" || part[4] + 0) continue
                  downs++
                  if (index(part[6], text) == 1) { print part[2], downs; exit } } }')
    [ -n "$found" ] || give_up "$2 cannot be picked"
    read -r place downs <<< "$found"
    xdotool mousemove 30 "$((top / 2))" click 1
    settle
    for _ in $(seq "$place"); do xdotool key Right; settle 0.1; done
    [ "$place" = 0 ] || downs=$((downs - 1))
    for _ in $(seq $downs); do xdotool key Down; done
    settle 0.1
    xdotool key Return
}

windows() { xdotool search --onlyvisible --name '.*' 2>/dev/null | wc -l; }
open_dialog() { for _ in $(seq 100); do [ "$(windows)" -gt 2 ] && { settle; return; }; sleep 0.05; done; give_up "no dialog"; }

# The answers that were put before, into the dialogs that come.
answers=()
dialogs() {
    local line row at rest
    [ ${#answers[@]} = 0 ] && return
    open_dialog
    at=0
    for line in "${answers[@]}"; do
        read -r what row rest <<< "$line"
        case $what in
            from) at=$row ;;
            answer|choose|tick)
                while [ "$at" -lt "$row" ]; do xdotool key Tab; at=$((at + 1)); done
                while [ "$at" -gt "$row" ]; do xdotool key shift+Tab; at=$((at - 1)); done
                settle 0.1
                case $what in
                    answer) xdotool type --delay 20 -- "$rest" ;;
                    choose) xdotool key Home; for _ in $(seq "$rest"); do xdotool key Down; done ;;
                    tick) xdotool key space ;;
                esac ;;
            button)
                # The last button is Return's, the first Escape's.
                settle 0.1
                if [ "$row" = 0 ]; then xdotool key Escape; else xdotool key Return; fi
                settle
                at=0 ;;
            discard) xdotool key shift+Tab; settle 0.1; xdotool key space; settle; at=0 ;;
            file)
                open_dialog
                xdotool type --delay 20 -- "$folder/window/$row"
                settle 0.1
                xdotool key Return
                settle 0.5 ;;
        esac
    done
    answers=()
    settle
}

held=0
mouse() {
    local button
    xdotool mousemove "$1" "$((top + $2))"
    settle 0.06
    for button in 1 3; do
        bit=$((button == 1 ? 1 : 2))
        if [ $(($3 & bit)) != 0 ] && [ $((held & bit)) = 0 ]; then xdotool mousedown $button; fi
        if [ $(($3 & bit)) = 0 ] && [ $((held & bit)) != 0 ]; then xdotool mouseup $button; fi
    done
    [ "$3" = "$held" ] || settle 0.1
    held=$3
}

leave() { if [ "$1" = frame ]; then "$close_window" "$id"; else xdotool key ctrl+q; fi; }

in_window() {
    local what rest
    number=0
    begin
    while read -r what rest; do
        number=$((number + 1))
        case $what in
            ''|'#'*|same) ;;
            pick) choose_item ${rest/ */} "${rest#* }"; dialogs ;;
            key) xdotool key $rest; settle 0.08; dialogs ;;
            mouse) mouse $rest ;;
            from|answer|choose|tick|button|discard|file) answers+=("$what $rest") ;;
            shot) shot "$rest" ;;
            close) leave "$rest"; dialogs; ended || give_up "not closed" ;;
            refuse) leave "$rest"; dialogs; probe ;;
            start) begin ;;
            *) fail "line $number: $what?" ;;
        esac
    done < "$session"
    ! kill -0 "$window" 2>/dev/null || fail "the session does not end with the window closed"
}

# ---- the console program ----

console_part() { (cd "$folder/console" && HOME="$folder/console" QUELMARKINPUT=$1 "$console" >>printed 2>>errors) || fail "the console program has failed"; }

in_console() {
    local name part=0
    printf 'size %s\nkey KEY_F12\n' "$client" > "$folder/console/items.input"
    console_part items.input
    iconv -f CP932 -t UTF-8 "$folder/console/printed" | grep '^item' > "$folder/items"
    # Recent files have their places when there are some.
    awk -F '\t' -v client="$client" -v out="$folder/console/part" -f "$sessions/replay.awk" "$folder/items" "$session" ||
        fail "the session cannot be replayed"
    for name in "$folder"/console/part*.input; do console_part "$name"; done
}

# ---- both ----

# The picture is taken again until it is the console's, for some seconds. What is selected pulses, so nothing may be.
shot() {
    if [ -n "${QUELMARK_PICTURES:-}" ]; then
        xdotool mousemove 880 700; settle 1
        picture "$folder/whole.ppm"
        convert "$folder/whole.ppm" -crop 1024x788+0+0 +repage -fuzz 6.9% -fill '#e900e9' -opaque '#e900e9' \
            -define png:compression-level=9 "$QUELMARK_PICTURES/$1.png"
        return
    fi
    local name=$1 area="${list}x$height" different
    [ "$(identify -format %w "$folder/console/$name.ppm")" -ge "$list" ] || area="$(identify -format %w "$folder/console/$name.ppm")x$height"
    convert "$folder/console/$name.ppm" -crop "$area+0+0" +repage "$folder/wanted.ppm"
    for _ in $(seq 20); do
        settle
        picture "$folder/window/$name.ppm"
        convert "$folder/window/$name.ppm" -crop "$area+0+$top" +repage "$folder/shown.ppm"
        different=$(compare -metric AE "$folder/shown.ppm" "$folder/wanted.ppm" null: 2>&1)
        [ "$different" = 0 ] && return
    done
    fail "line $number: $name: $different pixels of the views are others than the console program's"
}

in_window
kill "$window" 2>/dev/null
grep -al "Error\|Fatal" "$folder"/window/printed "$folder"/console/printed && fail "an error in a script"
written=$(cd "$folder/console" && ls ./*.suf ./*.frm 2>/dev/null)
[ -n "$written" ] || fail "nothing was written"
for name in $written; do
    cmp "$folder/window/$name" "$folder/console/$name" || fail "$name is another file"
done
while read -r what a b; do
    [ "$what" != same ] || [ "${a%.ppm}" != "$a" ] || cmp "$folder/window/$a" "$folder/window/$b" || fail "$a and $b differ"
done < "$session"
[ $failures -eq 0 ] || [ -z "${KEEP:-}" ] || cp -r "$folder" "$KEEP"
exit $failures
