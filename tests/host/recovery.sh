#!/usr/bin/env bash
# recovery.sh QUELMARKC STOCK: a changed model that was never saved is kept each minute; after a sudden end it is offered, and may be taken back,
# left for later or discarded. A running editor's own copy is never offered to another, and a clean end leaves none.
set -u
program=$(realpath "$1")
stock=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset MODELPATH
cp "$stock/Quelmark.ini" .
echo "SourceFile = probe.qms" >> Quelmark.ini
cat > probe.qms <<'S'
function probe() { print("polygons", ObjPolygons(), ModelEdited(), "[" + ModelFile() + "]\n"); }
function crash() { "crash.sh".fprint("kill -9 $PPID"); "sh crash.sh".Child(ON); }
function block() { "block.sh".fprint("mv .quelmark-1.suf kept.suf; mkdir .quelmark-1.suf"); "sh block.sh".Child(ON); }
KeyEvent(block, KEY_F13);
KeyEvent(probe, KEY_F14);
KeyEvent(crash, KEY_F15);
S
failures=0

# session EXPECTED [FILE…] < events: one run of the editor with these files to open.
session() {
    cat > events
    HOME="$folder" QUELMARKINPUT=events "$program" "${@:2}" > printed.txt 2> errors.txt
    printed=$(iconv -f CP932 -t UTF-8 printed.txt | sed 's/ *$//')
    if [ "$printed" != "$1" ]; then
        echo "wanted: $1"
        echo "got: $printed"
        cat errors.txt
        failures=1
    fi
}
box='answer 0 100
button 1
menu 3 2
wait 1'
# keep_a_box: a box is made and kept, and then the end comes.
keep_a_box() {
    session '' <<EOF
$box
wait 60001
key KEY_F15
EOF
}

# A box is made; the sudden end comes after a minute, and a later change is lost, no more.
session '' <<EOF
$box
wait 60001
key n
$box
key KEY_F15
EOF
[ -s .quelmark-1.suf ] || { echo "nothing was kept"; failures=1; }

# Left for later: it stays, and this run keeps its own elsewhere.
session 'polygons 0 FALSE []' <<EOF
button 0
key KEY_F14
$box
wait 60001
button 1
close
EOF
[ -s .quelmark-1.suf ] && [ ! -e .quelmark-2.suf ] || { echo "wrong copies after later"; ls -A; failures=1; }

# Taken back: the model, not saved. The end of the run, with the changes thrown away, forgets the copy.
session 'polygons 6 TRUE []' <<EOF
button 2
key KEY_F14
button 1
close
EOF
[ -e .quelmark-1.suf ] && { echo "a clean end leaves a copy"; failures=1; }

# A saved model's name comes back with it, and the file is as it was.
session '' <<EOF
$box
file box.suf
key 19
key n
$box
wait 60001
key KEY_F15
EOF
cp box.suf before.suf
session "polygons 12 TRUE [$(realpath box.suf | sed 's|^|C:|; s|/|\\|g')]" <<EOF
button 2
key KEY_F14
button 1
close
EOF
cmp before.suf box.suf || failures=1

# A file that was changed meanwhile is not replaced unasked.
session '' <<EOF
file box.suf
key 15
$box
wait 60001
key KEY_F15
EOF
echo >> box.suf
session '' <<EOF
button 2
button 0
key 19
button 1
close
EOF
cmp -s before.suf box.suf && { echo "what was changed meanwhile has been replaced"; failures=1; }
cp before.suf box.suf

# A copy that cannot be renewed keeps its file's name, and goes with the model.
session 'ファイルがオープンできません' <<EOF
file box.suf
key 15
$box
wait 60001
key KEY_F13
$box
wait 60001
wait 60001
key KEY_F15
EOF
rmdir .quelmark-1.suf && mv kept.suf .quelmark-1.suf
session "polygons 12 TRUE [$(realpath box.suf | sed 's|^|C:|; s|/|\\|g')]" <<EOF
button 2
key KEY_F14
button 1
close
EOF
[ -e .quelmark-1.suf ] && { echo "a copy is left"; failures=1; }

# The files to open are then not opened, which is said, but can be picked from the menu; the saved file itself is no other one.
cp box.suf other.suf
cp box.suf third.suf
session '' <<EOF
file box.suf
key 15
$box
wait 60001
key KEY_F15
EOF
session "控えを戻したので、次のファイルは開いていません。ファイルのメニューから開けます。
other.suf
missing.suf
$folder/third.suf
polygons 12 TRUE [$(realpath box.suf | sed 's|^|C:|; s|/|\\|g')]
polygons 6 FALSE [$(realpath other.suf | sed 's|^|C:|; s|/|\\|g')]
polygons 6 FALSE [$(realpath third.suf | sed 's|^|C:|; s|/|\\|g')]" other box missing.suf "$folder/third.suf" <<EOF
button 2
key KEY_F14
button 1
menu 0 9
key KEY_F14
menu 0 10
key KEY_F14
close
EOF

# What can be read of a faulty copy comes back, but the copy stays as it is until it is thrown away.
keep_a_box
head -n 20 .quelmark-1.suf > kept.suf
cp kept.suf .quelmark-1.suf
session "$folder/.quelmark-1.suf 21 : エンドオブファイルになりました   next token=
polygons 2 TRUE []" <<EOF
button 2
key KEY_F14
$box
wait 60001
button 1
close
EOF
cmp -s kept.suf .quelmark-1.suf || { echo "a faulty copy is not as it was"; failures=1; }
[ -e .quelmark-2.suf ] && { echo "a copy is left"; failures=1; }

# Discarded.
keep_a_box
session 'polygons 0 FALSE []' <<EOF
button 1
key KEY_F14
close
EOF
session 'polygons 0 FALSE []' <<EOF
key KEY_F14
close
EOF

# Undone to what is saved: the copy goes. Done again: it is kept again.
session '' <<EOF
$box
wait 60001
key 26
wait 60001
key KEY_F15
EOF
[ -e .quelmark-1.suf ] && { echo "a copy of what was undone stays"; failures=1; }
session '' <<EOF
$box
wait 60001
key 26
wait 60001
key 25
wait 60001
key KEY_F15
EOF
session 'polygons 6 TRUE []' <<EOF
button 2
key KEY_F14
button 1
close
EOF

# While another program holds the copy it is not offered.
keep_a_box
exec 9> .quelmark-1.lock
flock 9
session 'polygons 0 FALSE []' <<EOF
key KEY_F14
close
EOF
exec 9>&-

# Where nothing can be kept it is said at the start.
rm .quelmark-*
for slot in 1 2 3 4 5 6 7 8 9; do mkdir .quelmark-$slot.lock; done
session '自動保存の控えが取れません。' <<EOF
close
EOF
exit $failures
