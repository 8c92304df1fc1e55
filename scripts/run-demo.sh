#!/usr/bin/env bash
# The main job: builds what is missing and shows the feature tree of the
# bundled simulated camera, after a few writes through the interpreter.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh build >/dev/null

exec build/tools/genapi-dump/genapi-dump platform/orbcam/cameras/orbsim-c2000.xml \
    --set Width=1280 --set Height=960 --set PixelFormat=BayerRG8 \
    --set ExposureTime=10000 --set Gain=6.5 --set TriggerMode=On \
    --set GevCurrentIPAddress=192.168.1.20 --set GevMACAddress=00:1A:2B:3C:4D:5E "$@"
