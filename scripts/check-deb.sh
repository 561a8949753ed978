#!/bin/bash
# Checks the Debian package on a clean Debian 12 system: makes a fresh root
# with debootstrap, installs the package there with apt-get (which fetches
# its dependencies from the Debian mirror), then, as a new user with no
# atlas home, starts `mervola` offscreen and checks that it prepares the
# atlas of all Italy and paints it, and that `mervola-cli --version` answers.
# Needs root, the network and several minutes; not part of the test suite.
#
#   bash scripts/check-deb.sh [mervola_VERSION_ARCH.deb]
#
# Without an argument the package is built first (build/, cpack). The
# debootstrap result is kept in $MERVOLA_DEB_ROOT.pristine (default
# /var/tmp/mervola-debroot.pristine) and copied afresh for every check.
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=${MERVOLA_DEB_ROOT:-/var/tmp/mervola-debroot}
MIRROR=${MERVOLA_DEB_MIRROR:-http://deb.debian.org/debian}
DEB=${1:-}

if [ -z "$DEB" ]; then
  bash scripts/setup.sh
  cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build build -j "$(nproc)" --target mervola mervola-cli
  (cd build && cpack -G DEB)
  DEB=$(ls -t build/mervola_*.deb | head -1)
fi
DEB=$(readlink -f "$DEB")
echo "Pacchetto: $DEB"
dpkg-deb -f "$DEB" Depends

command -v debootstrap >/dev/null || { apt-get update -qq && apt-get install -y -qq debootstrap; }
if [ ! -x "$ROOT.pristine/usr/bin/apt-get" ]; then
  rm -rf "$ROOT.pristine"
  debootstrap --variant=minbase bookworm "$ROOT.pristine" "$MIRROR"
fi
cleanup() {
  umount "$ROOT/proc" 2>/dev/null || true
  umount "$ROOT/dev" 2>/dev/null || true
}
trap cleanup EXIT
cleanup
rm -rf "$ROOT"
cp -a "$ROOT.pristine" "$ROOT"
mount -t proc proc "$ROOT/proc"
mount --bind /dev "$ROOT/dev"
cp /etc/resolv.conf "$ROOT/etc/resolv.conf"
cat > "$ROOT/etc/apt/sources.list" <<SOURCES
deb $MIRROR bookworm main
deb $MIRROR bookworm-updates main
deb http://deb.debian.org/debian-security bookworm-security main
SOURCES
cp "$DEB" "$ROOT/tmp/"
PKG=/tmp/$(basename "$DEB")

in_root() { chroot "$ROOT" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 "$@"; }

echo "== apt-get install $PKG"
in_root bash -c "apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $PKG >/tmp/apt.log 2>&1 || { tail -30 /tmp/apt.log; exit 1; }"
in_root dpkg -L mervola | grep -E '^/usr/(bin/mervola|share/applications|share/icons/.*svg|share/mervola/(mervola.html|sources/comuni_attributi.csv))'

echo "== mervola-cli --version"
in_root mervola-cli --version

echo "== mervola per un nuovo utente, senza atlante"
in_root useradd -m statistico
in_root su statistico -c "cd ~ && test ! -e ~/.local/share/mervola && \
  QT_QPA_PLATFORM=offscreen MERVOLA_NONINTERACTIVE=1 mervola --quit-after-start --screenshot /tmp/mervola-deb.png" \
  2> "$ROOT/tmp/mervola.err" || { cat "$ROOT/tmp/mervola.err"; exit 1; }
grep -E "Preparazione|Atlante creato|Mappa disegnata" "$ROOT/tmp/mervola.err"
COUNT=$(in_root su statistico -c "mervola-cli sql --folder ~/.local/share/mervola/italia 'SELECT COUNT(*) FROM comuni'" | tail -1)
echo "Comuni nell'atlante: $COUNT"
[ "$COUNT" = 7899 ]
grep -q "Mappa disegnata" "$ROOT/tmp/mervola.err"
cp "$ROOT/tmp/mervola-deb.png" build/mervola-deb.png 2>/dev/null || cp "$ROOT/tmp/mervola-deb.png" /tmp/mervola-deb.png
echo "OK: il pacchetto si installa su Debian 12 pulita e mervola disegna l'Italia intera (finestra in build/mervola-deb.png)"
