#!/usr/bin/env bash
# Builds in Release and prints every benchmark figure, one per line: "name value unit".
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh >&2
export CCACHE_BASEDIR="$PWD"
build=build-release
if [ ! -f "$build/build.ninja" ]; then
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELTO_BUILD_TESTS=OFF >&2
fi
cmake --build "$build" >&2
# Each benchmark runs in fresh folders with a keyring of its own, on the offscreen platform; start-up, idle frames
# and the main window on a real X server, the window's playing on a null sound sink.
for bench in "$build"/bench/bench_*; do
  if [ -f "$bench" ] && [ -x "$bench" ]; then
    display=()
    case "$(basename "$bench")" in
      bench_startup | bench_tables) display=(--display) ;;
      bench_window) display=(--display --sound) ;;
    esac
    bash scripts/test-env.sh --keyring "${display[@]}" -- "$bench"
  fi
done
