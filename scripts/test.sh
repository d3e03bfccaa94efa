#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh -DFLATFORM_WERROR=ON
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$(nproc)"
