#!/bin/sh
# Installs the Debian packages that building and running need, as far as they are missing, and with
# them those for "test" (testing), "lint" (clang-format and clang-tidy as well), "fuzz" or "faults".
# Uses sudo where it is not run as root.
set -eu

run_packages="build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-webengine-dev libqt6webenginecore6-bin qt6-qpa-plugins libqt6svg6
  qt6-translations-l10n libgl1-mesa-dev libvulkan-dev
  libsqlite3-dev libudev-dev libpugixml-dev libjs-leaflet libjs-dygraphs
  fonts-noto-cjk fonts-dejavu-core"
test_packages="libbenchmark-dev libumockdev-dev umockdev sqlite3 gpsbabel xvfb xauth
  libxml2-utils desktop-file-utils appstream locales man-db"

case ${1:-run} in
  run) wanted=$run_packages ;;
  test) wanted="$run_packages $test_packages" ;;
  lint) wanted="$run_packages $test_packages clang-format clang-tidy git" ;;
  fuzz) wanted="$run_packages $test_packages clang libclang-rt-14-dev" ;;
  faults) wanted="$run_packages $test_packages strace xdotool openbox" ;;
  *) echo "usage: $0 [run|test|lint|fuzz|faults]" >&2; exit 2 ;;
esac

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
