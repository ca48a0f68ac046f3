# What is loaded is there: counts, values of every kind, order of an index's language; loading twice changes nothing.
. "$(dirname "$0")/common.sh"

expect 0 "25,000 objects of class city" "$atlas" load "$data/countries.csv" "$data/cities.csv" "$data/founding_dates.csv"
expect 0 "sound: 25,442 objects, 76,884 index entries" "$atlas" check
expect 0 "all 25,000 rows are there already" "$atlas" load "$data/cities.csv"
expect 0 "class city               25,000 objects" "$atlas" stats
expect 0 "country      BD (1:0-23#1, 1)" "$atlas" show 263
expect 0 "population   22315474" "$atlas" show 251

# A null date, one before year 0, a null number, a text beyond Latin, bytes.
expect 0 "Afghanistan	افغانستان	Kabul	652230.000000	TRUE	IRN PAK TKM UZB TJK CHN	AF	AFG	004	Asia	1919-08-19" \
  "$atlas" dump --class country --limit 2
expect 0 "founded      {NULL}" "$atlas" show 1
japan=$("$atlas" dump --class country | grep '	JPN	')
case $japan in *-0660-02-11*) ;; *) fail "the founding of Japan: $japan" ;; esac
case $("$atlas" dump --class country | grep '	SJM	') in *'	{NULL}	FALSE	'*) ;; *) fail "an area that is null" ;; esac
expect 0 "what         independence from Portugal" "$atlas" show 25252

# fill makes the same objects from the same seed.
cp "$ATLAS_DB" "$dir/other.atlas"
expect 0 "the database has 28,000" "$atlas" fill 3000 --seed 7
expect 0 "the database has 28,000" "$atlas" --db "$dir/other.atlas" fill 3000 --seed 7 --every 700
"$atlas" dump --class city | cut -f 2,3,5- >"$dir/a"
"$atlas" --db "$dir/other.atlas" dump --class city | cut -f 2,3,5- >"$dir/b"
cmp -s "$dir/a" "$dir/b" || fail "fill is not deterministic"
[ "$(wc -l <"$dir/a")" = 28000 ] || fail "fill: count"
expect 0 "sound: 28,442 objects" "$atlas" check

# A line on a terminal tells how far it is; elsewhere standard error stays empty.
for command in "fill 3000" "load $data/founding_dates.csv --every 0" "export $dir/x.export"; do
  # shellcheck disable=SC2086
  "$atlas" --db "$dir/other.atlas" $command >"$dir/out" 2>"$dir/err" || fail "$command"
  [ ! -s "$dir/err" ] || fail "$command: on standard error, which is no terminal: $(cat "$dir/err")"
done
if script --version 2>/dev/null | grep -q util-linux; then
  script -qec "'$atlas' --db '$dir/other.atlas' fill 3000" /dev/null </dev/null >"$dir/out"
  grep -q 'city \[#* *\] [0-9,]* objects, [0-9,]* a second' "$dir/out" || fail "on a terminal: $(cat "$dir/out")"
fi

refuse 3 "was made in the language english, not swedish" "$atlas" load --language swedish "$data/cities.csv"
refuse 2 "is no language" "$atlas" load --language klingon "$data/cities.csv"
finish
