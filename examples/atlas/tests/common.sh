# common.sh - what the tests of atlas share. $1: the program, $2: the folder of the data.
set -u
atlas=$1
data=$2
here=$(cd "$(dirname "$0")" && pwd)
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
export ATLAS_DB="$dir/world.atlas"
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# expect CODE TEXT COMMAND...: the exit code, and a text that standard output ($dir/out) or error ($dir/err) holds.
expect() {
  wanted=$1
  text=$2
  shift 2
  "$@" >"$dir/out" 2>"$dir/err"
  code=$?
  [ "$code" = "$wanted" ] || fail "$*: exit code $code, not $wanted: $(cat "$dir/out" "$dir/err")"
  cat "$dir/out" "$dir/err" | grep -qF -- "$text" || fail "$*: no \"$text\" in: $(cat "$dir/out" "$dir/err")"
}

# refuse CODE TEXT COMMAND...: as expect, but the text is in a message of atlas on standard error.
refuse() {
  expect "$@"
  case $(head -n 1 "$dir/err") in
    "atlas: "*) ;;
    *) fail "$*: standard error begins otherwise: $(cat "$dir/err")" ;;
  esac
  grep -qF -- "$text" "$dir/err" || fail "$*: no \"$text\" on standard error"
}

finish() {
  [ "$failures" = 0 ]
  exit
}
