#!/bin/bash
# Builds Mervola, builds the atlas home of all Italy from the sources in
# data/sources and starts the application.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j "$(nproc)"

HOME_DIR="${MERVOLA_HOME:-$PWD/build/atlas-home}"
if [ ! -f "$HOME_DIR/dati/mervola.sqlite" ]; then
  ./build/mervola-cli build-atlas --sources "$PWD/data/sources" --home "$HOME_DIR"
fi
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  exec xvfb-run -a -s "-screen 0 1600x1200x24" ./build/mervola --home "$HOME_DIR" "$@"
fi
exec ./build/mervola --home "$HOME_DIR" "$@"
