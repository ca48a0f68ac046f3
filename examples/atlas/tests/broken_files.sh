# Files that are no database, cut short or full: a message and an exit code, and what was committed stays.
. "$(dirname "$0")/common.sh"

printf 'not a database' >"$dir/text.atlas"
cp "$dir/text.atlas" "$dir/text.copy"
: >"$dir/empty.atlas"
for command in check "load $data/cities.csv" "fill 5" "show 1"; do
  # shellcheck disable=SC2086
  refuse 3 "is no atlas database" "$atlas" --db "$dir/text.atlas" $command
done
cmp -s "$dir/text.atlas" "$dir/text.copy" || fail "a foreign file was changed"
[ -e "$dir/text.atlas-lock" ] && fail "a lock beside a foreign file"
refuse 3 "there is no database" "$atlas" --db "$dir/empty.atlas" check

# A map too small for a file: what was committed before is there, and more room lets the load go on.
"$atlas" load "$data/countries.csv" >/dev/null || fail "load"
refuse 4 "more room by --map-size" "$atlas" --map-size 2MB load --every 1000 "$data/cities.csv"
expect 0 "sound:" "$atlas" check
expect 0 "rows were there already, going on" "$atlas" load "$data/cities.csv"
expect 0 "sound: 25,250 objects" "$atlas" check
refuse 4 "more room by --map-size" "$atlas" --map-size 1MB fill 100000 --every 0
expect 0 "sound: 25,250 objects" "$atlas" check

# The disk is full: as large a file as the shell allows.
(ulimit -f 400 && refuse 4 "the disk is full" "$atlas" --db "$dir/full.atlas" load "$data/countries.csv" "$data/cities.csv"
  finish) || fail "a full disk"
expect 0 "sound: 250 objects" "$atlas" --db "$dir/full.atlas" check

# Cut anywhere: the size tells, before anything is read, and what is left of the file stays as it is.
size=$(wc -c <"$ATLAS_DB")
for length in 1 4095 4096 8192 $((size / 2)) $((size - 4096)) $((size - 1)); do
  head -c "$length" "$ATLAS_DB" >"$dir/cut.atlas"
  before=$(cksum <"$dir/cut.atlas")
  for command in check "fill 5" "load $data/cities.csv" "import $here/../../../tests/data/atlas_small/small.export" \
    "export $dir/cut.export"; do
    # shellcheck disable=SC2086
    "$atlas" --db "$dir/cut.atlas" $command >"$dir/out" 2>&1
    code=$?
    { [ $code = 3 ] || [ $code = 5 ]; } || fail "cut to $length, $command: exit code $code: $(tail -n 1 "$dir/out")"
    grep -q '^atlas: ' "$dir/out" || fail "cut to $length, $command: no message"
    [ "$(cksum <"$dir/cut.atlas")" = "$before" ] || fail "cut to $length, $command: the file has changed"
  done
done
for left in "$dir"/cut.export*; do [ ! -e "$left" ] || fail "an export of a cut database left $left"; done

# Cut while it is read: the reader waits in the middle, because nobody takes what it writes, and then finds its pages gone.
mkfifo "$dir/pipe"
"$atlas" dump >"$dir/pipe" 2>"$dir/err" &
reader=$!
exec 3<"$dir/pipe"
head -c 100 <&3 >/dev/null
cp "$ATLAS_DB" "$dir/whole.atlas"
dd if=/dev/null of="$ATLAS_DB" bs=4096 seek=3 2>/dev/null
cat <&3 >/dev/null
exec 3<&-
wait $reader
code=$?
[ $code = 5 ] || fail "cut while it is read: exit code $code"
grep -q '^atlas: the database cannot be read: its file is truncated' "$dir/err" || fail "cut while it is read: $(cat "$dir/err")"

# bent SED-SCRIPT: the database with some bytes replaced by as many others.
bent() {
  LC_ALL=C sed "$1" "$dir/whole.atlas" >"$dir/bent.atlas"
  cmp -s "$dir/whole.atlas" "$dir/bent.atlas" && fail "$1 bends nothing"
}
bent 's/Hirosaki/Hixosaki/g'
refuse 1 "the database is damaged in 2 places" "$atlas" --db "$dir/bent.atlas" check
grep -q '^damaged: city [0-9]* is not in the index city.name$' "$dir/out" || fail "a bent name: $(cat "$dir/out")"
for page in 0 1; do
  { head -c $((page * 4096 + 41)) "$dir/whole.atlas" && printf '\0' && tail -c +$((page * 4096 + 43)) "$dir/whole.atlas"; } >"$dir/bent.atlas"
  refuse 5 "do not tell the page size" "$atlas" --db "$dir/bent.atlas" check
done
bent 's/atlas 2/atlas 1/g'
for command in check "load $data/cities.csv" "fill 5" "show 1" "export $dir/x.export"; do
  # shellcheck disable=SC2086
  refuse 3 'has the format "atlas 1"; this program knows atlas 2' "$atlas" --db "$dir/bent.atlas" $command
done
finish
