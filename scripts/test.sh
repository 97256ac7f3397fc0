#!/usr/bin/env bash
# Installs what is missing, builds what is stale, and runs every test through CTest.
#   scripts/test.sh [ctest arguments...]     e.g. scripts/test.sh -R appstate
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh
# Relative paths in the compiler cache let a fresh clone reuse what another checkout built.
export CCACHE_BASEDIR="$PWD"
build=build
if [ ! -f "$build/build.ninja" ]; then
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug
fi
cmake --build "$build"
ctest --test-dir "$build" -j2 --output-on-failure "$@"
