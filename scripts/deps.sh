#!/usr/bin/env bash
# Installs what Velto needs to build, test and run on Debian 12. Quick when everything is present.
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache pkg-config
  qt6-base-dev qt6-declarative-dev qt6-tools-dev-tools
  qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts qml6-module-qtquick-window
  qml6-module-qtquick-templates qml6-module-qtqml-workerscript qml6-module-qtquick-dialogs
  qml6-module-qttest qml6-module-qtqml qml6-module-qtqml-models
  qt6-svg-dev qt6-image-formats-plugins
  qcoro-qt6-dev libmpv-dev qtkeychain-qt6-dev
  xvfb xauth libgl1-mesa-dri fonts-material-design-icons-iconfont fonts-inter
  gnome-keyring dbus dbus-x11 playerctl ffmpeg curl desktop-file-utils appstream
  supysonic python3-waitress
  at-spi2-core python3-pyatspi pulseaudio pulseaudio-utils
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=""
[ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo_cmd apt-get update -qq
$sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
