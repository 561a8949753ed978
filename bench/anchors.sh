#!/usr/bin/env bash
# The anchor benchmark: the same 1600 x 1200 PNG choropleth of all 7,899
# municipalities (the 2022 population, field _02010, in five quantile classes,
# regions on top) drawn as a whole process by mervola-cli and, when their
# Debian packages are installed, by Mapnik (python3-mapnik) and QGIS
# (python3-qgis). The runs take turns, ROUNDS times; the script prints the
# median wall time, the peak memory, the ratios round by round, the share of
# pixels that differ between the pictures, then the start-up and atlas build
# figures and the output of every bench/bench_* program of the build.
#
#   bash bench/anchors.sh            # build folder ./build, 7 rounds
#   MERVOLA_BUILD=DIR ROUNDS=N MERVOLA_BENCH_HOME=ATLAS bash bench/anchors.sh
#
# MERVOLA_BEFORE=DIR adds the mervola-cli of another build folder (an earlier
# version, "prima") to the turns, so that two versions are compared under the
# same load.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
build=${MERVOLA_BUILD:-$root/build}
cli=$build/mervola-cli
app=$build/mervola
rounds=${ROUNDS:-7}
python=/usr/bin/python3  # Debian's, where python3-mapnik and python3-qgis install
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-/tmp/runtime-$(id -u)}
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"

