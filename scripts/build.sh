#!/usr/bin/env bash
# Configures and builds. Usage: scripts/build.sh [--ci] [BUILD_DIR]
#   --ci  warnings as errors, AddressSanitizer + UndefinedBehaviorSanitizer
set -euo pipefail
cd "$(dirname "$0")/.."

ci=0
dir=""
for arg in "$@"; do
    case "$arg" in
        --ci) ci=1 ;;
        *) dir="$arg" ;;
    esac
done

if [ "$ci" = 1 ]; then
    dir=${dir:-build-ci}
    cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORB_WERROR=ON -DORB_SANITIZE=ON
else
    dir=${dir:-build}
    cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$dir" -j "$(nproc)"
