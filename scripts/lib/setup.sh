# shellcheck shell=bash disable=SC2034
# Sourced by the scripts: goes to the top of the tree and offers what they share. Everything said here goes to standard
# error, so that a script's own output stays clean.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

say() { printf '== %s\n' "$*" >&2; }
fail() {
  printf 'error: %s\n' "$*" >&2
  exit 2
}

# What a build may need: a Debian package, and how to see whether it (or the same thing from elsewhere) is there.
is_there() {
  case $1 in
    g++) command -v c++ || command -v g++ ;;
    cmake | clang | ccache | python3 | gdb) command -v "$1" ;;
    ninja-build) command -v ninja ;;
    clang-format-14) command -v clang-format-14 ;;
    clang-tidy-14) command -v clang-tidy-14 ;;
    libicu-dev) has_header unicode/ucnv.h ;;
    libssl-dev) has_header openssl/evp.h ;;
    libgmp-dev) has_header gmp.h ;;
    libcli11-dev) has_header CLI/CLI.hpp ;;
    libgtest-dev) has_header gtest/gtest.h ;;
    libbenchmark-dev) has_header benchmark/benchmark.h ;;
    libfmt-dev) has_header fmt/core.h ;;
    *) dpkg-query -W -f '${Status}' "$1" | grep -q "ok installed" ;;
  esac >/dev/null 2>&1
}
has_header() { printf '#include <%s>\n' "$1" | "$(command -v c++ || command -v g++)" -x c++ -std=c++20 -E - >/dev/null 2>&1; }

build_needs=(g++ cmake ninja-build libicu-dev libssl-dev libgmp-dev)

# need PACKAGE...: installs by apt those that are missing.
need() {
  local package missing=()
  for package in "$@"; do is_there "$package" || missing+=("$package"); done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "missing: ${missing[*]}"
  command -v apt-get >/dev/null || fail "this machine has no apt: please install the equivalents of ${missing[*]} by hand"
  local root=()
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || fail "neither root nor sudo: please run, as root, apt-get install ${missing[*]}"
    root=(sudo)
    [ -t 0 ] || sudo -n true 2>/dev/null ||
      fail "sudo wants a password and there is no terminal: please run, as root, apt-get install ${missing[*]}"
  fi
  say "installing them by apt-get"
  apt_get() { "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o Dpkg::Use-Pty=0 "$@" </dev/null >&2; }
  apt_get update || say "apt-get update failed; trying with the lists that are here"
  apt_get install -y --no-install-recommends "${missing[@]}" ||
    fail "apt-get could not install ${missing[*]}: is there a network, and is this Debian 12 or newer?"
  for package in "${missing[@]}"; do is_there "$package" || fail "$package was installed but is not to be found"; done
}

# build PRESET [TARGET...]: configures and builds; says nothing but a line unless something fails.
build() {
  local preset=$1 log=build/$1.log target targets=()
  shift
  for target in "$@"; do targets+=(--target "$target"); done
  say "building ($preset); the log is $log"
  mkdir -p build
  if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}; fi
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}"; } >"$log" 2>&1 </dev/null; then
    grep -E -A8 'error|Error|FAILED' "$log" | head -40 >&2 || true
    tail -n 15 "$log" >&2
    fail "the build failed"
  fi
}

# run_tests PRESET [CTEST-OPTION...]: every test of a build, two or more at a time.
run_tests() {
  local preset=$1
  shift
  ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error "$@" </dev/null
}
