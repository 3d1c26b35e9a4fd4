# Shared by the scripts beside it: where things are, what they say, how they configure and build.
# shellcheck shell=bash disable=SC2034

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
program=$(basename "$0")
cache=${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/zuvyon

# Debian's i686 compiler with POSIX threads; the C++ standard library has no threads with the other one.
windows_triplet=i686-w64-mingw32
windows_compiler=$windows_triplet-g++-posix

# What the undefined-behaviour sanitizer finds comes with the call stack.
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}

say() { printf '%s: %s\n' "$program" "$*"; }

die() {
    printf '%s: %s\n' "$program" "$*" >&2
    exit 1
}

# A script defines usage(); bad options end with it and with status 2.
bad_usage() {
    printf '%s: %s\n' "$program" "$*" >&2
    usage >&2
    exit 2
}

jobs() { nproc 2>/dev/null || echo 2; }

# configure_and_build PRESET [CMAKE-OPTION…]
configure_and_build() {
    local preset=$1
    shift
    # A compiler cache is used where there is one.
    if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]] && command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    say "configuring and building $preset in build/$preset"
    (cd "$root" && cmake --preset "$preset" "$@" && cmake --build --preset "$preset" --parallel "$(jobs)")
}
