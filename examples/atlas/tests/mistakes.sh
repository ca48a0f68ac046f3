# What cannot be read is refused with its place, and nothing changes.
. "$(dirname "$0")/common.sh"

refuse 3 "there is no database" "$atlas" check
refuse 2 "cannot be read" "$atlas" load "$dir/none.csv"
[ -e "$ATLAS_DB" ] && fail "a missing file left a database behind"
"$atlas" load "$data/countries.csv" >/dev/null || fail "load"
before=$("$atlas" dump | cksum)

# try LINE-AND-REASON < a file of cities, in one transaction and in several
try() {
  cat >"$dir/bad.csv"
  refuse 2 "bad.csv:$1" "$atlas" load --class "${2:-city}" "$dir/bad.csv"
  refuse 2 "bad.csv:$1" "$atlas" load --class "${2:-city}" --every 0 "$dir/bad.csv"
  refuse 2 "bad.csv:$1" "$atlas" load --class "${2:-city}" --every 1 "$dir/bad.csv"
}

head='name,country,population,latitude,longitude'
printf '%s\nA,CN,1,2,3\nB,CN,1x,2,3\n' "$head" | try '3: column population: KtDWord cannot read "1x"'
printf '%s\nA,CN,-1,2,3\n' "$head" | try '2: column population: KtDWord cannot read "-1"'
printf '%s\n%032001d,CN,1,2,3\n' "$head" 1 | try '2: column name: the text is longer than 32,000 bytes'
printf '%s\nA,CN,%0999d,2,3\n' "$head" 1 | sed 's/,0/,9/' | try '2: column population: KtDWord cannot read "9'
printf '%s\nA,CN,4294967296,2,3\n' "$head" | try '2: column population'
printf '%s\nA,XX,1,2,3\n' "$head" | try '2: column country: no country has the cca2 "XX"'
printf '%s\n"A\nB",CN,1,2,3\nC,CN,1,north,3\n' "$head" | try '4: column latitude: float cannot read "north"'
printf '%s\nA,CN,1,2\n' "$head" | try '2: the row has 4 columns'
printf '%s\n\377,CN,1,2,3\n' "$head" | try '2: column name: the text is not UTF-8'
printf '%s\n"A,CN,1,2,3\n' "$head" | try '2: a quote is not closed'
printf '%s\n"A"B,CN,1,2,3\n' "$head" | try '2: text stands behind a closed quote'
printf 'name,country,latitude,longitude\nA,CN,1,2\n' | try '1: there is no column "population"'
printf 'cca3,date,what\nCHN,1949-13-01,x\n' | try '2: column date: KtDate cannot read "1949-13-01"' founding
printf 'cca3,date,what\nCHN,yesterday,x\n' | try '2: column date' founding
printf 'a,b\n1,2\n' >"$dir/bad.csv"
refuse 2 'bad.csv:1: no class has these columns' "$atlas" load "$dir/bad.csv"
refuse 2 'there is no class "planet"' "$atlas" load --class planet "$data/cities.csv"
refuse 2 'there is no class "planet"' "$atlas" dump --class planet
refuse 2 'there is no object 251' "$atlas" show 251
for id in 1x '' '(0-4294967297#1)' '(65536-1#1)' '(0-1#1' '(0--1#1)' '(0-1#1)x' 99999999999999999999; do
  refuse 2 'is no object id' "$atlas" show "$id"
done
expect 0 'country (0-1#1)' "$atlas" show '(0-1#1)'
refuse 2 'N = nothing' "$atlas" fill nothing
for negative in 'fill -5' 'fill 5 --every -1' 'dump --limit -1' "load $data/cities.csv --every -1"; do
  # shellcheck disable=SC2086
  refuse 2 'is less than 0' "$atlas" $negative
done
for size in -1 -5MB; do refuse 2 "--map-size: \"$size\" is less than 0" "$atlas" --map-size $size check; done
for size in 0 100 65535 65TB 99999999999999999999; do
  refuse 2 'are no size of a database: 64KB to 64TB are' "$atlas" --db "$dir/x.atlas" --map-size $size load "$data/countries.csv"
done
for size in 16EB many 1.5GB ''; do refuse 2 '--map-size: ' "$atlas" --map-size "$size" check; done
[ -e "$dir/x.atlas" ] && fail "a refused size left a database behind"
expect 0 "sound: 250 objects" "$atlas" --map-size 64TB check
# Less address space than the map takes; programs under a sanitizer do not start with so little.
(ulimit -v 4000000 && { ! "$atlas" --help >/dev/null 2>&1 ||
  refuse 2 'no address space for a map of this size' "$atlas" --map-size 1TB check; } && finish) || fail "no address space"
if [ -c /dev/full ]; then
  "$atlas" dump >/dev/full 2>"$dir/err"
  [ $? = 5 ] || fail "an output that is full: $(cat "$dir/err")"
fi

# NaN is equal to every number: no index can place it.
printf 'class point 1\nfield x double index\n' >"$dir/nan.schema"
printf 'x\n1\nnan\n' >"$dir/nan.csv"
refuse 2 'nan.csv:3: column x' "$atlas" --db "$dir/nan.atlas" load --schema "$dir/nan.schema" "$dir/nan.csv"
printf 'class point 1\nfield x real index\n' >"$dir/bad.schema"
refuse 2 'line 2: there is no type "real"' "$atlas" --db "$dir/nan.atlas" load --schema "$dir/bad.schema" "$dir/nan.csv"
refuse 3 'has another schema' "$atlas" load --schema "$dir/nan.schema" "$dir/nan.csv"

# Names become names of trees.
printf 'class a.b 1\nfield c long\n' >"$dir/bad.schema"
refuse 2 'line 1: a name has 1 to 200 bytes and no dot' "$atlas" --db "$dir/x.atlas" load --schema "$dir/bad.schema" "$dir/nan.csv"
{ echo 'class a 1' && seq 300 | sed 's/.*/field f& long index/'; } >"$dir/bad.schema"
refuse 2 'line 252: a database has at most 250 indexes' "$atlas" --db "$dir/x.atlas" load --schema "$dir/bad.schema" "$dir/nan.csv"
[ -e "$dir/x.atlas" ] && fail "a refused schema left a database behind"

[ "$("$atlas" dump | cksum)" = "$before" ] || fail "a refused file changed the database"
expect 0 "sound: 250 objects" "$atlas" check
finish
