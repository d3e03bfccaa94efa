#!/usr/bin/env bash
# Installs what is missing, builds, makes the example app images and starts the contacts book.
#   scripts/demo.sh [contacts|invoice]
# On the first start each example's data file is filled with its sample records
# (examples/<name>/records.tsv, through flatform-cli); later starts keep the file as it is.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh
name=${1:-contacts}
for example in contacts invoice; do
  mkdir -p "build/examples/$example"
  build/bin/flatform-build "examples/$example/$example.json" -o "build/examples/$example/$example.exe"
  python3 tools/load_samples.py build/bin/flatform-cli "build/examples/$example/$example.exe" "examples/$example"
done
out=build/examples/$name
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "No display: starting under Xvfb (set DISPLAY to see the window)."
  exec xvfb-run -a "$out/$name.exe"
fi
exec "$out/$name.exe"
