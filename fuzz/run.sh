#!/bin/sh
# Builds every fuzz target with clang and runs each for SECONDS (default 60) on its seed corpus.
#   fuzz/run.sh [SECONDS]
# FUZZ_BUILD_DIR (default build-fuzz) and FUZZ_SOURCE_DIR (default the repository) may be set.
# Exits non-zero when a target finds a crash; the crashing input is left in the build directory.
set -e
seconds=${1:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
src=${FUZZ_SOURCE_DIR:-$root}
build=${FUZZ_BUILD_DIR:-$root/build-fuzz}
CC=clang CXX=clang++ cmake -S "$src" -B "$build" -G Ninja -DFLATFORM_GUI=OFF -DFLATFORM_TESTS=OFF -DFLATFORM_FUZZ=ON >/dev/null
targets=$(cd "$root/fuzz" && ls *_fuzz.cpp | sed 's/\.cpp$//')
cmake --build "$build" --target $targets -j2
status=0
for t in $targets; do
  exe=$(find "$build" -type f -name "$t" -perm -u+x | head -n 1)
  corpus_name=${t%_fuzz}
  corpus_name=${corpus_name%_reader}
  work="$build/fuzz-work/$t"
  mkdir -p "$work/corpus" "$work/artifacts"
  seeds=""
  [ -d "$root/fuzz/corpus/$corpus_name" ] && seeds="$root/fuzz/corpus/$corpus_name"
  echo "== $t for ${seconds}s"
  if ! (cd "$work" && "$exe" -max_total_time="$seconds" -jobs=1 -workers=1 -rss_limit_mb=2048 \
        -artifact_prefix="$work/artifacts/" "$work/corpus" $seeds); then
    echo "== $t FAILED: see $work/artifacts" >&2
    status=1
  fi
done
exit $status
