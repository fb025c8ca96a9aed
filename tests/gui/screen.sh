# Sourced by the tests of the window: a window server of their own with a screen of $screen pixels (1400x1000), and the folder $folder; both
# are gone at the end, and the program $window with them. Where a tool is missing the test is skipped.
for tool in Xvfb xdotool import; do
    command -v $tool >/dev/null || { echo "$tool is missing"; exit 77; }
done
folder=$(mktemp -d)
Xvfb -displayfd 3 -noreset -screen 0 "${screen:-1400x1000}x24" 3>"$folder/display" 2>/dev/null &
server=$!
window=
trap 'kill $server $window 2>/dev/null; rm -rf "$folder"' EXIT
for _ in $(seq 100); do [ -s "$folder/display" ] && break; sleep 0.05; done
DISPLAY=:$(cat "$folder/display")
# xdotool types what the locale can carry.
export DISPLAY LC_ALL=C.UTF-8
# Waits until the program has dealt with what was sent: it sleeps, and has used next to no time for a while. A loaded machine takes longer.
ticks() { awk '{ print $3, $14 + $15 }' "/proc/$window/stat" 2>/dev/null; }
settle() {
    local before after
    sleep 0.3
    for _ in $(seq 40); do
        before=$(ticks)
        sleep 0.1
        after=$(ticks)
        [ -n "$after" ] || return 0
        [ "${after% *}" = S ] && [ "${before% *}" = S ] && [ $((${after#* } - ${before#* })) -le 1 ] && return 0
    done
}
