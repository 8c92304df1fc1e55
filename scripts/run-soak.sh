#!/usr/bin/env bash
# Builds the tree view soak run (Release) and runs it on a virtual X server.
# Usage: scripts/run-soak.sh [treeview-soak options]   (default: 600 s). Not part of CI.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DORB_BUILD_TESTS=OFF >/dev/null
cmake --build build-bench --target treeview-soak -j "$(nproc)"
QT_XCB_GL_INTEGRATION=none xvfb-run -a -s "-screen 0 1280x1024x24" build-bench/bench/treeview-soak "$@"
