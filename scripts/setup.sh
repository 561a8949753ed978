#!/bin/sh
# Installs the Debian packages Mervola needs to build, test and run.
# Idempotent: does nothing when every package is already installed.
set -e
PKGS="build-essential cmake ninja-build ccache lld pkg-config \
 qt6-base-dev qt6-svg-dev qt6-charts-dev qt6-datavisualization-dev qt6-declarative-dev \
 libqt6svg6 qt6-qpa-plugins libgl-dev \
 libgdal-dev gdal-bin libsqlite3-dev sqlite3 mdbtools-dev mdbtools zlib1g-dev \
 libbenchmark-dev xvfb xauth fonts-dejavu-core fonts-liberation2 \
 qt6-translations-l10n poppler-utils"
missing=""
for p in $PKGS; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
if [ -n "$missing" ]; then
  echo "Installazione pacchetti:$missing"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends $missing
fi
