#!/usr/bin/env bash
# Installs what is missing, builds Velantis and runs it on the bundled
# example data: the datum list, points shifted between datums, the data files
# and a calibrated map.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j "$(nproc)" --target velantis
velantis=build/cli/velantis

echo "== velantis datums (first lines)"
"$velantis" datums | sed -n 1,12p
echo "== European 1950 -> WGS 84 (three-parameter shift)"
"$velantis" coord --from "geo:European 1950" --to "geo:WGS 84" < data/examples/ed50-points.txt
echo "== DHDN -> WGS 84 (through the BeTA2007 grid when proj-data installed it)"
"$velantis" datums | grep -i dhdn || true
"$velantis" coord --from "geo:DHDN90" --to "geo:WGS 84" < data/examples/dhdn-points.txt
echo "== WGS 84 -> UTM, MGRS and back"
"$velantis" coord --from "geo:WGS 84" --to "utm:WGS 84" < data/examples/ed50-points.txt
"$velantis" coord --from "geo:WGS 84" --to "mgrs:WGS 84" 41.4 2.17
echo "31 T 430959.059 4583866.910" | "$velantis" coord --from "utm:WGS 84" --to "geo:WGS 84"
echo "== OSGB36 -> British National Grid (Ordnance Survey's worked example: 651409.903 313177.270)"
"$velantis" coord --from "geo:Ord Srvy Grt Britn" --to bng 52.657570306 1.717921583
echo "== the notations"
for n in 0 1 2 3; do "$velantis" format --notation "$n" 41.391666667 -2.175; done
"$velantis" parse "41 23.5'N"
echo "== a waypoint file and a track file"
"$velantis" info data/examples/vallferrera.wpt
"$velantis" info --json data/examples/vallferrera.trk
echo "== the track written in European 1950, degrees and minutes (first lines)"
out="$(mktemp -d)"
"$velantis" convert data/examples/vallferrera.trk "$out/vallferrera-ed50.trk" --datum "European 1950" --notation 1
# The file is in the configured legacy code page: shown here in UTF-8.
sed -n 1,14p "$out/vallferrera-ed50.trk" | iconv -f WINDOWS-1252 -t UTF-8
rm -rf "$out"
echo "== an image map calibrated in UTM on European 1950: pixel -> WGS 84, and Pica d'Estats -> pixel"
"$velantis" calib data/examples/vallferrera.imp --pixel 2000 1500
"$velantis" calib data/examples/vallferrera.imp --coord 42.66639 1.39750
printf '0 0\n4000 3000\n' | "$velantis" calib data/examples/vallferrera.imp --pixel --datum "European 1950"
echo "== NMEA sentences of a receiver, fix by fix (JSON)"
"$velantis" nmea --json data/examples/vallferrera.nmea
