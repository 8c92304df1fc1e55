#!/usr/bin/env bash
# Builds the benchmark (with Aravis as the yardstick) and runs it on the
# largest corpus description. Not part of CI.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh libaravis-dev libusb-1.0-0-dev
cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DORB_BUILD_TESTS=OFF >/dev/null
cmake --build build-bench --target genapi-bench genparam-bench -j "$(nproc)"
build-bench/bench/genapi-bench "$@"
echo
QT_QPA_PLATFORM=offscreen build-bench/bench/genparam-bench
