#!/usr/bin/env bash
# Builds Velto and runs it.
#   scripts/run.sh          a demo: a local Supysonic server with a small generated library, and Velto signed in
#   scripts/run.sh --own    Velto alone, to connect to your own server
# The demo keeps its server, library and Velto profile in ~/.cache/velto-demo, apart from your own Velto
# settings, and stops its server when Velto quits.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

bash scripts/deps.sh
export CCACHE_BASEDIR="$root"
build=build-release
if [ ! -f "$build/build.ninja" ]; then
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELTO_BUILD_TESTS=OFF
fi
cmake --build "$build" --target velto velto-demo-signin

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "run.sh: no graphical session here (neither DISPLAY nor WAYLAND_DISPLAY is set)." >&2
  exit 1
fi

if [ "${1:-}" = "--own" ]; then
  exec "$build/src/velto"
fi

demo="${XDG_CACHE_HOME:-$HOME/.cache}/velto-demo"
mkdir -p "$demo/profile/config" "$demo/profile/data" "$demo/profile/cache"
user=demo
password=demo

# A fixed port keeps the demo account, and so its downloads, the same from one run to the next.
port=4747
if (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then port=0; fi

echo "Starting the demo server (the first run makes its library, about a minute)..."
server_log="$demo/server.log"
rm -f "$demo/server.out"
/usr/bin/python3 scripts/demo/supysonic_server.py --workdir "$demo/server" --port "$port" \
  --user "$user" --password "$password" --demo --keep-state --ignore-stdin >"$demo/server.out" 2>"$server_log" &
server_pid=$!
trap 'kill "$server_pid" 2>/dev/null || true' EXIT
# The first run generates the library: allow it several minutes on a slow machine.
for _ in $(seq 3000); do
  if grep -q '^READY ' "$demo/server.out" 2>/dev/null; then break; fi
  if ! kill -0 "$server_pid" 2>/dev/null; then
    echo "run.sh: the demo server did not start; see $server_log" >&2
    exit 1
  fi
  sleep 0.2
done
port=$(sed -n 's/^READY //p' "$demo/server.out")
if [ -z "$port" ]; then
  echo "run.sh: the demo server did not become ready in time; see $server_log" >&2
  exit 1
fi
url="http://127.0.0.1:$port"
echo "Demo server: $url  user: $user  password: $password"

export XDG_CONFIG_HOME="$demo/profile/config" XDG_DATA_HOME="$demo/profile/data" XDG_CACHE_HOME="$demo/profile/cache"

has_secret_service() {
  [ -n "${DBUS_SESSION_BUS_ADDRESS:-}" ] || return 1
  dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.ListActivatableNames 2>/dev/null | grep -q '"org.freedesktop.secrets"' && return 0
  dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.ListNames 2>/dev/null | grep -q '"org.freedesktop.secrets"'
}

launch() {
  "$build/scripts/demo/velto-demo-signin" "$url" "$user" "$password" && "$build/src/velto"
}

if has_secret_service; then
  launch
else
  # No keyring in this session: the demo brings its own, kept in the demo profile and unlocked for this run.
  echo "No Secret Service in this session; using a keyring of the demo's own."
  export -f launch
  export build url user password
  dbus-run-session -- bash -c '
    echo -n velto-demo | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1
    launch'
fi
