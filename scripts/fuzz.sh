#!/usr/bin/env bash
# Builds the fuzz targets with clang (libFuzzer, AddressSanitizer, UndefinedBehaviorSanitizer)
# and runs each for a bounded time. Usage: scripts/fuzz.sh [SECONDS] (default 60).
# Findings (crash files) land in build/fuzz/findings; the corpus grows in build/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
build=build/fuzz
mkdir -p build
flags="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -g -O1"

cmake -S fuzz -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" > "$build.cmake.log" 2>&1 || {
    cat "$build.cmake.log"
    exit 1
}
cmake --build "$build" --target face_conversion_fuzzer -j"$(nproc)"

mkdir -p "$build/corpus/face_conversion" "$build/findings"
export ASAN_OPTIONS="detect_leaks=0:abort_on_error=1"
"$build/face_conversion_fuzzer" "$build/corpus/face_conversion" -max_total_time="$seconds" -timeout=20 \
    -rss_limit_mb=4096 -artifact_prefix="$build/findings/" -print_final_stats=1
