# To be sourced: runs the program in a fresh folder, whose folder home holds the configuration, and counts failures.
set -u
program=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
mkdir home
unset HOME home MODELPATH QUELMARKINPUT QUELMARKLOG
failures=0

# config LINE…: the configuration; a script t.qms is compiled when no line says otherwise.
config() {
    printf '%s\n' "$@" > home/Quelmark.ini
    [[ "$*" == *SourceFile* ]] || printf 'SourceFile = t.qms\n' >> home/Quelmark.ini
}
# script TEXT: home/t.qms.
script() {
    printf '\xEF\xBB\xBF%s\n' "$1" > home/t.qms
}
# run [NAME=VALUE…] -- [ARGUMENT…]: sets printed, errors (UTF-8) and status.
run() {
    local settings=()
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        settings+=("$1")
        shift
    done
    shift
    env MODELPATH=home "${settings[@]}" "$program" "$@" > printed.raw 2> errors.txt
    status=$?
    printed=$(iconv -f CP932 -t UTF-8 printed.raw)
    errors=$(cat errors.txt)
}
# is NAME STATUS TEXT: the last run ended so and printed exactly the text (trailing blanks of lines aside).
is() {
    local got
    got=$(printf '%s' "$printed" | sed 's/[[:space:]]*$//')
    if [ "$status" -ne "$2" ] || [ "$got" != "$3" ]; then
        printf '%s\n  wanted %s: %s\n  got    %s: %s\n  errors: %s\n' "$1" "$2" "$3" "$status" "$got" "$errors"
        failures=1
    fi
}
# refused NAME LINE TEXT: the last run was ended by an input line before anything was printed.
refused() {
    if [ "$status" -ne 2 ] || [ -n "$printed" ] || [[ "$errors" != *"input line $2: "*"$3"* ]]; then
        printf '%s\n  got %s: %s\n  errors: %s\n' "$1" "$status" "$printed" "$errors"
        failures=1
    fi
}
# holds NAME FILE PATTERN: a file has a line that matches.
holds() {
    if ! iconv -f CP932 -t UTF-8 "$2" | grep -qE -- "$3"; then
        printf '%s: no line of %s matches %s\n' "$1" "$2" "$3"
        failures=1
    fi
}
