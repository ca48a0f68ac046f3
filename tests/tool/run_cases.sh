#!/usr/bin/env bash
# run_cases.sh COMMAND...: runs cases.txt and the examples of the tool's own help against the tool that COMMAND starts
# (an emulator may stand before it). Prints every case that fails.
set -uo pipefail
tool=("$@")
kttm() { "${tool[@]}" "$@"; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
ran=0 failed=0
kttm --version >/dev/null || exit 1

# complain NAME WANTED GOT
complain() {
  failed=$((failed + 1))
  printf 'FAILED kttm %s\n  wanted: %q\n  got:    %q\n' "$1" "$2" "$3"
}

# run_case EXIT INPUT WANTED ARGUMENTS
run_case() {
  local wanted output code message
  printf -v wanted '%b' "$3"
  output=$(printf '%b' "$2" | eval "kttm $4" 2>"$scratch/stderr"; printf '%s' "/${PIPESTATUS[1]}")
  code=${output##*/} output=${output%/*} output=${output%$'\n'}
  message=$(<"$scratch/stderr")
  ran=$((ran + 1))
  if [[ $code != "$1" ]]; then
    complain "$4" "exit code $1" "exit code $code: $output $message"
  elif [[ $code != 0 ]]; then
    [[ -z $output && $message == "kttm: "*"$wanted"* && $message != *$'\n'* ]] || complain "$4" "$wanted" "$message"
  elif [[ $wanted == "~"* ]]; then
    [[ $'\n'$output == *"${wanted:1}"* ]] || complain "$4" "$wanted" "$output"
  else
    [[ $output == "$wanted" ]] || complain "$4" "$wanted" "$output"
  fi
}

# The examples of one command's help: "  command  # output", more lines of output under it.
run_examples() {
  local line command='' wanted='' shown=0
  while IFS= read -r line || [[ -n $command ]]; do
    if [[ -n $command && ! $line =~ ^\ {20,}#\  ]]; then
      local output
      output=$(eval "$command" 2>&1)
      ran=$((ran + 1)) shown=$((shown + 1))
      [[ -z $wanted || $output == "$wanted" ]] || complain "$command (in the help)" "$wanted" "$output"
      command='' wanted=''
    fi
    [[ $line =~ ^\ \ ((kttm|printf)\ .*) && $line != *FILE* ]] && command=${BASH_REMATCH[1]%%  # *}
    [[ $line =~ \ #\ (.*) ]] && wanted+=${wanted:+$'\n'}${BASH_REMATCH[1]}
  done < <(kttm "$@" --help | sed -n '/^Examples/,$p')
  ((shown >= 2)) || complain "$* --help" "two examples" "$shown"
}

while IFS='|' read -r code input wanted arguments; do
  [[ -z $code || $code == "#"* ]] || run_case "$code" "$input" "$wanted" "$arguments"
done <"$(dirname "$0")/cases.txt"
for command in types encode decode compare hash sort estimate convert order key; do run_examples "$command"; done
printf '%d cases, %d failed\n' "$ran" "$failed"
exit $((failed > 0))