[ -x "$cli" ] || { echo "manca $cli: compilare prima (cmake --build build)" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

home=${MERVOLA_BENCH_HOME:-$build/atlas-home}
if [ ! -f "$home/italia/comuni.shp" ]; then
  "$cli" build-atlas --sources "$root/data/sources" --home "$home" >/dev/null
fi

# --- The anchor map: a project for Mervola and a description for the others.
"$cli" classify --home "$home" --theme comuni --field _02010 --method quantile --classes 5 >"$work/classes.json"
"$python" - "$home" "$work" <<'EOF'
import json, sys
home, work = sys.argv[1], sys.argv[2]
classes = json.load(open(work + "/classes.json"))["classes"]
extent = None
for line in open(home + "/supporto/default.rlx", encoding="utf-8"):
    if line.startswith("EXTENT="):
        extent = [float(v) for v in line.strip()[7:].split("^") if v]
        break
black = 33554432  # 0x02000000: black
def section(name, symbol, kind="0", campo="0^0^0^0^", items="0"):
    return "\n".join(["[%s]" % name, "JOIN=-1^-1^-1^-1^-1^-1^", "STRUCTJOIN=*^",
                      "WORKSPACE=%s/italia/" % home, "BASE=%s.shp^%s^" % (name, name), "SIMBOLO=" + symbol,
                      "LABEL=*", "TIPOCLASSIFICAZIONE=" + kind, "CAMPO=" + campo,
                      "CLASSIFICAZIONE=" + items, "OUTLINE=1", "VISIBILE=1"])
items = "".join("0^%s^1^%d^%s^%d^1^|" % (c["text"], c["color"], c["label"], black) for c in classes)
project = ["[RLX]", "DBFCOMMONT=^", "EXTENT=" + "".join("%d^" % v for v in extent),
           section("regioni", "2^0^1^0^%d^" % black),
           section("comuni", "2^0^0^16776960^%d^" % black, "QUANTILE", "_02010^5^0^0^", items)]
open(work + "/anchor.rlx", "w", encoding="utf-8").write("\n".join(project) + "\n")
anchor = {"srs": "+proj=utm +zone=32 +datum=WGS84 +units=m +no_defs", "width": 1600, "height": 1200,
        "extent": extent, "field": "_02010", "outline": "#000000", "outline_width": 0.6,
        "classes": [{"upper": c["upper"], "rgb": c["rgb"], "text": c["text"]} for c in classes],
        "shapefiles": {n: "%s/italia/%s.shp" % (home, n) for n in ("comuni", "regioni")}}
json.dump(anchor, open(work + "/anchor.json", "w"), indent=1)
EOF

names=(mervola)
declare -A cmd
cmd[mervola]="$cli render --home $home --project $work/anchor.rlx --size 1600x1200 --out $work/mervola.png"
if [ -n "${MERVOLA_BEFORE:-}" ]; then
  names+=(prima)
  cmd[prima]="$MERVOLA_BEFORE/mervola-cli render --home $home --project $work/anchor.rlx --size 1600x1200 --out $work/prima.png"
fi
if "$python" -c "import mapnik" 2>/dev/null; then
  names+=(mapnik)
  cmd[mapnik]="$python $here/anchor_mapnik.py $work/anchor.json $work/mapnik.png"
else
  echo "Mapnik non installato (python3-mapnik): confronto saltato"
fi
if "$python" -c "import qgis.core" 2>/dev/null; then
  names+=(qgis)
  cmd[qgis]="$python $here/anchor_qgis.py $work/anchor.json $work/qgis.png"
else
  echo "QGIS non installato (python3-qgis): confronto saltato"
fi

# One timed run: wall time in microseconds and peak resident memory in KiB.
measure() {
  local name=$1
  shift
  local t0 t1
  t0=$(date +%s%N)
  /usr/bin/time -f %M -o "$work/$name.lastmem" "$@" >/dev/null 2>"$work/$name.err" ||
    { echo "$name fallito:" >&2; cat "$work/$name.err" >&2; exit 1; }
  t1=$(date +%s%N)
  echo $(((t1 - t0) / 1000)) >>"$work/$name.times"
  tail -n 1 "$work/$name.lastmem" >>"$work/$name.mem"
}

for n in "${names[@]}"; do ${cmd[$n]} >/dev/null 2>&1; done  # warm the file cache
for ((r = 0; r < rounds; r++)); do
  for n in "${names[@]}"; do measure "$n" ${cmd[$n]}; done
done

# --- Start-up to the first painted map, and the atlas build.
startup_rounds=3
if [ -x "$app" ]; then
  cp -r "$home" "$work/home-startup"
  for ((r = 0; r < startup_rounds; r++)); do
    MERVOLA_NONINTERACTIVE=1 measure startup "$app" --home "$work/home-startup" --quit-after-start
  done
fi
for ((r = 0; r < startup_rounds; r++)); do
  rm -rf "$work/home-build"
  measure build-atlas "$cli" build-atlas --sources "$root/data/sources" --home "$work/home-build"
done

"$python" - "$work" "${names[@]}" <<'EOF'
import statistics, sys
work, names = sys.argv[1], sys.argv[2:]
def load(name, what):
    try:
        return [int(v) for v in open("%s/%s.%s" % (work, name, what)).read().split()]
    except FileNotFoundError:
        return []
print("\nMappa di riferimento, processo intero (%d turni)" % len(load("mervola", "times")))
print("%-10s %12s %12s" % ("", "mediana s", "picco MiB"))
for n in names + ["startup", "build-atlas"]:
    t, m = load(n, "times"), load(n, "mem")
    if t:
        print("%-10s %12.3f %12.1f" % (n, statistics.median(t) / 1e6, max(m) / 1024))
for mine in [n for n in names if n in ("mervola", "prima")]:
    base = load(mine, "times")
    for other in [n for n in names if n in ("mapnik", "qgis")]:
        ratios = [a / b for a, b in zip(base, load(other, "times"))]
        print("%s/%s per turno: %s; mediana %.2f" % (mine, other, " ".join("%.2f" % r for r in ratios),
                                                   statistics.median(ratios)))
EOF

# --- The pictures, pixel by pixel (a difference above 10% of the range counts).
if command -v compare >/dev/null; then
  for other in "${names[@]:1}"; do
    diff=$(compare -metric AE -fuzz 10% "$work/mervola.png" "$work/$other.png" null: 2>&1 || true)
    "$python" -c "import sys; d=float(sys.argv[1]); print('pixel diversi mervola/%s: %d (%.2f%%)' % (sys.argv[2], d, 100*d/(1600*1200)))" "$diff" "$other"
  done
  [ -n "${MERVOLA_BENCH_KEEP:-}" ] && cp "$work"/*.png "$MERVOLA_BENCH_KEEP"/
fi

# --- The project's own benchmarks.
for b in "$build"/bench/bench_*; do
  [ -f "$b" ] && [ -x "$b" ] || continue
  echo
  echo "== $(basename "$b")"
  MERVOLA_BENCH_HOME=$home "$b" 2>&1 | grep -v -E '^(\*\*\*|Run on|CPU Caches|  L[123]|Load Average|---)' || true
done
