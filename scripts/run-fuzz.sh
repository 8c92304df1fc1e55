#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a bounded time.
# Usage: scripts/run-fuzz.sh [SECONDS_PER_TARGET [TARGET...]]   (default 60 s,
# every target). Not part of CI. Corpora grow in build-fuzz/corpus-*; a
# finding is written to build-fuzz/ as crash-*, timeout-* or leak-*, and
# belongs in tests/data/fuzz/<target>/ once fixed.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
all=(genapi-formula genapi-loader genparam-model treeview-state validators sim-config gvcp)
targets=("${@:-${all[@]}}")

scripts/setup.sh clang libclang-rt-14-dev
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DORB_BUILD_FUZZ=ON -DORB_BUILD_TESTS=OFF -DORB_BUILD_BENCH=OFF \
    -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all" >/dev/null
cmake --build build-fuzz --target "${targets[@]/#/fuzz-}" -j "$(nproc)"

seed() { # seed TARGET: fills an empty corpus with the inputs the target starts from
    local dir=build-fuzz/corpus-$1 i=0
    mkdir -p "$dir"
    [ -z "$(ls "$dir")" ] || return 0
    case $1 in
    genapi-loader | genparam-model)
        for f in ../shared/genicam-xml/*.xml tests/data/genapi/*.xml tests/data/genparam/*.xml; do
            [ -f "$f" ] && [ "$(stat -c %s "$f")" -lt 100000 ] && cp "$f" "$dir/"
        done
        cp platform/orbcam/cameras/*.xml "$dir/" ;;
    genapi-formula)
        grep -ho '<Formula[A-Za-z]*>[^<]*</Formula' ../shared/genicam-xml/*.xml |
            sed 's/<[^>]*>//; s/<\/Formula$//; s/&amp;/\&/g; s/&lt;/</g; s/&gt;/>/g' | sort -u |
            head -500 | while IFS= read -r line; do printf '%s' "$line" >"$dir/seed$((i++))"; done ;;
    treeview-state)
        printf '%s' 'Root/Category1&amp;W180&amp;V1&amp;S000000ff0000000000000002000001f40000012c' >"$dir/full"
        printf '%s' '&amp;W123&amp;V0' >"$dir/keys"
        printf '%s' 'DeviceControl/ImageFormatControl/&amp;W0&amp;V3' >"$dir/paths" ;;
    validators)
        # 16 bytes of range, a locale byte, a base byte, a cursor byte, then the text.
        for text in 192.168.1.10 255.255.255.255 1.2.3 -9223372036854775808 0x7f '1 000' '1.000,5'; do
            { printf '\x00\x00\x00\x00\x00\x00\x00\x80\x7f\xff\xff\xff\xff\xff\xff\x7f\x01\x00\x03%s' "$text"; } \
                >"$dir/seed$((i++))"
        done ;;
    sim-config)
        printf '%s' '{"interfaces":[{"id":"GEV0","type":"GigEVision","ip":"192.168.1.10","mask":"255.255.255.0","mac":"00:0C:29:00:00:01","cameras":[{"model":"orbsim-c2000","serial":"C2-1","ip":"192.168.1.20","userName":"Line 1"}]},{"id":"U3V0","type":"USB3Vision","cameras":[{"model":"orbsim-m1300"}]}]}' >"$dir/two"
        printf '%s' '{"interfaces":[]}' >"$dir/none" ;;
    gvcp)
        # A discovery answer (header and 248 bytes), a register answer, a
        # force IP answer; the odd first byte makes the parsers take the
        # packet's own request id.
        { printf '\x01\x00\x00\x03\x00\xf8\x00\x09'; head -c 248 /dev/zero; } >"$dir/discovery"
        printf '\x01\x00\x00\x81\x00\x04\x00\x03\x00\x00\x00\x02' >"$dir/readreg"
        printf '\x01\x00\x00\x05\x00\x00\x00\x05' >"$dir/forceip" ;;
    esac
}

cat tests/lsan.supp fuzz/lsan.supp >build-fuzz/lsan.supp
export ASAN_OPTIONS=detect_leaks=1 LSAN_OPTIONS=suppressions=$PWD/build-fuzz/lsan.supp:print_suppressions=0
for t in "${targets[@]}"; do
    seed "$t"
    case $t in
    genapi-formula) limits=(-max_len=4096) ;;
    genapi-loader) limits=(-max_len=200000 -timeout=10) ;;
    genparam-model) limits=(-max_len=65536 -timeout=10 -rss_limit_mb=4096) ;;
    *) limits=(-max_len=4096 -timeout=10) ;;
    esac
    # Findings go to build-fuzz/, not the caller's directory.
    build-fuzz/fuzz/fuzz-$t -max_total_time="$seconds" -print_final_stats=1 \
        -artifact_prefix="build-fuzz/$t-" "${limits[@]}" "build-fuzz/corpus-$t"
done
