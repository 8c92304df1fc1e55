#!/usr/bin/env bash
# Installs the Debian packages that building and testing need. Idempotent:
# asks apt only for what is missing. Extra packages may be named as arguments.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    qtbase5-dev qtbase5-dev-tools libxcb1-dev
    libpugixml-dev libzip-dev nlohmann-json3-dev qttools5-dev
    xvfb xauth x11-utils clang-format git doxygen
    libaravis-dev libusb-1.0-0-dev aravis-tools iproute2
    "$@"
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if ((${#missing[@]})); then
    sudo=""
    if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
    echo "setup: installing ${missing[*]}"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
