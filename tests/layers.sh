#!/usr/bin/env bash
# Fails when a file includes a header of a higher layer, or Qt outside its own folder, and when the page on the architecture leaves out a
# module or names one that is not there.
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
modules=$(find . -name '*.h' -o -name '*.cpp' | sed 's|.*/||; s|[.].*||' | grep -v '^main$' | sort -u)
told=$(sed -n '/^## Modules/,/^The interpreter/p' ../docs/architecture.md | awk -F ' *[|] *' 'NF > 4 { print $3 }' | grep -o '`[A-Za-z0-9_]*`' | tr -d '`' | sort)
diff <(printf '%s\n' "$modules") <(printf '%s\n' "$told" | uniq) ||
    { echo "src and docs/architecture.md differ so"; failed=1; }
exit $failed
