#!/usr/bin/env bash
# Sets up what is missing, builds a release and starts the animator: on an example, animating, or
# with the arguments given. Without a display one cycle of the example becomes PNG files.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

"$here/scripts/setup.sh" run
(cd "$here" && cmake --preset release -DVELMORA_TESTS=OFF &&
  cmake --build --preset release --target velmora-animator device-simulator package-server monitor)
program=$here/build/release/velmora-animator

if [ $# -gt 0 ]; then
  exec "$program" "$@"
fi
example=("$here/examples/bridge.mod" "$here/examples/bridge.dat"
         --settings "$here/examples/bridge.ini")
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$program" "${example[@]}"
fi
pictures=$here/build/pictures
mkdir -p "$pictures"
rm -f "$pictures"/bridge*.png
"$program" "${example[@]}" --render "$pictures/bridge.png" --frames 10
echo "There is no display; one cycle of the bridge was drawn to:"
ls "$pictures"/bridge*.png
