#!/usr/bin/env bash
# Fails when a tracked C++ file differs from what .clang-format produces.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --dry-run --Werror
echo "format: ok"
