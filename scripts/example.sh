#!/usr/bin/env bash
# Installs what is missing, builds Velantis and runs it on the bundled
# example data: the datum list, then a few points shifted between datums.
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
