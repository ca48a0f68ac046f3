#!/bin/sh
# Export and import: what comes back is what went, and what is damaged, or has no room, changes nothing.
# usage: export_import.sh ATLAS DATA_FOLDER
set -u
atlas=$1
data=$2
small=$(cd "$(dirname "$0")/../../../tests/data/atlas_small" && pwd)
scratch=$(mktemp -d)
trap 'chmod -R u+w "$scratch"; rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failed=0

complain() {
  failed=$((failed + 1))
  printf 'FAILED %s\n' "$*"
}

# refuse CODE TEXT ARGUMENTS...: exits with the code, says the text in one line, and leaves no database x and no x.export.
refuse() {
  code=$1 text=$2
  shift 2
  "$atlas" "$@" >out 2>err
  got=$?
  [ "$got" = "$code" ] || complain "$*: exit code $got, not $code: $(cat err)"
  grep -q "^atlas: .*$text" err && [ "$(wc -l <err)" = 1 ] || complain "$*: says \"$(cat err)\", not \"$text\""
  for left in x x-lock x.export*; do [ ! -e "$left" ] || complain "$*: leaves $left"; done
}

# --- there and back ---------------------------------------------------------------------------------------------------
"$atlas" --db world load "$data/countries.csv" "$data/cities.csv" "$data/founding_dates.csv" >out || complain "load"
"$atlas" --db world export world.export >out || complain "export"
grep -q '25,442 objects' out || complain "export says $(cat out)"
"$atlas" --db again import world.export >out || complain "import"
"$atlas" --db again export again.export >out || complain "export again"
cmp world.export again.export || complain "the second export differs"
"$atlas" --db again check >out || complain "check: $(cat out)"
"$atlas" --db world dump >world.txt
"$atlas" --db again dump >again.txt
cmp world.txt again.txt || complain "the objects differ"
"$atlas" --db again load "$data/cities.csv" --every 0 >out || complain "load behind an import: $(cat out)"
"$atlas" --db again check >out || complain "check behind an import: $(cat out)"

# The committed export is that of its CSV files, and a database made of it is sound.
"$atlas" --db small load --schema "$small/small.schema" "$small/countries.csv" "$small/cities.csv" \
  "$small/founding_dates.csv" >out || complain "load of the small files"
"$atlas" --db small export small.export >out
cmp small.export "$small/small.export" || complain "the small export differs"

# --- refused ------------------------------------------------------------------------------------------------------------
cp small before
refuse 3 'has another schema' --db small import world.export
refuse 3 'has objects already' --db small import small.export
cmp small before || complain "a refused import changes the database"

size=$(wc -c <small.export)
for length in 0 7 8 12 500 1200 2000 3000 $((size - 5)) $((size - 1)); do
  head -c "$length" small.export >short.export
  refuse 2 'short.export: ' --db x import short.export
done

# flip OFFSET: small.export with the byte at the offset changed.
flip() {
  head -c "$1" small.export
  printf '\125'
  tail -c +$(($1 + 2)) small.export
}
for offset in 10 15 1100 1140 1200 2000 2500 3500 $((size - 7)) $((size - 2)); do
  flip "$offset" >flipped.export
  cmp -s flipped.export small.export && continue
  refuse 2 'flipped.export: ' --db x import flipped.export
done
flip 3 >magic.export
refuse 2 'magic.export: this is no export of atlas' --db x import magic.export
flip 9 >newer.export
refuse 2 'has version 85, and this atlas reads version 1' --db x import newer.export
cat small.export small.export >twice.export
refuse 2 'more behind the end' --db x import twice.export
refuse 2 'cannot be read' --db x import missing.export

refuse 4 'full; give it more room by --map-size' --db x --map-size 64KB import world.export
refuse 5 'cannot write .*No such file or directory' --db small export missing/x.export
(ulimit -f 8 && "$atlas" --db world export x.export) >out 2>err
[ $? = 4 ] || complain "an export without room: $(cat err)"
ls x.export* >/dev/null 2>&1 && complain "an export without room leaves a file"
refuse 3 'there is no database' --db missing export x.export

[ "$failed" = 0 ]
