#!/usr/bin/env bash
# Writes the README's pictures: every door of the demo on the simulated
# cameras, on a virtual X server, into docs/images/. Not part of CI.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh build >/dev/null
demo=build/apps/orbcam-demo/orbcam-demo
out=docs/images
mkdir -p "$out"
export QT_XCB_GL_INTEGRATION=none LC_ALL=C.UTF-8
shoot() { # shoot NAME DEMO-ARGS...
    local name=$1
    shift
    xvfb-run -a -s "-screen 0 1280x1024x24" "$demo" "$@" --screenshot "$out/$name.png" >/dev/null
}
shoot config config
shoot tree tree
shoot tree-menu tree --select "Device User ID" --menu
shoot tree-changed tree --set "Exposure Lines=800" --set "Number of Frames A=4" --select "Frame A/B Selector"
shoot tree-locked tree --visibility guru --set "TL Params Locked=1" --select Width
shoot select select
shoot widgets widgets
for dialog in trigger strobe pulse output color frameab; do
    shoot "dialog-$dialog" dialog "$dialog"
done
ls -1 "$out"
