#!/usr/bin/env bash
# runner_test.sh COMPARE: the comparison and the runner of the pictures find what they are there for.
set -u
compare=$(realpath "$1")
here=$(realpath "$(dirname "$0")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
fail() {
    echo "$1"
    exit 1
}
printf 'P6\n3 2\n255\nabcdefghijklmnopqr' > one.ppm
printf 'P6\n3 2\n255\nabcdefghijklmnopqR' > other.ppm
"$compare" one.ppm one.ppm difference.ppm > /dev/null || fail "a picture differs from itself"
[ ! -e difference.ppm ] || fail "a difference of nothing is written"
[ "$("$compare" one.ppm other.ppm difference.ppm)" = "1 of 6 pixels differ, the first at 2, 1" ] || fail "a pixel is missed"
[ "$(tail -c 3 difference.ppm | od -An -tu1 | tr -s ' ')" = " 255 0 0" ] || fail "the difference is not shown in red"
"$compare" one.ppm missing.ppm difference.ppm > /dev/null
[ $? -eq 2 ] || fail "a missing picture is taken for one"

# A program that draws `other.ppm`, a kept `one.ppm`.
mkdir -p case/pictures
cp "$here/run.sh" case/
touch case/model.qms case/drawn.qms
echo 'shot drawn.ppm' > case/drawn.input
gzip -nc one.ppm > case/pictures/drawn.ppm.gz
printf '#!/bin/sh\ncp %s/other.ppm drawn.ppm\n' "$folder" > program
chmod +x program
unset QUELMARK_RENEW
case/run.sh program "$compare" case/drawn.qms "$folder/failed" > report.txt && fail "a wrong picture passes"
grep -q '^drawn.ppm: 1 of 6 pixels differ' report.txt || fail "the difference is not told"
cmp -s other.ppm failed/drawn.ppm || fail "what was drawn is not kept for a look"
[ -s failed/drawn.difference.ppm ] || fail "the difference is not written"
QUELMARK_RENEW=1 case/run.sh program "$compare" case/drawn.qms "$folder/failed" > /dev/null || fail "renewing fails"
case/run.sh program "$compare" case/drawn.qms "$folder/failed" || fail "a renewed picture does not pass"
[ ! -e failed/drawn.ppm ] || fail "a picture that passes stays among the failed"

# Every kept picture is one that a case takes.
for kept in "$here"/pictures/*.gz; do
    picture=$(basename "$kept" .gz)
    grep -qx "shot $picture" "$here"/*.input || [ -f "$here/${picture%.ppm}.qms" ] || fail "no case draws $picture"
done
