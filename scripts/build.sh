#!/usr/bin/env bash
# Configures and builds Flatform in build/ (incremental; ccache keeps rebuilds short).
set -euo pipefail
cd "$(dirname "$0")/.."
# The cache is keyed by paths below the repository and not by the build folder's own path (which
# debug information would otherwise add), so that a fresh clone in another folder hits it.
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$(pwd)}
export CCACHE_NOHASHDIR=${CCACHE_NOHASHDIR:-1}
export CCACHE_MAXSIZE=${CCACHE_MAXSIZE:-12G}
BUILD_DIR=${BUILD_DIR:-build}
JOBS=${JOBS:-$(nproc)}
if [ ! -f "$BUILD_DIR/build.ninja" ]; then
  cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
elif [ $# -gt 0 ]; then
  cmake "$BUILD_DIR" "$@"
fi
cmake --build "$BUILD_DIR" -j "$JOBS"
