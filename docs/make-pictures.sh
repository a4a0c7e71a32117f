#!/usr/bin/env bash
# Makes the pictures of the documentation again with the built program. Needs ImageMagick to put
# them together, and a display (or Xvfb and xdotool) for the picture of the window.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
