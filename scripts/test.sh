#!/bin/bash
# Builds Mervola and runs every test: first a normal build, then the same
# suite under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
JOBS=$(nproc)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j "$JOBS"
(cd build && ctest --output-on-failure -j "$JOBS")

if [ "${MERVOLA_SKIP_SANITIZE:-0}" != "1" ]; then
  cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DMERVOLA_SANITIZE=ON -DMERVOLA_BENCH=OFF >/dev/null
  cmake --build build-asan -j "$JOBS"
  (cd build-asan && ctest --output-on-failure -j "$JOBS")
fi
