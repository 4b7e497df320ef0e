#!/usr/bin/env bash
# Installs the Debian packages Tarvo needs to build, test and run.
# Idempotent: packages already present are skipped; apt-get update runs only
# when something is missing and the package lists do not know it yet.
# With --fuzz also the compiler and fuzzing engine of `make fuzz`.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-multimedia-dev libqt6opengl6-dev
  libzip-dev libical-dev qtkeychain-qt6-dev
  libgtest-dev libgmock-dev libbenchmark-dev libpugixml-dev
  xvfb xauth x11-utils imagemagick poppler-utils fonts-dejavu-core
  openbox xdotool dbus-daemon dbus-bin desktop-file-utils appstream
  remind radicale gnome-keyring
)
if [ "${1:-}" = "--fuzz" ]; then
  packages+=(clang libclang-rt-dev)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi

echo "Installing missing packages: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
# A package the lists do not know means the lists are stale (or absent on a new machine).
for p in "${missing[@]}"; do
  if ! apt-cache show "$p" >/dev/null 2>&1; then
    $sudo apt-get update -qq
    break
  fi
done
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
