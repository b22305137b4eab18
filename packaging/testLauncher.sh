#!/bin/sh
# Starts a stand-in for the program through the launcher given as the argument, in the situations that
# a user's folder can be in.
set -eu
launcher=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
data="$work/data home"

fail() { echo "FAILED: $*" >&2; exit 1; }

# bundle NAME: an installed bundle that prints the path it was started by and its arguments.
bundle() {
  mkdir -p "$work/$1/Trakko.app/Contents" "$work/$1/png"
  printf '#!/bin/sh\necho "$0|$*|$RESOURCE_NAME$TRAKKO_STARTUP_PROBLEM"\n' >"$work/$1/Trakko.app/Contents/Trakko"
  chmod +x "$work/$1/Trakko.app/Contents/Trakko"
}
# run_with BUNDLE [VARIABLE=VALUE...]
run_with() {
  bundle=$1
  shift
  env -i PATH="$PATH" HOME="$work/home" XDG_DATA_HOME="$data" TRAKKO_BUNDLE_DIR="$work/$bundle" "$@" \
    sh "$launcher" --flag 'two words'
}
expect() { [ "$1" = "$2" ] || fail "$3: '$1' instead of '$2'"; }

bundle one
bundle two
started="$data/trakko/Trakko.app/Contents/Trakko|--flag two words|com.morvel.Trakko"

expect "$(run_with one)" "$started" "first start"
expect "$(stat -c %a "$data/trakko")" 700 "rights of the folder"
expect "$(readlink "$data/trakko/png")" "$work/one/png" "link to the images"

touch "$data/trakko/gpsData.db3"
run_with two >/dev/null
expect "$(readlink "$data/trakko/Trakko.app")" "$work/two/Trakko.app" "link to a moved installation"
rm -r "$work/two"
expect "$(run_with one)" "$started" "link that leads nowhere"
expect "$(find "$data/trakko" | wc -l)" 4 "files in the folder"

rm "$data/trakko/Trakko.app"
cp -r "$work/one/Trakko.app" "$data/trakko/"
run_with one >/dev/null
[ ! -L "$data/trakko/Trakko.app" ] || fail "the user's own bundle was replaced"

expect "$(run_with one XDG_DATA_HOME=relative TRAKKO_DATA_NAME=demo)" \
  "$work/home/.local/share/demo/Trakko.app/Contents/Trakko|--flag two words|com.morvel.Trakko" \
  "relative XDG_DATA_HOME, other name"

touch "$work/file"
for tool in sh dirname readlink mkdir; do  # and none that shows boxes
  mkdir -p "$work/bin" && ln -s "$(command -v $tool)" "$work/bin/"
done
! run_with one XDG_DATA_HOME="$work/file" PATH="$work/bin" >"$work/shown" 2>"$work/message" ||
  fail "started without a folder"
grep -q "$work/file/trakko" "$work/message" || fail "the message does not name the folder"
grep -q "$work/one/.*$work/file/trakko" "$work/shown" || fail "the program does not show the message"
! run_with missing 2>"$work/message" || fail "started without a bundle"
[ -s "$work/message" ] || fail "no message about the missing bundle"
