#!/usr/bin/env bash
# Installs the Debian packages that are missing: those that building and running the programs need,
# and unless it is called with "run", those for tests, benchmarks and checks.
set -euo pipefail

if ! command -v dpkg-query >/dev/null; then
  echo "This is no Debian: what README.md names is taken to be installed." >&2
  exit 0
fi

packages=(
  ca-certificates cmake fonts-liberation g++ libegl-dev libfast-float-dev libgl1-mesa-dri
  libglu1-mesa-dev libgl-dev libmeschach-dev libqt6opengl6-dev libqt6openglwidgets6 ninja-build
  qt6-base-dev qt6-base-dev-tools qt6-serialport-dev qt6-svg-dev qt6-tools-dev tzdata
)
if [ "${1:-}" != run ]; then
  packages+=(
    ccache clang clang-format clang-tidy designer-qt6 git libclang-rt-14-dev libgmock-dev libgtest-dev
    locales python3 xvfb
  )
fi

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
