#!/usr/bin/env bash
# The main job: builds what is missing and opens the camera configuration
# window on the simulated camera system; the camera selector asks which
# camera first. Without a display it runs on a virtual X server, takes the
# first camera that can be opened and writes a screenshot.
#
#   scripts/run-demo.sh [orbcam-demo config options]   e.g. --camera U3V0/M1-2001,
#                                                      --config FILE
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh build >/dev/null

demo=build/apps/orbcam-demo/orbcam-demo
if [ -n "${DISPLAY:-}" ]; then
    exec "$demo" config "$@"
fi
shot=${SCREENSHOT:-build/orbcam-demo-config.png}
echo "No display: running on a virtual X server; the window is written to $shot"
export QT_XCB_GL_INTEGRATION=none
exec xvfb-run -a -s "-screen 0 1280x1024x24" "$demo" config --screenshot "$shot" "$@"
