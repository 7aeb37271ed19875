#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
# One build for the tests, under AddressSanitizer and UBSan, so that every
# run checks memory and undefined behaviour; the benchmarks belong to the
# plain build of scripts/example.sh and are not built here.
cmake -S . -B build-test -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELANTIS_SANITIZE=ON -DVELANTIS_BENCH=OFF
cmake --build build-test -j "$(nproc)"
export UBSAN_OPTIONS="print_stacktrace=1"
ctest --test-dir build-test --output-on-failure -j "$(nproc)"

# The fuzz targets: built with clang and run a few seconds each on their
# seed corpus (long runs are done by hand; see the README). Only the targets
# are built: the rest of the tree is not linked with the fuzzer's runtime.
fuzz_target() {
  case "$1" in keyfile) echo fuzz_key_file ;; notation | nmea | script) echo "fuzz_$1" ;; *) echo "fuzz_$1_file" ;; esac
}
targets=()
for corpus in fuzz/corpus/*/; do targets+=("$(fuzz_target "$(basename "$corpus")")"); done
cmake -S . -B build-fuzz -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DVELANTIS_FUZZ=ON -DVELANTIS_TESTS=OFF -DVELANTIS_BENCH=OFF
cmake --build build-fuzz -j "$(nproc)" --target "${targets[@]}"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
for corpus in fuzz/corpus/*/; do
  name="$(basename "$corpus")"
  target="$(fuzz_target "$name")"
  cp -r "$corpus" "$scratch/$name"
  echo "== $target"
  build-fuzz/fuzz/"$target" -max_total_time=5 -rss_limit_mb=2048 -artifact_prefix="$scratch/" "$scratch/$name" 2>&1 | tail -n 1
done
