# Queries as a user gives them: their answers, how they explain themselves, and what is refused.
# A third argument "show" prints the explained queries instead of comparing them with query.expected.
. "$(dirname "$0")/common.sh"

"$atlas" load "$data/countries.csv" "$data/cities.csv" "$data/founding_dates.csv" >/dev/null || fail "load"

# counts NUMBER ARGUMENTS...
counts() {
  number=$1
  shift
  expect 0 "" "$atlas" query --count "$@"
  [ "$(cat "$dir/out")" = "$number" ] || fail "$*: $(cat "$dir/out"), not $number"
}

# The numbers come from the CSV files.
cities() { awk -F, "NR > 1 && $1" "$data/cities.csv" | wc -l | tr -d ' '; }
counts "$(cities '$2 == "FR"')" 'country = "FR"' --class city
counts "$(cities '$2 == "FR" && $3 > 100000')" 'country = "FR" and population > 100000'
counts "$(cities '$3 >= 100000 && $3 <= 200000')" 'population between 100000 and 200000'
counts "$(cities '$3 + 0 >= 5000000 || $2 == "IS"')" 'not population < 5000000 or country = "IS"'
counts "$(cities '$3 > 1000000 && $4 < 0')" 'population > 1000000 and latitude < 0'
counts "$(cities '$1 ~ /^San /')" 'name like "San *"' --class city
counts "$(grep -c ',$' "$data/countries.csv")" 'founded is null'
counts 3 'population > 1000000' --limit 3

# refuse_query TEXT ARGUMENTS...: nothing is printed but the message.
refuse_query() {
  part=$1
  shift
  refuse 2 "$part" "$atlas" query "$@"
  [ ! -s "$dir/out" ] || fail "$*: wrote to standard output"
}
refuse_query 'column 13: expected a value, not the end' 'population >'
refuse_query 'no class has a field "nothing"' 'nothing = 1'
refuse_query 'class city has no field "founded"; it has name, country' 'founded is null' --class city
refuse_query 'column 14: "population": KtDWord cannot read "many"' 'population > many'
refuse_query 'several classes have name; choose one by --class: country, city' 'name = "Paris"'
refuse_query 'no class has all of the fields population, founded' 'population > 1 and founded is null'
refuse_query 'there is no class "town"; there are country, city, founding' 'name = "Paris"' --class town
refuse_query 'there is no country with this cca2' 'country = "QQ"' --class city
refuse_query 'has no field "size"' 'population > 1' --fields name,size

# Plans and rows word for word.
explained() {
  "$atlas" query "$@" --explain >>"$dir/explained" 2>&1 || fail "$*: $(tail -n 1 "$dir/explained")"
}
explained 'country = "FR" and population > 200000' --limit 5 --fields name,country,population
explained 'name like "Saint-*" and population between 50000 and 90000' --fields name,country,population
explained 'founded < 1500-01-01 and area_km2 > 1000' --fields name,native_name,founded,area_km2
explained 'population > 9000000 or latitude > 69.6' --limit 5
explained 'date >= 1990-01-01 and country = "DEU"'
if [ "${3-}" = show ]; then cat "$dir/explained"; else
  diff -u "$here/query.expected" "$dir/explained" || fail 'the explained queries'
fi

# The project's README shows what atlas prints.
readme=$here/../../../README.md
sed -n '/^\$ atlas /,/^```/{/^\$ /d;/^```/d;p;}' "$readme" >"$dir/shown"
eval "$(sed -n 's/^\$ atlas /"$atlas" /p' "$readme")" >"$dir/answers" 2>&1
[ -s "$dir/shown" ] || fail 'README.md shows nothing of atlas'
diff -u "$dir/shown" "$dir/answers" || fail 'README.md shows something else than atlas prints'

expect 0 'mean error' "$atlas" plot --predicates 60 --svg "$dir/plot.svg"
cp "$dir/out" "$dir/plot"
[ "$(grep -c '<title>' "$dir/plot.svg")" -eq 120 ] || fail 'plot: not every predicate stands in both panels'
"$atlas" plot --predicates 60 | cmp -s - "$dir/plot" || fail 'plot: two runs differ'
finish
