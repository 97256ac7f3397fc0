#!/usr/bin/env bash
# Installs what is missing, builds what is stale, and runs every test through CTest: the whole suite, then the
# suites where memory and arithmetic go wrong once more under AddressSanitizer and UndefinedBehaviorSanitizer.
#   scripts/test.sh [ctest arguments...]     e.g. scripts/test.sh -R appstate
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh
# Relative paths in the compiler cache let a fresh clone reuse what another checkout built.
export CCACHE_BASEDIR="$PWD"
# Debug builds hash the build folder into each entry unless told not to; a fresh clone would miss every one.
export CCACHE_NOHASHDIR=1

build=build
if [ ! -f "$build/build.ninja" ]; then
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug
fi
cmake --build "$build"
ctest --test-dir "$build" -j2 --output-on-failure "$@"

sanitized=build-sanitize
if [ ! -f "$sanitized/build.ninja" ]; then
  cmake -S . -B "$sanitized" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVELTO_SANITIZE=ON -DVELTO_BUILD_BENCH=OFF
fi
cmake --build "$sanitized"
# Leaks are not checked: Qt and GLib keep process-wide objects until exit, which LeakSanitizer would report.
ASAN_OPTIONS=detect_leaks=0:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir "$sanitized" -j2 --output-on-failure "$@"
