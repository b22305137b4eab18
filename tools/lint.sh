#!/bin/sh
# Checks formatting (clang-format) and code (clang-tidy) of all sources. Takes a build directory
# that holds compile_commands.json; build/debug by default.
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/debug}
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
git ls-files '*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy -quiet -p "$build"
