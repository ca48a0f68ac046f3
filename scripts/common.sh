# Shared by the scripts: where the project is, and installing what is missing. Sourced, not run.

cd "$(dirname "${BASH_SOURCE[0]}")/.."
jobs=$(nproc)

say() { printf '\n== %s\n' "$*"; }

# install_packages name...: installs those of the packages that are missing. Machines without apt-get are on their own.
install_packages() {
  local missing=() package
  command -v apt-get >/dev/null || return 0
  for package in "$@"; do
    [[ $(dpkg-query -W -f '${Status}' "$package" 2>/dev/null) == *"ok installed" ]] || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  say "installing ${missing[*]}"
  local root=()
  ((EUID == 0)) || root=(sudo)
  "${root[@]}" apt-get update -qq
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# packages_for preset: what building and testing that preset needs, one package a word.
packages_for() {
  local base="cmake ninja-build ccache python3 libcli11-dev"
  case $1 in
    release) echo "$base g++ libgtest-dev liblmdb-dev pkg-config unicode-data" ;;
    asan | tsan) echo "$base g++ libgtest-dev liblmdb-dev" ;;
    coverage) echo "$base g++ gcovr libgtest-dev liblmdb-dev pkg-config" ;;
    clang) echo "$base g++ clang libgtest-dev liblmdb-dev pkg-config" ;;
    fuzz) echo "$base g++ clang libclang-rt-dev libgtest-dev liblmdb-dev" ;;
    bench) echo "$base g++ libbenchmark-dev libicu-dev libfmt-dev liblmdb-dev libxxhash-dev libhowardhinnant-date-dev libsqlite3-dev" ;;
    x86) echo "$base g++-12 g++-12-multilib googletest" ;;
    s390x) echo "$base g++-s390x-linux-gnu qemu-user googletest" ;;
    win32) echo "$base g++-mingw-w64-i686-posix" ;;
    *) echo "unknown preset: $1" >&2 && return 1 ;;
  esac
}

# build_preset preset [target...]
build_preset() {
  local preset=$1 targets=()
  shift
  (($# == 0)) || targets=(--target "$@")
  cmake --preset "$preset" >"build/$preset.configure.log" 2>&1 || { cat "build/$preset.configure.log"; return 1; }
  local quiet=()
  [[ -t 1 ]] || quiet=(-- --quiet)
  cmake --build --preset "$preset" -j "$jobs" "${targets[@]}" "${quiet[@]}"
}

mkdir -p build
