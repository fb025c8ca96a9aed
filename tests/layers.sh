#!/usr/bin/env bash
# Fails when a file includes a header of a higher layer, or Qt outside its own folder.
set -u
cd "$1/src"
order="text ML MATLIB MODEL reader view host BINDINGS"
level() {
    case "$1" in
        MODEL/MDLINIT.*|MODEL/EVENT.*|MODEL/SYSLIB.*|MODEL/VIEWLIB.*|MODEL/SETDRAW.*|MODEL/BUTTON.*|MODEL/MENU.*|MODEL/DLOGLIB.*|MODEL/FILE.*|MODEL/PICK.*) echo 7 ;;
        host/qt/*|host/console/*) echo 8 ;;
        *) local n=0; for layer in $order; do [ "${1%%/*}" = "$layer" ] && echo "$n"; n=$((n + 1)); done ;;
    esac
}
failed=0
while IFS=: read -r file line; do
    header=$(printf '%s' "$line" | sed -n 's/^#include "\([^"]*\)".*/\1/p')
    [ -n "$header" ] || continue
    if [ "$(level "$header")" -gt "$(level "$file")" ]; then
        echo "$file includes $header of a higher layer"
        failed=1
    fi
done < <(grep -rH '^#include "' --include='*.h' --include='*.cpp' . | sed 's|^\./||')
if grep -rlE '#include <Q[A-Za-z]' --include='*.h' --include='*.cpp' . | grep -v '^\./host/qt/'; then
    echo "these include Qt outside host/qt"
    failed=1
fi
exit $failed
