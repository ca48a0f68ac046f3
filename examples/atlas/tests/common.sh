# common.sh - what the tests of atlas share. $1: the program, $2: the folder of the data.
atlas=$1
data=$2
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
export ATLAS_DB="$dir/world.atlas"
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# expect CODE TEXT COMMAND...: the exit code, and a text that standard output or error holds.
expect() {
  wanted=$1
  text=$2
  shift 2
  output=$("$@" 2>&1)
  code=$?
  [ "$code" = "$wanted" ] || fail "$*: exit code $code, not $wanted: $output"
  case $output in
    *"$text"*) ;;
    *) fail "$*: no \"$text\" in: $output" ;;
  esac
}

finish() {
  [ "$failures" = 0 ]
  exit
}
