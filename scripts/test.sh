#!/usr/bin/env bash
# Sets up the machine, then builds and runs every test twice: an optimised build with
# warnings as errors, and a build under AddressSanitizer and UndefinedBehaviorSanitizer;
# last, the two fuzzers (face conversion, the whole mesh path) share a bounded time.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"

echo "== build: warnings as errors"
# No debug information: CI only needs the optimiser's warnings and a fast build.
bash scripts/build.sh build/release -DORVANE_WERROR=ON -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -DNDEBUG"
echo "== tests: release"
ctest --test-dir build/release --output-on-failure --parallel "$(nproc)" --timeout 300

echo "== install: a host built against the installed package alone"
# The release build installed into an empty prefix; examples/host finds it through
# find_package(Orvane) only, and draws a trimmed surface into a picture.
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cmake --install build/release --prefix "$stage/prefix" > /dev/null
PKG_CONFIG_PATH="$stage/prefix/lib/pkgconfig" pkg-config --libs orvane
cmake -S examples/host -B "$stage/host" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS=-Werror \
    -DCMAKE_PREFIX_PATH="$stage/prefix" > /dev/null
cmake --build "$stage/host"
"$stage/host/orvane_host" "$stage/host.png"

echo "== build: sanitizers"
bash scripts/build.sh build/sanitize -DCMAKE_BUILD_TYPE=Debug -DORVANE_WERROR=ON -DORVANE_SANITIZE=ON -DORVANE_BENCH=OFF
echo "== tests: sanitizers"
ctest --test-dir build/sanitize --output-on-failure --parallel "$(nproc)" --timeout 600

echo "== fuzz: face conversion and the mesh path, 30 s in all"
bash scripts/fuzz.sh 30
