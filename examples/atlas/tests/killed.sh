# A load that is killed at any moment loses nothing that was committed, and goes on where it was.
. "$(dirname "$0")/common.sh"

# Cities that are committed.
cities() { "$atlas" stats | sed -n 's/^class city *\([0-9,]*\) objects*$/\1/p' | tr -d ,; }

# killed_at LEAST: a load that is killed when so many cities can be seen; the check must find no fewer.
killed_at() {
  "$atlas" load --every 10 "$data/cities.csv" >/dev/null 2>&1 &
  loader=$!
  seen=0
  while [ "$seen" -lt "$1" ] && kill -0 $loader 2>/dev/null; do seen=$(cities); done
  kill -9 $loader 2>/dev/null || fail "the load was over before it could be killed"
  wait $loader 2>/dev/null
  expect 0 "sound:" "$atlas" check
  found=$(sed -n 's/^sound: \([0-9,]*\) objects.*/\1/p' "$dir/out" | tr -d ,)
  [ "$found" -ge $((seen + 250)) ] || fail "of $seen cities and 250 countries $found objects are left"
  [ "$found" -lt 25250 ] || fail "the load was killed too late"
}

"$atlas" load "$data/countries.csv" >/dev/null || fail "load"
killed_at 50
killed_at 500
killed_at 1500
expect 0 "rows were there already, going on" "$atlas" load "$data/cities.csv"
expect 0 "sound: 25,250 objects" "$atlas" check

# Killed while the file is made, and while its first objects are committed one by one.
landed=0
for moment in 0.001 0.003 0.005 0.01 0.02 0.03; do
  rm -f "$ATLAS_DB"*
  "$atlas" load --every 1 "$data/countries.csv" >/dev/null 2>&1 &
  loader=$!
  sleep $moment
  kill -9 $loader 2>/dev/null
  wait $loader 2>/dev/null
  [ $? = 137 ] && landed=$((landed + 1))
  expect 0 "" "$atlas" load "$data/countries.csv"
  expect 0 "sound: 250 objects" "$atlas" check
done
[ $landed -ge 2 ] || fail "only $landed of the early kills came before the end"
finish
