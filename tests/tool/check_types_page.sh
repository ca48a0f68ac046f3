#!/usr/bin/env bash
# check_types_page.sh KTTM PAGE: fails when what the page shows is not what `kttm types` and `kttm types --matrix` print.
# Each block of the page follows a line "$ kttm ..." within it.
set -euo pipefail
tool=$1 page=$2

failed=0
for arguments in "types" "types --matrix"; do
  shown=$(awk -v command="\$ kttm $arguments" '$0 == "```" { inside = 0 } inside { print } $0 == command { inside = 1 }' "$page")
  # shellcheck disable=SC2086
  if ! diff <(printf '%s\n' "$shown") <("$tool" $arguments); then
    echo "$page does not show what 'kttm $arguments' prints" >&2
    failed=1
  fi
done
exit "$failed"
