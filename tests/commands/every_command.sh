#!/usr/bin/env bash
# every_command.sh QUELMARKC: every item of every menu and every key, in every situation, once cancelled, once accepted as it is proposed
# and once with a file for an answer; every item also cancelled at its second and third dialog, after an answer that is refused, with extreme
# numbers and none, in the middle of a drag and after one click and several: no error, cancelling changes nothing, and undoing gives back what
# was there.
set -u
program=$(realpath "$1")
here=$(realpath "$(dirname "$0")")
# shellcheck source=prepare.sh
. "$here/prepare.sh"
configuration random_session.qms all
bound
dialog_rows
paste free rows > kinds

# Quitting ends the session; whether there are recent files depends on what was tried before. A new model and another file forget the
# steps: they are only cancelled.
session() {
    awk -F '\t' -v quit='^(終了|（最近|[1-9]  |key 17$)' -v forgets='^(新規|開く|key 1[45]$)' '
        BEGIN { while ((getline line < "kinds") > 0) { split(line, field, "\t"); kinds[field[1]] = field[3] } }
        # The same answer to every text of the dialog.
        function filled(item, answer,   rows, row, i, n, text) {
            n = split(kinds[item], rows, " ")
            for (i = 2; i <= n; i++) { split(rows[i], row, ":"); if (row[2]) text = text "answer " row[1] " " answer "\n" }
            return text
        }
        function run(mode, answers, hand,   i) {
            print "answer 0 " mode; print "answer 1 " $2; print "button 1"; print "key KEY_F13"
            print answers; print $1 (hand ? "\n" hand : "\nkey KEY_F12")
            for (i = 0; i < 3; i++) print "key 27"
            print "key KEY_F14"; print "key KEY_F12"  # no answer of the next to this one
        }
        $2 ~ quit { next }
        { run("cancel", "button 0\nbutton 0\nbutton 0\nbutton 99") }
        $2 ~ forgets { next }
        { run("accept", "button 1\nbutton 1\nbutton 1\nbutton 99")
          run("file", "file other.suf\nbutton 1\nbutton 1\nbutton 1\nbutton 99") }
        /^menu/ { no = "button 0\nbutton 0\nbutton 0\nbutton 99"
          run("second", "button 1\nbutton 0\nbutton 0\nbutton 99"); run("third", "button 1\nbutton 1\nbutton 0\nbutton 99")
          run("wrong", filled($1, "(") "button 1\nbutton 0\nbutton 0\nbutton 99")  # neither a name nor a number
          if (filled($1, "") != "")
              for (i = split("2147483648,-2147483649,32768,0,1e300,", extremes, ","); i > 0; i--)
                  run("extreme", filled($1, extremes[i]) "button 1\nbutton 0\nbutton 0\nbutton 99")
          run("break", no, "mouse 250 200 1\nmouse 300 220 1\nkey 27\nmouse 300 220 0")
          run("click", no, "mouse 250 200 1\nmouse 250 200 0\nkey 27")
          run("clicks", no, "mouse 250 200 1\nmouse 250 200 0\nmouse 300 220 1\nmouse 300 220 0\nmouse 270 260 1\nmouse 270 260 0\nkey 27")
          run("press", "button 0\nbutton 0\nbutton 0\nbutton 99", "mouse 250 200 1\nmouse 300 220 1\nmouse 300 220 0" \
                      "\nkey x\nmouse 250 150 1\nmouse 250 150 0\nkey 13") }
        END { print "key KEY_F15" }' items keys
}
session > session.input
# With an empty model some dialogs are others.
: > kinds
session > empty.input

failures=0
# try NAME ASKED CHANGED [SETTING ...]: at least so many ask and so many change the model.
try() {
    local name=$1 askedLeast=$2 changedLeast=$3 input=session.input wanted ran asked changed status
    shift 3
    [ "$name" = empty ] && input=empty.input
    wanted=$(grep -c KEY_F13 $input)
    configuration every_command.qms "$name" "$@"
    play $input > log
    status=$?
    read -r ran asked changed < <(sed -n 's/^ran \([0-9]*\) asked \([0-9]*\) changed \([0-9]*\).*/\1 \2 \3/p' log)
    # A full table or buffer is told, and the model stays as it was.
    awk '/^command / { name = $0; full = 0 } /オーバフロー|オーバーフロー/ { full = 1 }
        /^changed/ && full { print "FAULT " name " changes the model though it does not fit" }
        /^FAULT/ || /Error|Fatal|Internal check/ { print name ": " $0 }' log > faults
    if [ $status -ne 0 ] || [ -s faults ] || [ "$ran" != "$wanted" ] || [ "$asked" -lt "$askedLeast" ] ||
        [ "$changed" -lt "$changedLeast" ]; then
        echo "$name: status $status, ran $ran of $wanted, asked $asked, changed $changed"
        cat errors faults
        failures=1
    fi
}
try empty 30 5
try none 40 12
try all 100 90
try hidden 100 90
try full 100 60 BufferSize 8
try tables 100 90 Attr 4 Object 3
exit $failures
