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
