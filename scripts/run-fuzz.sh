#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a bounded time.
# Usage: scripts/run-fuzz.sh [SECONDS_PER_TARGET]   (default 60). Not part of CI.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
scripts/setup.sh clang libclang-rt-14-dev
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DORB_BUILD_FUZZ=ON -DORB_BUILD_TESTS=OFF -DORB_BUILD_BENCH=OFF \
    -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all" >/dev/null
cmake --build build-fuzz --target fuzz-genapi-loader fuzz-genapi-formula -j "$(nproc)"

mkdir -p build-fuzz/corpus-loader build-fuzz/corpus-formula
# Seeds: the small real descriptions, and every formula they contain.
for f in ../shared/genicam-xml/*.xml; do
    [ "$(stat -c %s "$f")" -lt 100000 ] && cp "$f" build-fuzz/corpus-loader/
done
cp platform/orbcam/cameras/*.xml build-fuzz/corpus-loader/
if [ -z "$(ls build-fuzz/corpus-formula)" ]; then
    i=0
    grep -ho '<Formula[A-Za-z]*>[^<]*</Formula' ../shared/genicam-xml/*.xml | sed 's/<[^>]*>//; s/<\/Formula$//' |
        sed 's/&amp;/\&/g; s/&lt;/</g; s/&gt;/>/g' | sort -u | head -500 |
        while IFS= read -r line; do printf '%s' "$line" > "build-fuzz/corpus-formula/seed$((i++))"; done
fi

export ASAN_OPTIONS=detect_leaks=1
build-fuzz/fuzz/fuzz-genapi-formula -max_total_time="$seconds" -max_len=4096 build-fuzz/corpus-formula
build-fuzz/fuzz/fuzz-genapi-loader -max_total_time="$seconds" -max_len=200000 -timeout=10 build-fuzz/corpus-loader
