#!/usr/bin/env bash
# run.sh cmake compiler build-dir scratch-dir: installs the build, moves the installation, and uses it as other projects
# do: through the CMake package, through pkg-config, and header by header.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cmake=$1 compiler=$2 build=$3 scratch=$4
expected='2024-02-29 bc 4 ISO 8859-2'

fail() {
  echo "$*" >&2
  exit 1
}

expect_output() {
  local output
  output=$("$@") || fail "$*: exit status $?"
  [[ $output == "$expected" ]] || fail "$*: printed '$output' instead of '$expected'"
}

command -v pkg-config >/dev/null || fail "pkg-config is missing (Debian package pkg-config)"
rm -rf "$scratch"
mkdir -p "$scratch"
"$cmake" --install "$build" --prefix "$scratch/first" >"$scratch/install.log"
# Nothing may know where it was installed, or built, first.
mv "$scratch/first" "$scratch/moved"
prefix=$scratch/moved
if found=$(grep -rlI -e "$scratch/first" -e "$build" "$prefix"); then fail "paths of the build in: $found"; fi

library_dir=$(dirname "$(find "$prefix" -name libkttm.so)")
for library in kttm ktin ktbs; do
  dynamic=$(readelf -d "$library_dir/lib$library.so")
  [[ $dynamic =~ SONAME[^[]*\[(lib$library\.so\.[0-9]+)\] ]] || fail "$library has no versioned soname: $dynamic"
  [[ $(readlink "$library_dir/lib$library.so") == "${BASH_REMATCH[1]}" ]] || fail "$library: no link to its soname"
  [[ -e $library_dir/${BASH_REMATCH[1]} ]] || fail "$library: ${BASH_REMATCH[1]} is not installed"
  [[ ! $dynamic =~ (RUNPATH|RPATH)[^[]*\[(/[^]]*)\] ]] || fail "$library has a fixed path: ${BASH_REMATCH[2]}"
done

"$cmake" -S "$here" -B "$scratch/cmake" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$prefix" \
  >"$scratch/configure.log" || fail "find_package: $(cat "$scratch/configure.log")"
"$cmake" --build "$scratch/cmake" >"$scratch/build.log" || fail "$(cat "$scratch/build.log")"
expect_output "$scratch/cmake/consumer"

export PKG_CONFIG_PATH=$library_dir/pkgconfig
read -ra flags < <(pkg-config --cflags --libs kttm)
"$compiler" -std=c++20 "$here/consumer.cpp" -o "$scratch/by_pkg_config" "${flags[@]}" -Wl,-rpath,"$library_dir"
expect_output "$scratch/by_pkg_config"

# A library below, by itself: its own file is all that it takes, and it needs none of the others.
for call in 'ktbs "ktbs.h" LongNullSizeGet(1)==4' 'ktin "ktin.h" KtCodeSet::Get(2).Code()==2'; do
  read -r library header condition <<<"$call"
  read -ra flags < <(pkg-config --cflags --libs "$library")
  printf '#include %s\nint main() { return %s ? 0 : 1; }\n' "$header" "$condition" |
    "$compiler" -std=c++20 -x c++ - -o "$scratch/$library" "${flags[@]}" -Wl,-rpath,"$library_dir"
  "$scratch/$library" || fail "$library by pkg-config: exit status $?"
done

# Each page that a header points to.
while read -r page; do
  find "$prefix" -path "*/$page" | grep -q . || fail "headers point to $page, which is not installed"
done < <(grep -ohE 'docs/[A-Za-z/-]+(\.md)?' "$prefix"/include/*.h | sort -u)

read -ra flags < <(pkg-config --cflags kttm)
for header in "$prefix"/include/*.h; do
  name=$(basename "$header")
  echo "#include <$name>" | "$compiler" -std=c++20 -Wall -Wextra -Werror -fsyntax-only "${flags[@]}" -x c++ - ||
    fail "$name does not compile alone"
done
"$prefix/bin/kttm" --version >/dev/null || fail "the installed tool does not run"
