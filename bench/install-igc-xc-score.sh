#!/bin/sh
# Installs the reference scorer of bench/optimize_bench (igc-xc-score, an
# exact open-source paragliding scorer, from the npm registry) into a folder
# outside the source tree. Never run by the build: run it once by hand before
# the benchmark.
#
#   bench/install-igc-xc-score.sh [FOLDER]
#
# FOLDER defaults to $VELANTIS_IGC_XC_SCORE_DIR, else
# $HOME/.cache/velantis/igc-xc-score; the benchmark looks in the same place.
set -eu
version=1.8.0
folder=${1:-${VELANTIS_IGC_XC_SCORE_DIR:-$HOME/.cache/velantis/igc-xc-score}}
command -v node >/dev/null || { echo "node is missing (Debian: apt-get install nodejs npm)" >&2; exit 1; }
mkdir -p "$folder"
cd "$folder"
[ -f package.json ] || npm init -y >/dev/null
npm install --no-audit --no-fund "igc-xc-score@$version"
echo "igc-xc-score $version installed in $folder"
