#!/usr/bin/env bash
# The main job: builds what is missing and opens the parameter tree view on
# the first camera of the simulated camera system, polling live features.
# Without a display it runs on a virtual X server and writes a screenshot.
#
#   scripts/run-demo.sh [orbcam-demo options]   e.g. --camera U3V0/M1-2001,
#                                               --xml FILE, --config FILE
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh build >/dev/null

demo=build/apps/orbcam-demo/orbcam-demo
if [ -n "${DISPLAY:-}" ]; then
    exec "$demo" tree "$@"
fi
shot=${SCREENSHOT:-build/orbcam-demo-tree.png}
echo "No display: running on a virtual X server; the window is written to $shot"
export QT_XCB_GL_INTEGRATION=none
exec xvfb-run -a -s "-screen 0 1280x1024x24" "$demo" tree --screenshot "$shot" "$@"
