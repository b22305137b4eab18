#!/bin/sh
# Builds the application and starts it. With --demo an emulated watch is started with it, and both
# work on a database of their own. Further arguments go to the application.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build="$here/build/run"

demo=no
if [ "${1:-}" = --demo ]; then
  demo=yes
  shift
fi

"$here/tools/install-packages.sh" run
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" --target Trakko watchsim

# The web engine's sandbox does not work for root.
[ "$(id -u)" != 0 ] || export QTWEBENGINE_DISABLE_SANDBOX=1

# The database lies in the user's own folder, not in the build tree, so a cleaned build tree costs no
# data.
export TRAKKO_BUNDLE_DIR="$build"
if [ "$demo" = no ]; then
  exec sh "$here/packaging/trakko" "$@"
fi

export TRAKKO_DATA_NAME=trakko-demo
runtime=$(mktemp -d)
"$build/tools/watchsim" --link "$runtime/watch" >"$runtime/watchsim.log" &
watch=$!
trap 'kill "$watch" 2>/dev/null || true; rm -rf "$runtime"' EXIT INT TERM
tries=0
while [ ! -e "$runtime/watch" ] && [ "$tries" -lt 50 ]; do
  sleep 0.1
  tries=$((tries + 1))
done
TRAKKO_WATCH_PORT="$runtime/watch" sh "$here/packaging/trakko" "$@"
