#!/usr/bin/env bash
# batch.sh QUELMARKC PROJECT: the example of batch work does what the page on the console program says, with the configuration given there.
set -u
program=$(realpath "$1")
project=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset HOME QUELMARKINPUT
cp "$project/docs/examples/batch.qms" "$project/samples/cube.suf" "$project/samples/house.suf" .
sed -n '/^## Batch work/,/^## Sessions/s/^    \([A-Za-z]* = \)/\1/p' "$project/docs/console.md" > Quelmark.ini
printf 'obj suf none { }\n' > none.suf
failures=0
say() {
    echo "$1"
    failures=1
}
MODELPATH=. "$program" cube.suf none.suf missing.suf house.suf | iconv -f CP932 -t UTF-8 | grep -v 'next token' > printed
houses=$(grep -c '^prim' house.suf)
printf 'cube.suf has 6 polygons\nnone.suf has no polygon \nmissing.suf cannot be read \nhouse.suf has %d polygons\n' "$houses" > expected
diff -u expected printed || say "other results"

# Back in the program, the models have the size, and nothing of one is in the other.
printf 'SourceFile = report.qms\n' > Quelmark.ini
printf 'var b[2]; ReadFile(GetArg(1)); SelectBox(b); print(Objects(), Attrs(), SelectPolygons(), (b[1].Position() - b[0].Position()).abs() > 996.0, (b[0] + b[1].Position()).Position().abs() < 4.0);' > report.qms
for model in cube house; do
    before=$(MODELPATH=. "$program" "$model.suf")
    after=$(MODELPATH=. "$program" "$model-sized.suf")
    [ "$after" = "${before% * *} TRUE TRUE" ] || say "$model: $before before, $after now"
done
exit $failures
