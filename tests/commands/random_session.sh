#!/usr/bin/env bash
# random_session.sh QUELMARKC TURNS SEED ...: commands, keys, presses, drags, turns of the wheel and answers at random, sensible and not.
# There is no error, what was before a turn can be brought back, undoing to the start gives the first model and doing all again the last,
# and the last model is read from its file as it was written. With QUELMARK_KEEP=FOLDER the session and its log are kept there.
set -u
program=$(realpath "$1")
turns=$2
shift 2
every=$((turns > 800 ? turns / 20 : 40))  # turns from one look back to the next
here=$(realpath "$(dirname "$0")")
# shellcheck source=prepare.sh
. "$here/prepare.sh"

# Every seventh seed the same situation.
situation() {
    case $(($1 % 7)) in
        0) configuration random_session.qms empty BufferSize 512 ;;
        1) configuration random_session.qms all BufferSize 512 ;;
        2) configuration random_session.qms hidden BufferSize 512 ;;
        3) configuration random_session.qms full BufferSize 16 ;;
        4) configuration random_session.qms tables BufferSize 512 Attr 5 Object 4 ;;
        5) configuration random_session.qms all BufferSize 512 UndoMemory 1 ;;
        6) configuration random_session.qms hidden BufferSize 512 Attr 40 Object 40 UndoMemory 1 ;;
    esac
}
situation 1
bound

dialog_rows

# session SEED: so many turns, with looks back.
session() {
    paste rows free | awk -F '\t' -v seed="$1" -v turns="$turns" -v every="$every" '
        # Of its own, so that a seed means the same session everywhere.
        function random(n) { seed = seed * 48271 % 2147483647; return int(seed / 65536) % n }
        function pick(list, a) { return a[random(split(list, a, " ")) + 1] }
        function number() {
            if (random(3)) return random(40) - 10
            return pick("0 1 -1 2 0.5 1.5 -0.25 90 360 100 255 1000 32767 -32767 -32768 32768 65535 99999 2147483648 1e9 -99999999999 0.00001")
        }
        function text() {
            if (random(4)) return number()
            if (random(2)) return pick("new red green first second other.suf red2 NO abc x y")
            return pick("あ 表 . - + -- 1.2.3 0x10 nan inf ) \" \\ /* a(b 1,2 ｱｲｳ %s %d aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa")
        }
        function place() {
            if (random(12) == 0) return random(1400) - 200 " " 48 + random(900)
            if (random(6) == 0) return width - 123 + random(46) " " 26 + random(362)  # a button, not one that opens or saves
            if (random(8) == 0) return width - 76 + random(76) " " random(700)         # the lists
            return 10 + random(width - 140) " " 10 + random(700)
        }
        function click(    where) {
            where = place()
            print "mouse " where " 1\nmouse " where " 0"
        }
        function press(    x, i, button) {
            button = 1 + (random(4) == 0)
            print "mouse " place() " " button
            for (i = random(3); i > 0; i--) print "mouse " place() " " button
            if (random(10) == 0) print "key 27"
            print "mouse " place() " 0"
        }
        function key() {
            if (random(3) == 0) return pick("13 8 120 121 122 88 89 90 32774 9")
            key_ = 32 + random(95)
            if (random(4) == 0) { do key_ = 1 + random(26); while (key_ ~ /^(14|15|17|19|23)$/ || (key_ > 24 && random(9))) }
            else if (random(4) == 0) key_ = 32769 + random(10)
            else if (random(4) == 0) key_ = 32784 + random(30)
            return key_
        }
        function hand(    i) {
            if (random(4) == 0) {
                for (i = 2 + random(5); i > 0; i--) click()
                print "key 13"
            }
            for (i = random(5); i > 0; i--) {
                if (random(3)) press()
                else print "key " key() " " random(4)
            }
        }
        function item(    i, n, rows, row) {
            i = random(items) + 1
            if (random(3) == 0 && asking) i = asks[random(asking) + 1]
            n = split(kinds[i], rows, " ")
            for (i_ = 2; i_ <= n; i_++) {
                split(rows[i_], row, ":")
                if (random(2)) print "answer " row[1] " " (row[2] ? text() : random(8))
            }
            print "button " (random(5) ? 1 : 0)
            if (random(4) == 0) print "file " pick("other.suf made.suf nowhere/x.suf a.frm")
            print picks[i] "   # " texts[i]
            if (n < 2 && random(2)) hand()  # what no dialog has asked for must not reach the next
        }
        { kinds[NR] = $1; picks[NR] = $2; texts[NR] = $3; items = NR; if (split($1, parts, " ") > 1) asks[++asking] = NR }
        END {
            width = 1024
            for (i = 0; i < 20; i++) random(2)
            for (turn = 1; turn <= turns; turn++) {
                print "# turn " turn
                if (random(4)) print "key " pick("a a a a a v j l h u")
                what = random(20)
                if (what < 12) item()
                else if (what < 15) hand()
                else if (what < 17) print "key " key() " " random(4)
                else if (what < 18) print "wheel " place() " " random(9) - 4
                else if (what < 19) for (i = random(4); i >= 0; i--) print "key " pick("26 26 25 25")
                else { width = 400 + random(1000); print "size " width " " 200 + random(900) }
                print "mouse 200 200 0\nkey 27\nkey 27\nkey 27\nbutton 99\nkey KEY_F13"
                if (turn % every == 0) print "key KEY_F14"
            }
            print "size 1024 768\nkey KEY_F14"
        }'
}

# What was written last is read without a fault and written again as it was.
readBack() {
    mkdir -p again
    printf 'BufferSize = 4096\nSourceFile = again.qms\n' > again/Quelmark.ini
    cat > again/again.qms <<'E'
if (!ReadFile("../state.suf"))
    print("FAULT the file is not read", "\n");
WriteModel("again.suf");
E
    (cd again && "$program" | iconv -f CP932 -t UTF-8)
    cmp -s state.suf again/again.suf || echo "FAULT the model that is read is not what was written: $(diff state.suf again/again.suf | head -3)"
}

failures=0
for seed in "$@"; do
    echo "seed $seed"
    situation "$seed"
    session "$seed" > session.input
    play session.input > log
    status=$?
    readBack >> log
    awk '/^turn/ { turn = $2 } /^FAULT|Error|Fatal|Internal check/ { print "after turn " turn ": " $0 }' log > faults
    changes=$(sed -n '/^turn/s/.*changes \([0-9]*\).*/\1/p' log | tail -1)
    if [ $status -ne 0 ] || [ -s faults ] || [ "$(grep -c '^turn' log)" != $((turns / every + 1)) ] ||
        [ "${changes:-0}" -lt $((turns / 40)) ]; then
        echo "seed $seed, status $status:"
        cat errors faults
        failures=1
    fi
    tail -1 log
    [ -z "${QUELMARK_KEEP:-}" ] || cp session.input log "$QUELMARK_KEEP/"
done
exit $failures
