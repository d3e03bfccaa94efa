#!/bin/sh
# Writes the seed images of design_reader_fuzz into fuzz/corpus/design/ with the independent writer.
set -e
here=$(cd "$(dirname "$0")" && pwd)
out="$here/corpus/design"
mkdir -p "$out"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
python3 "$here/../tests/support/independent_design_writer.py" "$out/hints.exe" "$tmp/e1.json" --seed 1
python3 "$here/../tests/support/independent_design_writer.py" "$out/no-hints.exe" "$tmp/e2.json" --no-hints --seed 2
