#!/usr/bin/env bash
# configuration.sh QUELMARKC: keys, search path, write-back, log, arguments and environment.
# shellcheck source=cases.sh disable=SC2154
. "$(dirname "$0")/cases.sh"

# ---- sizes ----
script 'print("hello");'
for key in CodeSize Global Function Stack BufferSize Object Attr Vertexs; do
    for value in -1 2147483648; do
        config "$key = $value"
        run --
        [[ "$status" = 1 && "$printed" == "Fatal 設定 $key の値 $value は範囲外です。(0 から "* ]] ||
            { echo "$key $value is out of range: $status $printed"; failures=1; }
    done
done
config 'Vertexs 32768'
run --
is "numbers of vertices are words of a record" 1 "Fatal 設定 Vertexs の値 32768 は範囲外です。(0 から 32767 まで)"
config 'Vertexs 1024'
run --
is "the edit buffer may be larger than a record" 0 "hello"
config 'Global = many'
script 'var a; a = 1;'
run --
is "text that is no number is 0" 1 "t.qms:1:  Fatal 識別子管理バッファがオーバーフローしました"
config 'CodeSize'
run --
is "a key without a value is 0" 1 "t.qms:1:  Fatal 内部コード用バッファがオーバフローしました。！！"
config 'Global = 2 tables' 'Stack 0'
run --
is "no stack is said" 1 "Error スタック用バッファが確保できません。！！"
config 'Stack = 12'
script 'function f(n) { return f(n + 1) + 1; } f(1);'
run --
is "a small stack overflows with its message" 1 "t.qms:1:  Error スタックオーバーフロー！！"
config 'Attr = 1' 'Object 0'
script 'print(AttrAppend("a", 1), AttrAppend("b", 1), ObjAppend("o", "f"));'
run --
is "table sizes count" 0 "アトリビュートバッファがオーバーフローしました
オブジェクトバッファがオーバーフローしました
0 -1 -1"
config 'attr = 0' 'ATTR = 0'
script 'print(AttrAppend("a", 1), "attr".Modelrc());'
run --
is "keys are told apart by case and unknown ones are kept" 0 "0 0"
for line in 'Attr 1' 'Attr=1' '  Attr	=	1  ' 'Attr 5
Attr = 1'; do
    config "$line"
    script 'print(AttrAppend("a", 1), AttrAppend("b", 1));'
    run --
    is "the line '$line'" 0 "アトリビュートバッファがオーバーフローしました
0 -1"
done
config 'Attr == 1'
run --
is "one = belongs to the line, a second one to the value" 0 "アトリビュートバッファがオーバーフローしました
アトリビュートバッファがオーバーフローしました
-1 -1"

# ---- sizes that no line names ----
config
names() {
    seq -s "$2" "$1" | sed -E "s/[0-9]+/$3/g"
}
script "var $(names 256 ', ' 'g&'); print(\"globals\");"
run --
is "256 globals" 0 "globals"
script "var $(names 257 ', ' 'g&');"
run --
is "and not one more" 1 "t.qms:1:  Fatal 識別子管理バッファがオーバーフローしました"
script "$(names 256 ' ' 'function f&() {}') print(\"functions\");"
run --
is "256 functions" 0 "functions"
script "$(names 257 ' ' 'function f&() {}')"
run --
is "and not one more function" 1 "t.qms:1:  Fatal 識別子管理バッファがオーバーフローしました"
script 'var i, n = 0, m = 0;
for (i = 0; i < 257; i++) if (AttrAppend("a" + i, 1) >= 0) n++;
for (i = 0; i < 17; i++) if (ObjAppend("o" + i, "") >= 0) m++;
print(n, m);'
run --
is "256 attributes and 16 objects" 0 "アトリビュートバッファがオーバーフローしました
オブジェクトバッファがオーバーフローしました
256 16"
script 'function down(n) { if (n == 0) return 0; return down(n - 1) + 1; } print(down(100), "\n"); down(5000);'
run --
is "1024 cells of stack" 1 "100
t.qms:1:  Error スタックオーバーフロー！！"

