#!/bin/sh
# Checks formatting (clang-format) of all sources and code (clang-tidy) of all, or of those in the
# folders named behind the build directory. That one holds compile_commands.json; build/debug by
# default.
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/debug}
[ $# -eq 0 ] || shift
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
for folder in "${@:-.}"; do git ls-files "$folder" | grep '\.cpp$' || true; done | xargs -P "$(nproc)" -n 4 clang-tidy -quiet -p "$build"
