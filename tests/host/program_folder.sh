#!/usr/bin/env bash
# program_folder.sh QUELMARKC: what depends on where the program file is and what it is called.
# shellcheck source=cases.sh disable=SC2154
. "$(dirname "$0")/cases.sh"
# start NAME=VALUE… -- PROGRAM [ARGUMENT…]: the same as run for another program file, without MODELPATH.
start() {
    local settings=()
    while [ "$1" != -- ]; do
        settings+=("$1")
        shift
    done
    shift
    env "${settings[@]}" "$@" > printed.raw 2> errors.txt
    status=$?
    printed=$(iconv -f CP932 -t UTF-8 printed.raw)
    errors=$(cat errors.txt)
}
mkdir -p place/MACRO place/QUELMARK place/MODEL place/sub place.d empty
cp "$program" place/q.exe
tool() {
    printf '#!/bin/sh\necho "%s $*"\n' "$1" > "$1"
    chmod +x "$1"
}

# ---- search path ----
printf 'SourceFile t.qms\n' > place/MODEL/Quelmark.ini
printf 'print("model");' > place/MODEL/t.qms
start -- place/q.exe
is "the folder MODEL is searched" 0 "model"
printf 'print("quelmark");' > place/QUELMARK/t.qms
start -- place/q.exe
is "the folder QUELMARK before it" 0 "quelmark"
printf 'print("macro");' > place/MACRO/t.qms
start -- place/q.exe
is "the folder MACRO before that" 0 "macro"
printf 'print("program");' > place/t.qms
start -- place/q.exe
is "the program's folder before all" 0 "program"
printf 'print("home");' > home/t.qms
start HOME=home -- place/q.exe
is "the home folder first" 0 "home"
start MODELPATH=home -- place/q.exe
is "with MODELPATH the program's folder is not searched" 1 "Fatal ファイル Quelmark.ini が存在しません。"
start HOME=home MODELPATH='empty;place\MODEL' -- place/q.exe
is "and HOME is not" 0 "model"
start HOME=empty home=home -- place/q.exe
is "HOME hides home" 0 "program"

# ---- the log ----
holds "an extension of three letters gives a log" place/q.log '^Total      : '
echo old > place/q.log
start -- place/q.exe
[ "$(grep -c old place/q.log)" = 0 ] || { echo "the old log is kept"; failures=1; }
for name in place/q place/q.x place/q.exes place.d/q place.d/abc; do
    mv place/q.exe "$name"
    find . -name '*.log' -delete
    start MODELPATH=place/MODEL -- "$name"
    is "the program as $name" 0 "model"
    [ -z "$(find . -name '*log')" ] || { echo "$name has a log: $(find . -name '*log')"; failures=1; }
    mv "$name" place/q.exe
done

# ---- programs ----
for name in place/tool place/bat.BAT place/com.COM place/exe.EXE place/pif.PIF place/both.EXE place/both.COM place/doc.hlp place/sub/inner own tool other.hlp; do
    tool "$name"
done
tool .hlp
cat > place/t.qms <<'END'
"tool one \"two words\"".Child(1);
"bat".Child(ON);
"com x".Child(1, 1);
"exe".Child(1, 0);
"pif".Child(1);
"both".Child(1);
"sub/inner a".Child(1);
"sub\\inner b".Child(1);
"own c".Child(1);
"own	tabbed".Child(1);
".hlp d".Child(1);
"doc.hlp".Child(1);
"doc.hlp topic".Child(1);
"DOC.HLP".Child(1);
"other.Hlp".Child(1);
"none".Child(1);
print("end\n");
END
start -- place/q.exe
is "programs of the program's folder come first, help files are not run" 0 "place/tool one two words
place/bat.BAT
place/com.COM x
place/exe.EXE
place/pif.PIF
place/both.COM
place/sub/inner a
place/sub/inner b
own c
own tabbed
.hlp d
end"
printf 'print(GetArg(0) == fullpath("place/q.exe"));' > place/t.qms
start -- place/q.exe
is "the first argument is the program's path" 0 "TRUE"
mkdir $'\xE2\x98\x83'
cp "$program" $'\xE2\x98\x83/q'
start MODELPATH=home -- $'./\xE2\x98\x83/q'
is "a program path that cp932 cannot carry" 1 "Fatal プログラムのパス はシフトJISで表せないので使えません。"
exit $failures
