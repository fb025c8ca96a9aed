#!/usr/bin/env bash
# startup.sh QUELMARKC LOCALES: what the program does with its configuration, its search path and bad files at start-up.
set -u
program=$(realpath "$1")
locales=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failures=0
# expect NAME STATUS TEXT COMMAND…: the command ends with that status and prints a line that holds the text.
expect() {
    local name=$1 wanted=$2 text=$3
    shift 3
    local output status
    output=$("$@" 2>/dev/null)
    status=$?
    output=$(printf '%s' "$output" | iconv -f CP932 -t UTF-8 2>/dev/null)
    if [ "$status" -ne "$wanted" ] || [[ "$output" != *"$text"* ]]; then
        echo "$name: status $status (wanted $wanted), printed: $output"
        failures=1
    fi
}
mkdir empty home other
unset HOME MODELPATH QUELMARKINPUT
expect "a missing configuration is named" 1 "Fatal ファイル Quelmark.ini が存在しません。" env MODELPATH=empty "$program"
printf 'Stack 1024\n' > home/Quelmark.ini
expect "no script is an error" 1 "ソースファイルが読み込まれていません。" env MODELPATH=home "$program"
printf 'SourceFile = gone.qms\n' > home/Quelmark.ini
expect "a missing script is named" 1 "ファイル gone.qms が存在しません。" env MODELPATH=home "$program"
printf 'SourceFile = a.qms second.qms\n#SourceFile = gone.qms\n' > home/Quelmark.ini
printf 'print("hello");' > home/a.qms
expect "only the first word of a SourceFile counts" 0 "hello" env MODELPATH=home "$program"
expect "HOME is searched" 0 "hello" env HOME=home "$program"
expect "home in small letters is searched" 0 "hello" env home=home "$program"
expect "MODELPATH hides HOME" 1 "存在しません。" env HOME=home MODELPATH=empty "$program"
printf 'print("other");' > other/b.qms
printf 'Path = other\nSourceFile = b.qms\n' > home/Quelmark.ini
expect "a Path line replaces the search path" 0 "other" env MODELPATH=home "$program"
printf 'CodeSize 1\nSourceFile = long.qms\n' > home/Quelmark.ini
for i in $(seq 200); do echo "print($i);"; done > home/long.qms
expect "code that does not fit is fatal" 1 "内部コード用バッファがオーバフローしました。！！" env MODELPATH=home "$program"
printf 'SourceFile = bad.qms\n' > home/Quelmark.ini
printf '\nprint(1' > home/bad.qms
expect "a parse error names file and line" 1 "bad.qms:2:  Error  ) が必要です" env MODELPATH=home "$program"
head -c 4000 "$program" > home/bad.qms
expect "a binary script is refused" 1 "Error" env MODELPATH=home "$program"
mkdir home/sub
printf 'nothing;' > home/sub/deeper.qms
printf 'SourceFile = sub\\deeper.qms\n' > home/Quelmark.ini
expect "a message names the part behind the last separator" 1 "deeper.qms:1:  Error 識別子 nothing は定義されていません" env MODELPATH=home "$program"
mkdir home/folder.qms
printf 'SourceFile = folder.qms\n' > home/Quelmark.ini
expect "a folder is no script" 1 "オープンできません。" env MODELPATH=home "$program"
mkfifo home/pipe.qms
printf 'SourceFile = pipe.qms\n' > home/Quelmark.ini
expect "a pipe is no script" 1 "ファイル home\\pipe.qms がオープンできません。" env MODELPATH=home timeout 10 "$program"
printf 'SourceFile = /dev/zero\n' > home/Quelmark.ini
expect "a device is no script" 1 "ファイル /dev/zero がオープンできません。" env MODELPATH=home timeout 10 "$program"
truncate -s 3G home/huge.qms
printf 'SourceFile = huge.qms\n' > home/Quelmark.ini
expect "a script beyond reason is refused" 1 "ファイルサイズが不正です。" env MODELPATH=home timeout 10 "$program"
rm home/huge.qms
mkdir piped zero
mkfifo piped/Quelmark.ini
ln -s /dev/zero zero/Quelmark.ini
expect "a pipe is no configuration" 1 "Quelmark.ini" env MODELPATH=piped timeout 10 "$program"
expect "a device is no configuration" 1 "Quelmark.ini" env MODELPATH=zero timeout 10 "$program"
mkfifo pipe.suf
printf 'SourceFile = e.qms\n' > home/Quelmark.ini
printf 'print(ReadFile("pipe.suf"), ReadFile("/dev/zero"));' > home/e.qms
expect "a pipe or a device is no shape file" 0 "0 0" env MODELPATH=home timeout 10 "$program"
printf 'print("pipe.suf".fileopen().filegets(), "pipe.suf".fileopen("w"), "pipe.suf".fileopen("a")); "pipe.suf".fprint(1); "out.txt".fprint(2, 3); "out.txt".fprint("."); print(fileopen("out.txt").filegets(), "out.txt".fileopen("w+").filegetc());' > home/e.qms
expect "a script does not wait for the other end of a pipe" 0 "FALSE FALSE FALSE2 3. -1" env MODELPATH=home timeout 10 "$program"
printf 'print("/dev/stdin".fileopen().filegets());' > home/e.qms
printf 'input\n' > typed
expect "a script may read standard input" 0 "input" env MODELPATH=home timeout 10 "$program" < <(cat typed)
printf 'SourceFile = deep.qms\n' > home/Quelmark.ini
head -c 100000 /dev/zero | tr '\0' '(' > home/deep.qms
expect "deep nesting is refused" 1 "スタックオーバーフロー！！" env MODELPATH=home "$program"
printf 'SourceFile = e.qms\n' > home/Quelmark.ini
printf 'print(1 + "a");' > home/e.qms
expect "an error in the top-level code ends with status 1" 1 "e.qms:1:  Error 整数演算の型が不正です。" env MODELPATH=home "$program"
printf 'function f(x) { return f(x + 1) + 1; } function g() { g(); } KeyEvent(g, "g"); KeyEvent(f, "f"); function o() { print("ok"); } KeyEvent(o, "o");' > home/e.qms
printf 'key g\nkey f\nkey o\n' > input.txt
expect "endless recursion leaves the program running" 0 "ok" env MODELPATH=home QUELMARKINPUT=input.txt "$program"
printf 'nonsense\n' > input.txt
expect "a bad input line ends with status 2" 2 "" env MODELPATH=home QUELMARKINPUT=input.txt "$program"
printf 'print("log");' > home/e.qms
expect "the log holds output and the report" 0 "log" env MODELPATH=home QUELMARKLOG=q.log "$program"
grep -q 'Code Used  : 1 Kbytes' q.log && grep -q '^Stack Used : ' q.log && grep -q '^e.qms ' q.log || { echo "log: $(cat q.log)"; failures=1; }
printf 'print(2.5, atof("1.5"), sprintf("%%4.1f", 3.25));' > home/e.qms
expect "a locale with a decimal comma changes no number" 0 "2.500000 1.500000  3.2" env MODELPATH=home LOCPATH="$locales" LC_ALL=de_DE.UTF-8 "$program"
[ "$(LOCPATH="$locales" LC_ALL=de_DE.UTF-8 locale decimal_point)" = , ] || { echo "no locale with a comma"; failures=1; }
# With as little memory as a small model takes (a sanitizer takes more than any limit here), one with large tables is refused.
printf 'print("started");' > home/e.qms
least=$(for kilobytes in $(seq 20000 5000 80000); do
    (ulimit -v "$kilobytes" && MODELPATH=home "$program") > out.txt 2>/dev/null && grep -q started out.txt && echo "$kilobytes" && break
done)
for key in Attr Object BufferSize; do
    printf '%s %d\nSourceFile = e.qms\n' "$key" "$([ $key = BufferSize ] && echo 1000000 || echo 32767)" > home/Quelmark.ini
    [ -z "$least" ] || expect "no memory for the tables of $key is said" 1 "Fatal メモリが確保できません。(ModelInit)" \
        env MODELPATH=home bash -c "ulimit -v $least; exec \"\$0\"" "$program"
done
printf 'SourceFile = e.qms\n' > home/Quelmark.ini
mkdir 表
printf 'obj suf a { atr x prim poly ( 0 0 0 1 0 0 0 1 0 ) }' > 表/能.suf
printf 'print(ReadFile(GetArg(1)), ObjFile(0) == GetArg(1));' > home/e.qms
expect "Japanese file names work" 0 "1 TRUE" env MODELPATH=home "$program" 表/能.suf
exit $failures
