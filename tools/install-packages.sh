#!/bin/sh
# Installs the Debian packages that building and running need (and, with "test", testing), as far as
# they are missing. Uses sudo where it is not run as root.
set -eu

run_packages="build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-webengine-dev libqt6webenginecore6-bin qt6-qpa-plugins libqt6svg6
  qt6-translations-l10n libgl1-mesa-dev libvulkan-dev
  libsqlite3-dev libudev-dev libpugixml-dev libjs-leaflet fonts-noto-cjk fonts-dejavu-core"
test_packages="libbenchmark-dev libumockdev-dev umockdev sqlite3 gpsbabel xvfb xauth
  libxml2-utils desktop-file-utils appstream locales"

wanted=$run_packages
[ "${1:-run}" = test ] && wanted="$wanted $test_packages"

missing=""
for package in $wanted; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
    missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
[ "$(id -u)" = 0 ] || as_root=sudo
echo "Installing:$missing" >&2
$as_root apt-get update -q >&2
# shellcheck disable=SC2086 # one word per package
$as_root env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y -q --no-install-recommends $missing >&2
