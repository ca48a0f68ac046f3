# Export and import: what comes back is what went, and what is damaged, or has no room, changes nothing.
. "$(dirname "$0")/common.sh"
small=$here/../../../tests/data/atlas_small
cd "$dir" || exit 1

# --- there and back ---------------------------------------------------------------------------------------------------
"$atlas" --db world load "$data/countries.csv" "$data/cities.csv" "$data/founding_dates.csv" >out || fail "load"
expect 0 '25,442 objects' "$atlas" --db world export world.export
expect 0 '25,442 objects' "$atlas" --db again import world.export
expect 0 '25,442 objects' "$atlas" --db again export again.export
cmp world.export again.export || fail "the second export differs"
expect 0 'sound: 25,442 objects' "$atlas" --db again check
"$atlas" --db world dump >world.txt
"$atlas" --db again dump >again.txt
cmp world.txt again.txt || fail "the objects differ"
expect 0 'the database has 50,000' "$atlas" --db again load "$data/cities.csv" --every 0
expect 0 'sound: 50,442 objects' "$atlas" --db again check

# The committed export is that of its CSV files, and a database made of it is sound.
"$atlas" --db small load --schema "$small/small.schema" "$small/countries.csv" "$small/cities.csv" \
  "$small/founding_dates.csv" >out || fail "load of the small files"
expect 0 '33 objects' "$atlas" --db small export small.export
cmp small.export "$small/small.export" || fail "the small export differs"

# --- killed -------------------------------------------------------------------------------------------------------------
# An export that is killed leaves the file that it has begun, and the old one as it was; the next one clears up.
cp small.export kept.export
tries=0
until [ -s kept.export.unfinished ] || [ $tries = 100 ]; do
  tries=$((tries + 1))
  "$atlas" --db world export kept.export >out 2>&1 &
  exporter=$!
  until [ -s kept.export.unfinished ] || ! kill -0 $exporter 2>/dev/null; do :; done
  kill -9 $exporter 2>/dev/null
  wait $exporter 2>/dev/null
  cmp -s kept.export world.export && cp small.export kept.export
done
[ -s kept.export.unfinished ] || fail "no export could be killed"
cmp -s kept.export small.export || fail "a killed export changed the old one"
expect 0 '33 objects' "$atlas" --db small export kept.export
cmp kept.export small.export || fail "an export over what was left differs"
[ ! -e kept.export.unfinished ] || fail "what a killed export left is still there"

# Another export that is under way keeps its file.
if command -v flock >/dev/null; then
  echo begun >kept.export.unfinished
  refuse 5 'cannot write "kept.export": another export does' flock kept.export.unfinished "$atlas" --db small export kept.export
  [ "$(cat kept.export.unfinished)" = begun ] || fail "a refused export wrote into another one's file"
  cmp kept.export small.export || fail "a refused export changed the old one"
fi

# --- refused ------------------------------------------------------------------------------------------------------------
# refuse_all CODE TEXT COMMAND...: in one line, and no database x and no x.export is left.
refuse_all() {
  refuse "$@"
  [ "$(wc -l <"$dir/err")" = 1 ] || fail "$*: says $(cat "$dir/err")"
  for left in x x-lock x.export*; do [ ! -e "$left" ] || fail "$*: leaves $left"; done
}

cp small before
refuse_all 3 'has another schema' "$atlas" --db small import world.export
refuse_all 3 'has objects already' "$atlas" --db small import small.export
cmp small before || fail "a refused import changes the database"

size=$(wc -c <small.export)
for length in 0 7 8 12 500 1200 2000 3000 $((size - 5)) $((size - 1)); do
  head -c "$length" small.export >short.export
  refuse_all 2 'short.export: ' "$atlas" --db x import short.export
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
  refuse_all 2 'flipped.export: ' "$atlas" --db x import flipped.export
done
flip 3 >magic.export
refuse_all 2 'magic.export: this is no export of atlas' "$atlas" --db x import magic.export
flip 9 >newer.export
refuse_all 2 'has version 85, and this atlas reads version 1' "$atlas" --db x import newer.export
cat small.export small.export >twice.export
refuse_all 2 'more behind the end' "$atlas" --db x import twice.export
refuse_all 2 'cannot be read' "$atlas" --db x import missing.export
corpus=$here/../../../fuzz/corpus/portable_stream
refuse_all 2 'highest_number: object 281474976710655: it cannot have its id again' "$atlas" --db x import "$corpus/highest_number"

refuse_all 4 'full; give it more room by --map-size' "$atlas" --db x --map-size 64KB import world.export
refuse_all 5 'cannot write "missing/x.export": No such file or directory' "$atlas" --db small export missing/x.export
mkdir folder
refuse_all 5 'cannot write "folder": it is there, and no ordinary file' "$atlas" --db small export folder
mkdir x.unfinished
refuse 5 'cannot write "x.unfinished": it is there, and no ordinary file' "$atlas" --db small export x
rmdir x.unfinished
(ulimit -f 8 && refuse_all 4 'cannot write "x.export"' "$atlas" --db world export x.export && finish) ||
  fail "an export without room"
refuse_all 3 'there is no database' "$atlas" --db missing export x.export
finish
