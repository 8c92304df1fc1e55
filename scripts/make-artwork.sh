#!/usr/bin/env bash
# Redraws resources/images and resources/icons with tools/make-artwork.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh build >/dev/null
build/tools/make-artwork/make-artwork resources
