#!/usr/bin/env bash
# Kills every write: runs each operation that writes the user's files once
# per write step, killed (SIGKILL) at that step, lets the next start recover,
# and checks that every file is as before the operation or as after it.
# Prints one line per operation: the kill points tried and the files lost or
# half-written (must be 0).
#
#   bash scripts/kill-writes.sh [BUILD_DIR]      (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
cmake --build "$build" -j2 --target cli_test_kill_writes mervola-cli mervola >/dev/null

table=$(mktemp)
trap 'rm -f "$table"' EXIT
status=0
QT_QPA_PLATFORM=offscreen MERVOLA_KILL_ALL=1 MERVOLA_KILL_TABLE="$table" \
    "$build/cli_test_kill_writes" >"$build/kill-writes.log" 2>&1 || status=$?

printf '%-24s %12s %28s\n' "operazione" "punti" "file persi o scritti a metà"
printf '%-24s %12s %28s\n' "------------------------" "------------" "----------------------------"
points=0
while IFS=$'\t' read -r name tried bad mixed; do
    printf '%-24s %12s %28s\n' "$name" "$tried" "$bad"
    points=$((points + tried))
done <"$table"
printf '%-24s %12s\n' "totale" "$points"
if [ "$status" -ne 0 ]; then
    echo "FALLITO: vedere $build/kill-writes.log"
fi
exit "$status"
