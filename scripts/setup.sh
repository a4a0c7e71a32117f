#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need, where they are missing.
set -euo pipefail

packages=(
  ca-certificates ccache clang clang-format clang-tidy cmake designer-qt6 fonts-liberation g++ git
  libclang-rt-14-dev libegl-dev libfast-float-dev libgl1-mesa-dri libglu1-mesa-dev libgl-dev
  libgmock-dev libgtest-dev libmeschach-dev libqt6opengl6-dev libqt6openglwidgets6 locales
  ninja-build qt6-base-dev qt6-base-dev-tools qt6-serialport-dev qt6-svg-dev qt6-tools-dev tzdata xauth
  xvfb
)

missing=()
for package in "${packages[@]}"; do
  state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$state" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
[ "$(id -u)" = 0 ] || as_root=(sudo)
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
