#!/bin/sh
# Checks what cpack has made: the texts by their validators, the archive and the package by installing
# and starting them in a fresh Debian root, where the package is then removed and purged. Needs root
# and the network, and debootstrap, desktop-file-utils, appstream and lintian; takes minutes.
#
#   packaging/check.sh BUILD-DIRECTORY [ROOT]
#
# ROOT: a folder to make the fresh root in and to keep; a later check goes on from there.
set -eu
here=$(cd "$(dirname "$0")" && pwd)

if [ "${TRAKKO_CHECK_INSIDE:-}" != yes ]; then
  # With mounts and processes of its own, which end with this script however it ends.
  TRAKKO_CHECK_INSIDE=yes exec unshare --mount --pid --fork --kill-child "$0" "$@"
fi

build=$(cd "$1" && pwd)
package=$(ls "$build"/packages/trakko_*.deb)
archive=$(ls "$build"/packages/trakko-*.tar.gz)
root=${2:-}
if [ -z "$root" ]; then
  root=$(mktemp -d)
  trap 'umount -R "$root/proc" "$root/dev" 2>/dev/null; rm -rf "$root"' EXIT
fi

say() { echo "== $*"; }
fail() {
  [ ! -e "$root/tmp/output" ] || cat "$root/tmp/output"
  echo "FAILED: $*" >&2
  exit 1
}
inside() {
  chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
    DEBIAN_FRONTEND=noninteractive "$@"
}
# The web engine's own sandbox needs what a chroot does not offer.
as_user() {
  chroot --userspec=runner:runner "$root" env -i PATH=/usr/bin:/bin HOME=/home/runner \
    QTWEBENGINE_DISABLE_SANDBOX=1 "$@"
}

validate() {
  say "desktop file, metainfo, package"
  desktop-file-validate "$here/com.morvel.Trakko.desktop"
  appstreamcli validate --no-net "$build/packaging/com.morvel.Trakko.metainfo.xml"
  lintian --allow-root --fail-on error,warning "$package"
}

# From the mirror that this machine uses.
make_root() {
  if [ ! -e "$root/home/runner" ]; then
    say "a fresh root"
    codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
    # shellcheck disable=SC2016 # for apt-get, not for the shell
    mirror=$(apt-get indextargets --format '$(REPO_URI)' "Codename: $codename" \
      "Component: main" | head -n 1)
    debootstrap --variant=minbase "$codename" "$root" "$mirror" >"$root.log" 2>&1 ||
      { tail "$root.log"; fail "no root"; }
    rm -f "$root.log"
    cp /etc/resolv.conf /etc/hosts "$root/etc/"
    mount_devices
    inside apt-get install -y -q --no-install-recommends xvfb xauth procps udev systemd umockdev \
      >"$root/tmp/output" 2>&1 || fail "apt-get install"
    inside useradd -m runner
  else
    mount_devices
  fi
}

mount_devices() {
  mount -t proc proc "$root/proc"
  mount -t tmpfs -o mode=755 none "$root/dev"
  mkdir -m 1777 "$root/dev/shm"
  mkdir "$root/dev/pts"
  mount -t devpts -o newinstance,ptmxmode=666 none "$root/dev/pts"
  ln -s pts/ptmx "$root/dev/ptmx"
  for device in "null 1 3" "zero 1 5" "random 1 8" "urandom 1 9"; do
    # shellcheck disable=SC2086 # name, major, minor
    set -- $device
    mknod -m 666 "$root/dev/$1" c "$2" "$3"
  done
}

# starts FOLDER COMMAND...: the program runs for some seconds, with its database in FOLDER.
starts() {
  folder=$root$1
  shift
  say "start: $*"
  as_user xvfb-run -a timeout 12 "$@" >"$root/tmp/output" 2>&1 &
  sleep 9
  inside pgrep -u runner -x Trakko >/dev/null || fail "does not run"
  wait $! || true
  [ -s "$folder/gpsData.db3" ] || fail "no database in $folder"
}

# lists COMMAND: the command line answers from the database that the window has made.
lists() {
  say "list: $*"
  as_user "$1" list --json >"$root/tmp/output" 2>&1 || fail "trakko-cli"
  [ "$(tr -d '\n' <"$root/tmp/output")" = "[]" ] || fail "not an empty list"
}

check_archive() {
  rm -rf "$root/home/runner/portable"
  as_user mkdir /home/runner/portable
  as_user tar xzf - -C /home/runner/portable --strip-components=1 <"$archive"
  starts /home/runner/portable /home/runner/portable/Trakko.app/Contents/Trakko
  lists /home/runner/portable/trakko-cli
  # Moved as a whole, it takes its database along.
  as_user mv /home/runner/portable /home/runner/moved
  before=$(stat -c %i "$root/home/runner/moved/gpsData.db3")
  starts /home/runner/moved /home/runner/moved/Trakko.app/Contents/Trakko
  [ "$before" = "$(stat -c %i "$root/home/runner/moved/gpsData.db3")" ] || fail "a new database"
  [ ! -e "$root/home/runner/portable" ] || fail "something in the old place"
  rm -rf "$root/home/runner/moved"
}

check_rule() {
  say "udev rule"
  cp "$here/testDevice.umockdev" "$root/tmp/"
  port=/sys/devices/usb1/1-2/1-2:1.0/ttyUSB0/tty/ttyUSB0
  inside umockdev-run -d /tmp/testDevice.umockdev -- udevadm test --action=add $port \
    >"$root/tmp/output" 2>&1 || fail "udevadm test"
  for wanted in ID_MM_PORT_IGNORE=1 DEVLINKS=.*/dev/cu.SLAB_USBtoUART TAGS=.*:uaccess: \
    "run: 'uaccess'"; do
    grep -q "$wanted" "$root/tmp/output" || fail "$wanted"
  done
}

check_package() {
  say "install"
  data=/home/runner/.local/share/trakko
  rm -rf "$root$data"
  cp "$package" "$root/tmp/trakko.deb"
  inside apt-get install -y -q --no-install-recommends /tmp/trakko.deb >"$root/tmp/output" 2>&1 ||
    fail "apt-get install"
  starts $data trakko
  lists trakko-cli
  for file in man/man1/trakko-cli.1.gz bash-completion/completions/trakko-cli; do
    [ -s "$root/usr/share/$file" ] || fail "no $file"
  done
  for name in Trakko.app png; do
    [ "$(readlink "$root$data/$name")" = "/usr/lib/trakko/$name" ] || fail "link $name"
  done
  check_rule

  echo "mine" >"$root$data/notes.txt"
  before=$(cd "$root$data" && cksum gpsData.db3 notes.txt)
  for action in remove purge; do
    say $action
    inside apt-get $action -y -q trakko >"$root/tmp/output" 2>&1 || fail "apt-get $action"
    [ "$before" = "$(cd "$root$data" && cksum gpsData.db3 notes.txt)" ] || fail "user data changed"
  done
  left=$(find "$root/usr" "$root/etc" "$root/var/lib/dpkg" -iname '*trakko*')
  [ -z "$left" ] || fail "left behind: $left"

  say "install again"
  inside apt-get install -y -q --no-install-recommends /tmp/trakko.deb >"$root/tmp/output" 2>&1 ||
    fail "apt-get install"
  starts $data trakko
  inside apt-get purge -y -q trakko >"$root/tmp/output" 2>&1 || fail "apt-get purge"
}

validate
make_root
check_package
# The libraries that the package asked for are there now; the archive needs the same.
check_archive
say "all is well"
