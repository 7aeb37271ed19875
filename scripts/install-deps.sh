#!/usr/bin/env bash
# Installs the Debian packages Velantis builds and tests with, when missing.
# Idempotent: a machine that has everything is left alone.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config clang libclang-rt-14-dev
  zlib1g-dev libminizip-dev libfreetype-dev libpugixml-dev libgeographiclib-dev
  libssl-dev libbz2-dev libusb-1.0-0-dev libcli11-dev bzip2
  libgtest-dev libgmock-dev libbenchmark-dev lua5.4
  libproj-dev proj-bin proj-data gdal-bin gpsd gpsd-clients gpsbabel geographiclib-tools
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
echo "installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
