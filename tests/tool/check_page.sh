#!/usr/bin/env bash
# check_page.sh KTTM PAGE COUNT [SOURCE]: fails when the blocks of a page do not show COUNT commands of the tool, each on a
# line "$ ... kttm ...", with what they print under them; or when its C++ block is not the text of SOURCE.
set -uo pipefail
tool=$1 page=$2 count=$3 source=${4:-}
kttm() { "$tool" "$@"; }
checked=0 failed=0

# Of the command and the output that were read last.
check() {
  [[ -n $command ]] || return
  checked=$((checked + 1))
  diff <(printf '%s' "$shown") <(eval "$command" 2>&1) && return
  echo "$page does not show what '$command' prints" >&2
  failed=1
}

command='' shown=''
while IFS= read -r line; do
  if [[ $line == '$ '* || $line == '```'* ]]; then
    check
    command='' shown=''
    [[ $line =~ ^'$ '((printf .*\|\ )?kttm\ .*) ]] && command=${BASH_REMATCH[1]}
  elif [[ -n $command ]]; then
    shown+=$line$'\n'
  fi
done <"$page"
[[ $checked == "$count" ]] || { echo "$page shows $checked commands instead of $count" >&2; failed=1; }

if [[ -n $source ]] && ! diff <(awk '/^```/ { inside = 0 } inside { print } /^```cpp$/ { inside = 1 }' "$page") "$source"; then
  echo "$page does not show $source" >&2
  failed=1
fi
exit "$failed"
