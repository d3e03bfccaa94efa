#!/usr/bin/env bash
# Builds everything again with AddressSanitizer and UndefinedBehaviorSanitizer in build-asan/ and
# runs every test there: a bad read or write, a leak or undefined behaviour fails the test it is in.
set -euo pipefail
cd "$(dirname "$0")/.."
# -O1 with line tables: the sanitizers' usual trade of a quick build for readable stack traces.
BUILD_DIR=build-asan scripts/build.sh -DFLATFORM_SANITIZE=ON -DFLATFORM_WERROR=ON -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1"
root=$(pwd)
cd build-asan
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:strict_string_checks=1:detect_stack_use_after_return=0"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
export LSAN_OPTIONS="suppressions=$root/tests/sanitizer/leaks.supp:print_suppressions=0"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$(nproc)"
