#!/usr/bin/env bash
# Builds the benchmarks (Release, with Aravis as the yardstick) and runs them:
# genapi-bench on the largest corpus description, genparam-bench on the same,
# treeview-bench on generated descriptions on a virtual X server, and
# network-bench (GUI-thread gaps with a fake GigE Vision camera).
# Not part of CI.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DORB_BUILD_TESTS=OFF >/dev/null
cmake --build build-bench --target genapi-bench genparam-bench treeview-bench network-bench \
    -j "$(nproc)"
build-bench/bench/genapi-bench "$@"
echo
QT_QPA_PLATFORM=offscreen build-bench/bench/genparam-bench
echo
QT_XCB_GL_INTEGRATION=none xvfb-run -a -s "-screen 0 1280x1024x24" build-bench/bench/treeview-bench
echo
# Needs a network namespace of its own (root, or user namespaces) and
# aravis-tools' fake camera; says why when it cannot run.
QT_XCB_GL_INTEGRATION=none xvfb-run -a -s "-screen 0 1280x1024x24" \
    build-bench/bench/network-bench || true
