#!/bin/sh
# query.sh ATLAS DATA: queries as a user gives them: their answers, how they explain themselves, and what is refused.
set -u
atlas=$1 data=$2
expected=$(cd "$(dirname "$0")" && pwd)/query.expected
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
ATLAS_DB=$scratch/world.atlas
export ATLAS_DB
failed=0

complain() {
  failed=$((failed + 1))
  printf 'FAILED %s\n' "$1"
}

# refused EXIT PART-OF-THE-MESSAGE ARGUMENTS...
refused() {
  wanted=$1 part=$2
  shift 2
  "$atlas" query "$@" >"$scratch/out" 2>"$scratch/err"
  code=$?
  [ $code -eq "$wanted" ] || complain "$*: exit code $code, not $wanted"
  [ ! -s "$scratch/out" ] || complain "$*: wrote to standard output"
  grep -qF -- "$part" "$scratch/err" || complain "$*: $(cat "$scratch/err")"
}

# counts NUMBER ARGUMENTS...
counts() {
  wanted=$1
  shift
  got=$("$atlas" query --count "$@" 2>&1)
  [ "$got" = "$wanted" ] || complain "$*: $got, not $wanted"
}

"$atlas" load "$data/countries.csv" "$data/cities.csv" "$data/founding_dates.csv" >"$scratch/log" 2>&1 || {
  cat "$scratch/log"
  exit 1
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

refused 2 'column 13: expected a value, not the end' 'population >'
refused 2 'no class has a field "nothing"' 'nothing = 1'
refused 2 'class city has no field "founded"; it has name, country' 'founded is null' --class city
refused 2 'column 14: "population": KtDWord cannot read "many"' 'population > many'
refused 2 'several classes have name; choose one by --class: country, city' 'name = "Paris"'
refused 2 'no class has all of the fields population, founded' 'population > 1 and founded is null'
refused 2 'there is no class "town"; there are country, city, founding' 'name = "Paris"' --class town
refused 2 'there is no country with this cca2' 'country = "QQ"' --class city
refused 2 'has no field "size"' 'population > 1' --fields name,size

# Plans and rows word for word; shown by "query.sh ATLAS DATA show".
{
  "$atlas" query 'country = "FR" and population > 200000' --explain --limit 5 --fields name,country,population
  "$atlas" query 'name like "Saint-*" and population between 50000 and 90000' --explain --fields name,country,population
  "$atlas" query 'founded < 1500-01-01 and area_km2 > 1000' --explain --fields name,native_name,founded,area_km2
  "$atlas" query 'population > 9000000 or latitude > 69.6' --explain --limit 5
  "$atlas" query 'date >= 1990-01-01 and country = "DEU"' --explain
} >"$scratch/explained" 2>&1
if [ "${3-}" = show ]; then cat "$scratch/explained"; else
  diff -u "$expected" "$scratch/explained" || complain 'the explained queries'
fi

"$atlas" plot --predicates 60 --svg "$scratch/plot.svg" >"$scratch/plot" 2>&1 || complain 'plot'
[ "$(grep -c 'mean error' "$scratch/plot")" -eq 1 ] || complain 'plot: no table of errors'
[ "$(grep -c '<title>' "$scratch/plot.svg")" -eq 120 ] || complain 'plot: not every predicate stands in both panels'
"$atlas" plot --predicates 60 | cmp -s - "$scratch/plot" || complain 'plot: two runs differ'

exit $((failed > 0))
