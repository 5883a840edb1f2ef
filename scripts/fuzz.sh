#!/usr/bin/env bash
# Builds the fuzz targets with clang (libFuzzer, AddressSanitizer, UndefinedBehaviorSanitizer)
# and runs them for a bounded time in all. Usage: scripts/fuzz.sh [SECONDS] [TARGET...]
# (default 60 s, shared evenly by the targets; targets: face_conversion, model).
# Findings (crash files) land in build/fuzz/findings; the corpora grow in build/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(face_conversion model)
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
for target in "${targets[@]}"; do
    cmake --build "$build" --target "${target}_fuzzer" -j"$(nproc)"
done

mkdir -p "$build/findings"
export ASAN_OPTIONS="detect_leaks=0:abort_on_error=1"
each=$(( seconds / ${#targets[@]} ))
[ "$each" -gt 0 ] || each=1
for target in "${targets[@]}"; do
    echo "== $target: $each s"
    mkdir -p "$build/corpus/$target"
    extra=()
    options="$ASAN_OPTIONS"
    # The model fuzzer's bytes are a list of edits: a long list from the start. It leaves SIGSEGV
    # to OpenCASCADE, whose readers fault on some damaged files (see ModelFuzzer.cpp).
    if [ "$target" = model ]; then
        extra=(-max_len=512 -len_control=0)
        options="$options:handle_segv=0:allow_user_segv_handler=1"
    fi
    ASAN_OPTIONS="$options" "$build/${target}_fuzzer" "$build/corpus/$target" -max_total_time="$each" -timeout=20 \
        -rss_limit_mb=4096 -artifact_prefix="$build/findings/${target}-" -print_final_stats=1 "${extra[@]}"
done
