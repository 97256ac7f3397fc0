#!/usr/bin/env bash
# Runs one test program in a world of its own: fresh XDG folders, the offscreen platform, and on request a private
# D-Bus session with an unlocked gnome-keyring (--keyring) or an X server (--display).
#   test-env.sh [--keyring] [--display] -- PROGRAM [ARGS...]
set -euo pipefail

keyring=0
display=0
while [ $# -gt 0 ]; do
  case "$1" in
    --keyring) keyring=1 ;;
    --display) display=1 ;;
    --) shift; break ;;
  esac
  shift
done

home=$(mktemp -d /tmp/velto-test.XXXXXX)
trap 'rm -rf "$home"' EXIT
export HOME="$home"
export XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_CACHE_HOME="$home/cache"
export XDG_RUNTIME_DIR="$home/runtime"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
export QT_QPA_PLATFORM=offscreen
export VELTO_TEST_TMP="$home"

inner=("$@")
if [ "$display" = 1 ]; then
  unset QT_QPA_PLATFORM
  inner=(xvfb-run -a -s "-screen 0 1600x1000x24" "${inner[@]}")
fi

if [ "$keyring" = 1 ] || [ "$display" = 1 ]; then
  # gnome-keyring needs --unlock with a password on stdin to offer an open collection without a prompt.
  dbus-run-session -- bash -c '
    echo -n velto-test | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1
    exec "$@"' bash "${inner[@]}"
  exit
fi
"${inner[@]}"