# ---- source files ----
printf 'print("first", one, "\\n");' > home/one.qms
printf 'var one; one = 1;' > home/zero.qms
config 'SourceFile = zero.qms' 'SourceFile one.qms gone.qms' '# SourceFile gone.qms' 'SourceFile = # gone.qms'
run --
is "source files are compiled in their order, comments aside" 0 "first 1"
config '# SourceFile = t.qms'
run --
is "a comment is no source file" 1 "Fatal ソースファイルが読み込まれていません。"
mkdir -p other/deep
printf 'print("other");' > other/o.qms
config 'SourceFile o.qms' 'Path = nowhere;other\deep\..'
run --
is "a Path line counts for every source file, those above it too" 0 "other"
config 'SourceFile t.qms' 'Path = other'
run --
is "a Path line hides the path on which the configuration was found" 1 "Fatal ファイル t.qms が存在しません。"
printf 'print("here");' > t.qms
config 'SourceFile t.qms' 'Path = other'
run --
is "a file of the current directory comes first" 0 "here"
rm t.qms
printf '\xEF\xBB\xBFSourceFile = 表.qms\n' > home/Quelmark.ini
printf '\xEF\xBB\xBFprint("日本");' > home/表.qms
run --
is "a configuration may be UTF-8 with a mark" 0 "日本"
printf '\xEF\xBB\xBF# \xE2\x98\x83\nSourceFile = t.qms\n' > home/Quelmark.ini
script 'print("ran");'
run --
is "a comment may hold anything" 0 "ran"
printf 'Name = \xE2\x98\x83\n' >> home/Quelmark.ini
run --
is "an entry that cp932 cannot carry" 1 "Fatal Quelmark.ini の 3 行目はシフトJISで表せないので使えません。"
printf 'SourceFile = t.qms\r\nName = x y  \r\n' > home/Quelmark.ini
script 'print("[" + "Name".Modelrc() + "]");'
run --
is "line ends of both kinds are no part of a value" 0 "[x y]"

# ---- entries ----
config 'Twice = one' 'Twice two' 'Empty =' 'Empty = filled' 'Text a = b # c'
script 'print("Twice".Modelrc(), "Empty".Modelrc(), "Text".Modelrc(), "[" + "None".Modelrc() + "]", "[" + "twice".Modelrc() + "]");'
run --
is "the first entry with a value is read" 0 "one filled a = b # c [] []"
config '# a comment' 'Twice = one' '' 'Twice two' 'Last = 9'
script 'Modelrc("Twice", "new"); Modelrc("Added", "a b"); Modelrc("Gone", ""); print("Twice".Modelrc(), "Added".Modelrc(), "[" + "Gone".Modelrc() + "]");'
run --
is "a value written is read at once" 0 "new a b []"
printf '# a comment\nTwice\t= new\n\nTwice two\nLast = 9\nSourceFile = t.qms\nAdded\t= a b\nGone\t= \n' > wanted.ini
cmp -s wanted.ini home/Quelmark.ini || { echo "write-back: $(cat home/Quelmark.ini)"; failures=1; }
[ -e home/Quelmark.tmp ] && { echo "the file beside the configuration stays"; failures=1; }
run --
is "and in the next run" 0 "new a b []"
printf '# c\r\n  Key  1 # not a comment\r\n\r\nSourceFile = t.qms' > home/Quelmark.ini
script 'Modelrc("Key", "= #2"); Modelrc("New", ""); Modelrc("New", " 3 "); print("[" + "Key".Modelrc() + "][" + "New".Modelrc() + "]");'
run --
is "blanks, = and # belong to a value" 0 "[= #2][ 3 ]"
printf '# c\r\nKey\t= = #2\r\n\r\nSourceFile = t.qms\r\nNew\t=  3 \r\n' > wanted.ini
cmp -s wanted.ini home/Quelmark.ini || { echo "line ends: $(od -c home/Quelmark.ini)"; failures=1; }
config 'Key = 1'
cp home/Quelmark.ini wanted.ini
script 'Modelrc("", "x"); Modelrc("a b", "x"); Modelrc("a=b", "x"); Modelrc("#a", "x"); Modelrc(" a", "x"); Modelrc("Key", "a\nb"); print("Key".Modelrc() + "[" + "a b".Modelrc() + "]");'
run --
is "what would be read as something else is not written" 0 "設定ファイルに書けません。
設定ファイルに書けません。
設定ファイルに書けません。
設定ファイルに書けません。
設定ファイルに書けません。
設定ファイルに書けません。
1[]"
cmp -s wanted.ini home/Quelmark.ini || { echo "a bad entry: $(cat home/Quelmark.ini)"; failures=1; }
script 'for (var i = 0; i < 200; i++) Modelrc("K" + i, "v" + i); print("K0".Modelrc(), "K64".Modelrc(), "K199".Modelrc());'
run --
is "two hundred new entries" 0 "v0 v64 v199"
config 'Key = 1'
mkdir elsewhere
script 'dir("elsewhere"); Modelrc("Key", "2"); print("Key".Modelrc());'
run --
is "an entry is written back from another directory too" 0 "2"
holds "it is in the file that was read" home/Quelmark.ini '^Key	= 2$'
printf '\xEF\xBB\xBFKey = 1\nSourceFile = t.qms\n' > home/Quelmark.ini
script 'Modelrc("Key", "表"); print("Key".Modelrc());'
run --
is "the first line of a file with a mark is found" 0 "表"
printf '\xEF\xBB\xBFKey\t= 表\nSourceFile = t.qms\n' > wanted.ini
cmp -s wanted.ini home/Quelmark.ini || { echo "write-back with a mark: $(od -c home/Quelmark.ini | head -5)"; failures=1; }
config 'Key = 1'
chmod 600 home/Quelmark.ini
script 'Modelrc("Key", "2");'
run --
[ "$(stat -c %a home/Quelmark.ini)" = 600 ] || { echo "the file's permissions changed"; failures=1; }
chmod 644 home/Quelmark.ini
config 'Key = 1'
mkdir kept
mv home/Quelmark.ini kept/mine.ini
ln -s ../kept/mine.ini home/Quelmark.ini
run --
[ -L home/Quelmark.ini ] || { echo "a link to the configuration is replaced by a file"; failures=1; }
holds "the file that a link means is written" kept/mine.ini '^Key	= 2$'
[ "$(ls kept)" = mine.ini ] || { echo "beside the linked file stays: $(ls kept)"; failures=1; }
rm home/Quelmark.ini

