# Sourced by the tests of the window that run a script of their own: the screen and the folder of screen.sh, and the program in it.
# $program is the program's real path.
. "$(dirname "${BASH_SOURCE[0]}")/screen.sh"
unset QUELMARKINPUT MODELPATH
failures=0
fail() { echo "$1"; failures=1; }
settle() { sleep "${1:-0.4}"; }

# find_window NAME VARIABLE: waits for a window whose whole title is NAME; its number is left in the variable.
find_window() {
    local found=
    for _ in $(seq 100); do
        found=$(xdotool search --onlyvisible --name "^$1\$" 2>/dev/null | head -1)
        [ -n "$found" ] && break
        sleep 0.05
    done
    [ -n "$found" ] || { fail "no window $1"; finish; }
    printf -v "$2" %s "$found"
    sleep 0.3
}

# start_script TEXT [ARGUMENT…]: the program with this script; its output goes to $folder/printed, its window's number to $id.
start_script() {
    printf 'SourceFile = test.qms\n' > "$folder/Quelmark.ini"
    printf '\xEF\xBB\xBF%s\n' "$1" > "$folder/test.qms"
    shift
    cd "$folder" || exit 1
    HOME="$folder" MODELPATH="$folder" "$program" "$@" > "$folder/printed" 2> "$folder/errors" &
    window=$!
    find_window 'Quelmark.*' id
    xdotool mousemove 200 200 windowfocus "$id"  # there is no window manager to give it the keyboard
    settle 0.2
}

text() { iconv -f CP932 -t UTF-8 "$folder/printed" | sed 's/ *$//'; }
# printed LINE [COUNT]: waits until a whole line matching it has been printed COUNT times (1).
printed() {
    for _ in $(seq 100); do [ "$(text | grep -cx -- "$1")" -ge "${2:-1}" ] && return 0; sleep 0.05; done
    fail "not printed: $1"
}

# pixel X Y: the colour at a place of the screen, RRGGBB.
pixel() { import -window root -depth 8 -crop "1x1+$1+$2" +repage rgb:- | od -An -v -tx1 | tr -d ' \n'; }

# Waits for the program's end; its status is left in $status.
wait_end() {
    for _ in $(seq 100); do
        kill -0 $window 2>/dev/null || { wait $window; status=$?; window=; return 0; }
        sleep 0.05
    done
    fail "the program goes on"
    status=
}

# The test's end: what has been printed is shown when something has failed.
finish() {
    [ $failures -eq 0 ] || { echo "printed:"; text; cat "$folder/errors"; }
    [ $failures -eq 0 ] || [ -z "${KEEP:-}" ] || cp "$folder"/*.p?? "$KEEP"
    exit $failures
}
