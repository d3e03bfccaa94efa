#!/bin/sh
# Builds every fuzz target with clang and runs each on its seed corpus and its own growing corpus.
#   fuzz/run.sh [SECONDS]           each target for SECONDS (default 60), one after the other
#   fuzz/run.sh --runs N [LANES]    each target for N executions, LANES targets at a time (default 1)
#   fuzz/run.sh --pack              each target's grown corpus, cut to the inputs that add coverage,
#                                   into fuzz/grown/TARGET.tar.xz (seeds for every later run, CI's too)
# FUZZ_BUILD_DIR (default build-fuzz), FUZZ_SOURCE_DIR (default the repository), FUZZ_FLAGS (compiler
# flags, e.g. "-O1 -gline-tables-only" for long runs) and FUZZ_TARGETS (names, in the order to run)
# may be set. Each target's output is kept in BUILD/fuzz-work/TARGET/log; one line for each target is printed
# when it ends. Exits non-zero when a target finds a crash; the input is left in its artifacts folder.
set -e
root=$(cd "$(dirname "$0")/.." && pwd)
src=${FUZZ_SOURCE_DIR:-$root}
build=${FUZZ_BUILD_DIR:-$root/build-fuzz}

# Allocation stacks are not kept and freed memory is held back less (a crash found is run again with
# the defaults to see them): the targets allocate much, and this makes them half again as fast and a
# tenth of the memory.
export ASAN_OPTIONS="${ASAN_OPTIONS:-malloc_context_size=0:quarantine_size_mb=16}"

# One target: "run.sh --one TARGET LIMIT" where LIMIT is a libFuzzer option (-runs= or -max_total_time=).
if [ "$1" = "--one" ]; then
  t=$2
  limit=$3
  exe="$build/bin/$t"
  corpus_name=${t%_fuzz}
  corpus_name=${corpus_name%_reader}
  work="$build/fuzz-work/$t"
  mkdir -p "$work/corpus" "$work/artifacts"
  seeds=""
  [ -d "$root/fuzz/corpus/$corpus_name" ] && seeds="$root/fuzz/corpus/$corpus_name"
  # Inputs grown by earlier long runs: a short run starts from the coverage they reached.
  if [ -f "$root/fuzz/grown/$t.tar.xz" ]; then
    rm -rf "$work/grown" && mkdir -p "$work/grown"
    tar -C "$work/grown" -xJf "$root/fuzz/grown/$t.tar.xz"
    seeds="$seeds $work/grown"
  fi
  started=$(date +%s)
  if (cd "$work" && "$exe" "$limit" -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$work/artifacts/" "$work/corpus" $seeds >"$work/log" 2>&1); then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/log")
    peak=$(sed -n 's/^stat::peak_rss_mb: *//p' "$work/log")
    last=$(grep -E '^#[0-9]+' "$work/log" | tail -n 1 | grep -oE 'cov: [0-9]+ ft: [0-9]+ corp: [^ ]+')
    seconds=$(( $(date +%s) - started ))
    echo "== $t: $runs executions in ${seconds} s ($(( runs / (seconds > 0 ? seconds : 1) ))/s), $last, peak ${peak} MB"
    exit 0
  fi
  echo "== $t FAILED: see $work/artifacts and $work/log" >&2
  tail -n 40 "$work/log" >&2
  exit 1
fi

# One target's corpus into its seed archive: libFuzzer's merge keeps only inputs that add coverage.
if [ "$1" = "--pack-one" ]; then
  t=$2
  work="$build/fuzz-work/$t"
  rm -rf "$work/packed" && mkdir -p "$work/packed" "$work/corpus" "$work/grown"
  "$build/bin/$t" -merge=1 "$work/packed" "$work/corpus" "$work/grown" >"$work/pack.log" 2>&1
  mkdir -p "$root/fuzz/grown"
  # Names sorted, times and owners zeroed: the same inputs give the same archive.
  (cd "$work/packed" && ls | LC_ALL=C sort | tar --mtime=@0 --owner=0 --group=0 --numeric-owner \
      -cf - -T - | xz -9 >"$root/fuzz/grown/$t.tar.xz")
  echo "== $t: $(ls "$work/packed" | wc -l) inputs kept in fuzz/grown/$t.tar.xz"
  exit 0
fi

limit="-max_total_time=${1:-60}"
lanes=1
if [ "$1" = "--runs" ]; then
  limit="-runs=$2"
  lanes=${3:-1}
fi
CC=clang CXX=clang++ cmake -S "$src" -B "$build" -G Ninja -DFLATFORM_GUI=OFF -DFLATFORM_TESTS=OFF -DFLATFORM_FUZZ=ON \
  -DCMAKE_CXX_FLAGS="${FUZZ_FLAGS:-}" >/dev/null
targets=${FUZZ_TARGETS:-$(cd "$root/fuzz" && ls *_fuzz.cpp | sed 's/\.cpp$//')}
cmake --build "$build" --target $targets -j2
export FUZZ_BUILD_DIR="$build"
if [ "$1" = "--pack" ]; then
  printf '%s\n' $targets | xargs -I{} "$0" --pack-one {}
  exit 0
fi
# xargs runs LANES targets at a time and exits non-zero when any of them failed.
printf '%s\n' $targets | xargs -P "$lanes" -I{} "$0" --one {} "$limit"
