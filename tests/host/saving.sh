#!/usr/bin/env bash
# saving.sh QUELMARKC: what a file held before is whole after a save that fails: at a limit of its length, on a full disk, in a folder that may not
# be written, and when the program is killed. Root may write everywhere, so the folder's run is another user's.
set -u
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
chmod 755 "$folder"
cp "$1" "$folder/quelmarkc" || exit 1
cd "$folder" || exit 1
failures=0
fails() {
    echo "$1"
    failures=1
}
# files FOLDER: a fresh folder with the files to be replaced and the script that saves more than 100 kB to each.
files() {
    mkdir "$1"
    printf 'BufferSize = 1024\nAttr = 1000\nSourceFile = save.qms\n' > "$1/Quelmark.ini"
    for name in object attribute attributes model frame appended; do
        printf 'old %s' "$name" > "$1/$name.suf"
    done
    cat > "$1/save.qms" <<'S'
var i;
AttrAppend("r", 2);
for (i = 1; i < 1000; i++) AttrAppend("a" + i, 2);
ObjAppend("o", "object.suf");
ObjAppend("p", "appended.suf");
PolyVertexs(3);
for (i = 0; i < 4000; i++) PolyAppend(1);
print(WriteFile(0), WriteFile(1, FILE_APPEND), "model.suf".WriteModel(), AttrWriteFile("attribute.suf", 0), "attributes.suf".WriteAttributes(), "\n");
WriteFrame(UNIT_MATRIX, "frame.suf", "o");
print("done");
S
}
# save FOLDER [COMMAND…]: sets printed and status.
save() {
    cd "$1" || exit 1
    shift
    printed=$(MODELPATH=. "$@" ../quelmarkc 2> errors.txt | iconv -f CP932 -t UTF-8; exit "${PIPESTATUS[0]}")
    status=$?
    rm -f errors.txt
    cd ..
}
# kept WHAT FOLDER NAME…: these files are as they were, and nothing was left beside them.
kept() {
    local what=$1 where=$2 name
    shift 2
    for name in "$@"; do
        [ "$(cat "$where/$name.suf")" = "old $name" ] || fails "$what: $name.suf is not as it was"
    done
    [ -z "$(find "$where" -name '.*' -type f)" ] || fails "$what: a file was left beside them"
}
# said WHAT TEXT: the run ended well and printed this.
said() {
    [ $status -eq 0 ] && [ "$(printf '%s' "$printed" | tr -s ' \n' ' ')" = "$2" ] || fails "$1: status $status, printed: $printed"
}

# The small ones fit below the limit and are saved.
files limit
save limit bash -c 'ulimit -f 20; exec "$0"'
said "at a limit" "0 0 FALSE 1 FALSE done"
kept "at a limit" limit object appended attributes model
grep -q '^atr r {' limit/attribute.suf || fails "what fits below the limit is not saved"

files nowhere
chmod 555 nowhere
chmod 666 nowhere/*.suf
as_user=()
[ "$(id -u)" -eq 0 ] && as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
cd nowhere || exit 1
printed=$(MODELPATH=. "${as_user[@]}" ../quelmarkc 2>/dev/null | iconv -f CP932 -t UTF-8; exit "${PIPESTATUS[0]}")
status=$?
cd ..
refusal="ファイルがオープンできません"
said "in a folder without permission" "$refusal $refusal $refusal $refusal 0 1 FALSE 0 FALSE フレームファイルが出力できません done"
kept "in a folder without permission" nowhere object attribute attributes model frame

# Where file systems may be mounted: a disk of 60 kB.
mkdir disk
if mount -t tmpfs -o size=60k tmpfs disk 2>/dev/null; then
    files disk/full
    cp quelmarkc ./disk-program
    cd disk/full || exit 1
    printed=$(MODELPATH=. ../../disk-program 2>/dev/null | iconv -f CP932 -t UTF-8; exit "${PIPESTATUS[0]}")
    status=$?
    cd ../..
    said "on a full disk" "0 0 FALSE 1 FALSE done"
    kept "on a full disk" disk/full object appended attributes model
    umount disk
fi

# Killed at any moment of endless saves, the file holds one of two whole texts.
files killed
cat > killed/save.qms <<'S'
var i;
ObjAppend("o", "object.suf");
PolyVertexs(3);
for (i = 0; i < 3000; i++) PolyAppend(1);
while (1) {
    ObjName(0, "even");
    WriteFile(0);
    ObjName(0, "odd");
    WriteFile(0);
}
S
cd killed || exit 1
for i in $(seq 1 25); do
    before=$(stat -c %i object.suf)
    MODELPATH=. ../quelmarkc > /dev/null 2>&1 &
    program=$!
    # Once it saves, at any moment of the next few saves.
    for wait in $(seq 1 3000); do
        [ "$(stat -c %i object.suf)" != "$before" ] && break
        sleep 0.01
    done
    [ "$wait" -lt 3000 ] || { fails "killed: the file is never replaced"; kill -9 $program; break; }
    sleep "0.0$((RANDOM % 4))$((RANDOM % 10))"
    kill -9 $program
    wait $program 2>/dev/null
    [[ "$(head -n 1 object.suf)" =~ ^"obj suf "(even|odd)" {"$ ]] && [ "$(tail -n 1 object.suf)" = "}" ] &&
        [ "$(wc -l < object.suf)" -eq 12003 ] || fails "killed: object.suf is not whole"
done
exit $failures
