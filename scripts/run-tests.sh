#!/usr/bin/env bash
# Installs what is missing, builds with -Werror under AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs every test on a virtual X server.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/check-format.sh
scripts/build.sh --ci build-ci

export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0"
export QT_XCB_GL_INTEGRATION=none
export QT_QPA_PLATFORM=xcb
export LC_ALL=C.UTF-8

xvfb-run -a -s "-screen 0 1280x1024x24" \
    ctest --test-dir build-ci --output-on-failure -j "$(nproc)" --timeout 300
