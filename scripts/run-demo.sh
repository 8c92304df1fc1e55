#!/usr/bin/env bash
# The main job: builds what is missing, lists the simulated camera system and
# shows the feature tree of its main camera model after a few writes through
# the interpreter.
set -euo pipefail
cd "$(dirname "$0")/.."

# --config FILE: a simulated set-up of your own (see OrbCamSim.h).
ls_args=()
if [ "${1:-}" = "--config" ] && [ -n "${2:-}" ]; then
    ls_args=(--config "$2")
    shift 2
fi

scripts/setup.sh
scripts/build.sh build >/dev/null

echo "== Cameras of the simulated system (orbcam-ls)"
build/tools/orbcam-ls/orbcam-ls "${ls_args[@]}"
echo
echo "== Feature tree of the OrbSim-C2000 model (genapi-dump)"
exec build/tools/genapi-dump/genapi-dump platform/orbcam/cameras/orbsim-c2000.xml \
    --set Frame_LineTime=2000 --set Frame_ExposureLines=600 --set Frame_Width=1280 \
    --set Frame_Height=960 --set Frame_SubsamplingM=Skip1 --set Frame_Averaging=Avg1 \
    --set PixelFormat=BayerRG8 --set TriggerMode=On --set RedCoefficient=256 \
    --set GreenCoefficient=256 --set BlueCoefficient=256 --set PulseGenPeriod=1000 \
    --set PulseGenWidth=100 --set GevSCPSPacketSize=1500 "$@"
