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
export DISPLAY
