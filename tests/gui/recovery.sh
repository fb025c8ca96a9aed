#!/usr/bin/env bash
# recovery.sh QUELMARK: the window is killed in the middle of work on a model that was never saved. The next start offers what was kept; put off
# it is offered again, taken back it is the model as it was and still to be saved, discarded it is gone.
set -u
program=$(realpath "$1")
# shellcheck source=screen.sh
. "$(dirname "$0")/screen.sh"
unset MODELPATH QUELMARKINPUT
cd "$folder" || exit 1
# Kept each half second in place of each minute.
{ printf '\xEF\xBB\xBF'; cat <<'S'; } > probe.qms
TimedEvent(KeepModel, 500);
var private probes = 0;
function private Probe() { probes++; print("probe " + probes + " polygons " + ObjPolygons() + " edited " + ModelEdited() + " [" + ModelFile() + "]\n"); }
KeyEvent(Probe, KEY_F12);
S
{ cat "$(dirname "$program")/Quelmark.ini"; echo "SourceFile = probe.qms"; } > Quelmark.ini
failures=0
fail() { echo "$1"; failures=1; }
settle() { sleep "${1:-0.3}"; }
begin() {
    probes=0
    HOME="$folder" "$program" >printed 2>errors &
    window=$!
    for _ in $(seq 200); do id=$(xdotool search --name '^Quelmark' 2>/dev/null | head -1); [ -n "$id" ] && break; sleep 0.05; done
    [ -n "$id" ] || { echo "no window"; exit 1; }
    settle 0.5
    xdotool mousemove 200 600
}
asked() { for _ in $(seq "${1:-100}"); do [ "$(xdotool search --onlyvisible --name '.*' 2>/dev/null | wc -l)" -gt 2 ] && { settle; return 0; }; sleep 0.05; done; return 1; }
# is WANTED: what the model is.
is() {
    local got
    probes=$((probes + 1))
    xdotool key F12
    for _ in $(seq 200); do grep -qa "^probe *$probes " printed && break; sleep 0.05; done
    got=$(iconv -f CP932 -t UTF-8 printed | sed -n "s/^probe *$probes //p" | sed 's/ *$//')
    [ "$got" = "$1" ] || fail "wanted: $1, got: $got"
}
# titled WANTED: what the window's title tells of the model.
titled() {
    local got
    got=$(xdotool getwindowname "$id")
    [ "$got" = "Quelmark$1" ] || fail "titled: $got instead of Quelmark$1"
}
draw() {
    xdotool key p; settle
    for at in "200 500" "260 500" "260 560"; do xdotool mousemove $at; settle 0.1; xdotool click 1; settle 0.2; done
    xdotool key Return; settle
}
kept() { for _ in $(seq 100); do [ -s .quelmark-1.suf ] && { settle; return; }; sleep 0.05; done; fail "nothing is kept"; }
killed() { kill -9 $window; wait $window 2>/dev/null; }
ended() { for _ in $(seq 100); do kill -0 $window 2>/dev/null || return; sleep 0.05; done; fail "the window is still there"; kill $window; }

begin
asked 10 && fail "something is offered at the first start"
titled ""
draw
is "polygons 1 edited TRUE []"
titled " - （名前のないモデル） *"
kept
killed
cp .quelmark-1.suf copy.suf

begin
asked || fail "nothing is offered"
xdotool key Escape; settle
is "polygons 0 edited FALSE []"
xdotool key ctrl+q
ended
cmp -s .quelmark-1.suf copy.suf || fail "what was put off has gone"

begin
asked || fail "what was put off is not offered again"
xdotool key Return; settle
is "polygons 1 edited TRUE []"
xdotool key ctrl+s
asked || fail "no file is asked for"
xdotool type --delay 20 "$folder/saved.suf"; xdotool key Return; settle 0.5
is "polygons 1 edited FALSE [C:${folder//\//\\}\\saved.suf]"
titled " - saved.suf"
cmp saved.suf copy.suf || fail "the model is not as it was"
[ -e .quelmark-1.suf ] && fail "the copy of a saved model is still there"
draw
kept
killed
cmp -s saved.suf copy.suf || fail "the file has changed without saving"

begin
asked || fail "a changed file is not offered"
xdotool key shift+Tab; settle 0.1; xdotool key space; settle
is "polygons 0 edited FALSE []"
[ -e .quelmark-1.suf ] && fail "what was discarded is still there"
xdotool key ctrl+q
ended
begin
asked 10 && fail "what was discarded is offered"
xdotool key ctrl+q
ended
[ $failures -eq 0 ] || { cat printed; [ -z "${KEEP:-}" ] || cp -r . "$KEEP"; }
exit $failures