# What cannot be written leaves the file and the entry: at a limit of its length, in a folder and a file of somebody else (root may write
# everywhere, so those runs are another user's).
config 'Key = 1' "# $(printf '%4000s' .)"
cp home/Quelmark.ini wanted.ini
script 'Modelrc("Key", "2"); print("Key".Modelrc());'
# refuses WHAT COMMAND…: the program, started by the command, says so.
refuses() {
    printed=$(MODELPATH=home "${@:2}" "$program" 2> errors.txt | iconv -f CP932 -t UTF-8)
    status=0
    errors=$(cat errors.txt)
    is "$1" 0 "設定ファイルに書けません。
1"
    cmp -s wanted.ini home/Quelmark.ini || { echo "$1: the file changed"; failures=1; }
    [ -e home/Quelmark.tmp ] && { echo "$1: the file beside it stays"; failures=1; }
}
refuses "at a limit" bash -c 'ulimit -f 2; exec "$0"'
as_user=(env)
[ "$(id -u)" -eq 0 ] && as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
cp "$program" ./other-program
chmod 755 . other-program
(
    program=./other-program
    chmod 444 home/Quelmark.ini
    chmod 777 home
    refuses "a file that may not be written" "${as_user[@]}"
    chmod 666 home/Quelmark.ini
    chmod 555 home
    refuses "a folder that may not be written" "${as_user[@]}"
    exit $failures
) || failures=1
chmod 755 home
config 'Key = 1'
script 'print("x".Modelrc(5));'
run --
is "the value is checked" 1 "t.qms:1:  Error 2 番目の引数の型が不正です。( Modelrc )"
script 'Modelrc("x", Matrix());'
run --
is "an object that is no String has its own message" 1 "t.qms:1:  Error 2番目の引数の型不正です(Modelrc)"

