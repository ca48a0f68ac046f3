# A load that is killed at any moment loses nothing that was committed, and goes on where it was.
. "$(dirname "$0")/common.sh"

"$atlas" load "$data/countries.csv" >/dev/null || fail "load"
cp "$ATLAS_DB" "$dir/countries.atlas"
for moment in 0.03 0.12; do
  cp "$dir/countries.atlas" "$ATLAS_DB"
  for again in 1 2; do
    "$atlas" load --every 500 "$data/cities.csv" >/dev/null 2>&1 &
    loader=$!
    sleep $moment
    kill -9 $loader 2>/dev/null
    wait $loader 2>/dev/null
    expect 0 "sound:" "$atlas" check
  done
  expect 0 "" "$atlas" load "$data/cities.csv"
  expect 0 "sound: 25,250 objects" "$atlas" check
done

# Killed while the file is made.
for moment in 0.005 0.02; do
  rm -f "$ATLAS_DB"*
  "$atlas" load "$data/countries.csv" >/dev/null 2>&1 &
  loader=$!
  sleep $moment
  kill -9 $loader 2>/dev/null
  wait $loader 2>/dev/null
  expect 0 "" "$atlas" load "$data/countries.csv"
  expect 0 "sound: 250 objects" "$atlas" check
done
finish
