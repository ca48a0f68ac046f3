#!/usr/bin/env bash
# The main job on real data; scripts/demo calls it with KTTM_BIN, the folder of the built programs.
set -euo pipefail
cd "$(dirname "$0")"

echo
echo "== columns of values by type id: stored, loaded back, compared, hashed, sorted, printed"
"$KTTM_BIN/columns" data/countries.csv data/cities.csv

echo
echo "== the same by hand"
show() {
  printf '$ kttm'
  printf ' %s' "$@"
  printf '\n'
  "$KTTM_BIN/kttm" "$@"
}
show encode long 1 -2 70000 --format big
show decode long 00000001fffffffe00011170 --format big
show compare KtString "Ängelholm" "Zürich" --language swedish
show compare KtString "Ängelholm" "Zürich" --language english
printf 'Zagreb\nÅrhus\nAarau\nÆbeltoft\nÄlmhult\n' | "$KTTM_BIN/kttm" sort KtString --language danish

[[ -x $KTTM_BIN/atlas ]] || exit 0
echo
echo "== a database of the world: queries by type id, planned by EvalAndBound"
export ATLAS_DB=${TMPDIR:-/tmp}/kttm_demo_$$.atlas
trap 'rm -f "$ATLAS_DB" "$ATLAS_DB-lock"' EXIT
"$KTTM_BIN/atlas" load data/countries.csv data/cities.csv data/founding_dates.csv
ask() {
  printf "\n$ atlas query '%s' --explain\n" "$1"
  "$KTTM_BIN/atlas" query "$1" --explain --limit 4 "${@:2}"
}
ask 'country = "FR" and population > 200000' --fields name,population
ask 'name like "Saint-*" and population between 50000 and 90000' --fields name,country,population
ask 'founded < 1500-01-01 and area_km2 > 1000' --fields name,native_name,founded
ask 'population > 9000000 or latitude > 69.6' --fields name,country,population,latitude

echo
echo "== 300 predicates made from the data: estimated against actual selectivity"
svg=${TMPDIR:-/tmp}/kttm_selectivity.svg
"$KTTM_BIN/atlas" plot --svg "$svg"
echo "the same as a picture: $svg"