# ---- arguments and environment ----
config
script 'var i; for (i = 1; i < 5; i++;) { print("[" + GetArg(i) + "]"); } print("[" + GetArg(-1) + "]", GetArg(0) != "");'
run -- a "b c" 表
is "arguments, and nothing beyond" 0 "[a][b c][表][][] TRUE"
run -- --dump a
is "--dump in front is taken" 0 "[a][][][][] TRUE"
run -- a --dump
is "--dump elsewhere is an argument" 0 "[a][--dump][][][] TRUE"
run -- a $'\xE2\x98\x83' b
is "an argument that cp932 cannot carry" 1 "Fatal 引数 2 はシフトJISで表せないので使えません。"
run -- $'\x95\x5C'
is "an argument that is no UTF-8" 1 "Fatal 引数 1 はシフトJISで表せないので使えません。"
for name in MODELPATH HOME home; do
    env $name=$'home;\xE2\x98\x83' "$program" > printed.raw 2> errors.txt
    status=$? printed=$(iconv -f CP932 -t UTF-8 printed.raw) errors=
    is "$name that cp932 cannot carry" 1 "Fatal 環境変数 $name はシフトJISで表せないので使えません。"
done
run HOME=$'\xE2\x98\x83' --
is "HOME does not matter with MODELPATH" 0 "[][][][][] TRUE"
script 'print("QQ".getenv(), "NO".getenv() == "");'
run QQ=日本 --
is "a script reads the environment" 0 "日本 TRUE"
script 'print("before\n"); print("QQ".getenv());'
run QQ=$'\xE2\x98\x83' --
is "what a script cannot be told is an error" 1 "before
t.qms:1:  Error 環境変数 QQ はシフトJISで表せないので使えません。"
mkdir $'\xE2\x98\x83'
config
script 'print(dir());'
cd $'\xE2\x98\x83' || exit 1
env MODELPATH=../home "$program" > ../printed.raw 2> ../errors.txt
status=$?
cd ..
printed=$(iconv -f CP932 -t UTF-8 printed.raw)
is "a current directory without a cp932 name" 1 "t.qms:1:  Error 現在のディレクトリの名前はシフトJISで表せないので使えません。"

# ---- the log ----
config 'SourceFile long_script_name.qms'
printf 'function f() {} var g; print("out\\n");' > home/long_script_name.qms
run QUELMARKLOG=q.log --
holds "the code of a file" q.log '^long_script_name.qms : [0-9]+$'
holds "the whole code" q.log '^Total      : [0-9]+$'
holds "the report" q.log '^Code Used  : 1 Kbytes$'
holds "the stack" q.log '^Stack Used : [0-9]+$'
holds "the globals" q.log '^Globals    : 1$'
holds "the functions" q.log '^Functions  : [0-9]+$'
holds "the banner" q.log 'Quelmark'
is "standard output has no report" 0 "out"
[ "$(head -2 q.log)" = "
Code Used" ] || { echo "the log begins: $(head -3 q.log)"; failures=1; }
config 'SourceFile gone.qms'
run QUELMARKLOG=q.log --
holds "a fatal message goes to the log" q.log 'Fatal ファイル gone.qms が存在しません。'
[ "$(iconv -f CP932 -t UTF-8 q.log | grep -c 'long_script')" = 0 ] || { echo "the old log is kept"; failures=1; }
config
script 'print(1 + "a");'
run QUELMARKLOG=q.log --
holds "an error of the top level ends with the report" q.log '^Code Used  : '
script 'print("a\n");'
run QUELMARKLOG=q.log -- --dump
holds "the trace" q.log '^EXEC\[[0-9A-F]{6}\]\[t.qms:   1\] : '
is "the trace is in the log alone" 0 "a"
script 'SetZoom(3); SetZoom(2, 0); SetZoom(-2, 7); print("a\n");'
run QUELMARKLOG=q.log --
holds "a move step is told" q.log '^move : 7$'
[ "$(grep -c '^move' q.log)" = 1 ] || { echo "a move step that is not given is told"; failures=1; }
is "a move step is told in the log alone" 0 "a"

run QUELMARKLOG=nowhere/q.log --
is "a log that cannot be written does not stop a run" 0 "a"
[ "$errors" = "ログファイルに書けません: nowhere/q.log" ] || { echo "said of the log: $errors"; failures=1; }

# ---- how a run ends ----
script 'Quit(); print(1 + "a");'
run --
is "an error after Quit still fails" 1 "t.qms:1:  Error 整数演算の型が不正です。"
script 'WaitEvent(); print("never");'
run --
is "a wait that finds no input ends the run" 0 ""
script 'function main() { print("main\n"); print(1 + "a"); }'
run --
is "an error in main goes on to the end" 0 "main
t.qms:1:  Error 整数演算の型が不正です。"
script 'function main() { print("main"); } Quit();'
run --
is "main is not called after Quit" 0 ""
exit $failures
