#!/usr/bin/env bash
# Installs what is missing, builds, makes the example app images and starts the contacts book.
#   scripts/demo.sh [contacts|invoice]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh
name=${1:-contacts}
out=build/examples/$name
mkdir -p "$out"
build/bin/flatform-build "examples/$name/$name.json" -o "$out/$name.exe"
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "No display: starting under Xvfb (set DISPLAY to see the window)."
  exec xvfb-run -a "$out/$name.exe"
fi
exec "$out/$name.exe"
