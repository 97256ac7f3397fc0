#!/usr/bin/env bash
# Runs one test program in a world of its own: fresh XDG folders, the offscreen platform, and on request a private
# D-Bus session with an unlocked gnome-keyring (--keyring), an X server (--display), a sound server whose only
# output is a null sink (--sound), or the accessibility bus that screen readers use (--a11y).
#   test-env.sh [--keyring] [--display] [--sound] [--a11y] -- PROGRAM [ARGS...]
set -euo pipefail

keyring=0
display=0
sound=0
a11y=0
while [ $# -gt 0 ]; do
  case "$1" in
    --keyring) keyring=1 ;;
    --display) display=1 ;;
    --sound) sound=1 ;;
    --a11y) a11y=1 ;;
    --) shift; break ;;
  esac
  shift
done

home=$(mktemp -d /tmp/velto-test.XXXXXX)
export HOME="$home"
export XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_CACHE_HOME="$home/cache"
export XDG_RUNTIME_DIR="$home/runtime"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
export QT_QPA_PLATFORM=offscreen
export VELTO_TEST_TMP="$home"
cleanup() {
  [ "$sound" = 1 ] && pulseaudio --kill >/dev/null 2>&1
  rm -rf "$home"
}
trap cleanup EXIT

inner=("$@")
if [ "$display" = 1 ]; then
  unset QT_QPA_PLATFORM
  inner=(xvfb-run -a -s "-screen 0 1600x1000x24" "${inner[@]}")
fi

if [ "$keyring" = 1 ] || [ "$display" = 1 ] || [ "$sound" = 1 ] || [ "$a11y" = 1 ]; then
  # gnome-keyring needs --unlock with a password on stdin to offer an open collection without a prompt.
  SOUND=$sound A11Y=$a11y dbus-run-session -- bash -c '
    echo -n velto-test | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1
    if [ "$SOUND" = 1 ]; then
      pulseaudio -n --daemonize=yes --exit-idle-time=-1 -L module-native-protocol-unix \
        -L "module-null-sink sink_name=rec" >/dev/null 2>&1
    fi
    if [ "$A11Y" = 1 ]; then
      /usr/libexec/at-spi-bus-launcher --launch-immediately >/dev/null 2>&1 &
      export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
    fi
    exec "$@"' bash "${inner[@]}"
  exit
fi
"${inner[@]}"
