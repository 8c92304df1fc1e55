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

# Whether the real-camera tests ran or were skipped (they need a network
# namespace of their own), and why.
sed -n '/Start testing of tst_OrbCamAravis/,/Finished testing of tst_OrbCamAravis/p' \
    build-ci/Testing/Temporary/LastTest.log | grep -E '^(SKIP|Totals)' \
    | sed 's/^/real-camera tests (tst_orbcam_aravis): /' || echo "real-camera tests: not built"

# The threaded tests (discovery beside parameter reads, the selector's
# polling thread, the device tree model's snapshots) once more under
# ThreadSanitizer. Qt is not built for it: what its own code does is left out
# (tests/tsan.supp), ours is checked.
threaded=(tst_orbcam_discovery tst_orbcam_gvcp tst_devicetreemodel tst_cameraselector tst_selectcamera
    tst_orbgenparamtreeview
    tst_orbcamconfigmapper tst_genparamtreemodel tst_featuredialogs tst_framedialogs
    tst_orbcamconfig tst_dialogsinuse tst_standardfeatures)
# The real-camera backend's threads (discovery, Aravis's heartbeat, the
# event thread), where the build has it.
if pkg-config --exists aravis-0.8; then threaded+=(tst_orbcam_aravis); fi
cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORB_WERROR=ON -DORB_TSAN=ON \
    -DORB_BUILD_BENCH=OFF
cmake --build build-tsan -j "$(nproc)" --target "${threaded[@]}"
unset ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS
QT_NO_GLIB=1 TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/tests/tsan.supp" \
    xvfb-run -a -s "-screen 0 1280x1024x24" \
    ctest --test-dir build-tsan --output-on-failure --timeout 600 \
    -R "^($(IFS='|'; echo "${threaded[*]}"))\$"
