#!/usr/bin/env bash
# Sets up what is missing, builds everything and runs the whole test suite, on a virtual display if
# there is no display. VELMORA_PRESET chooses another build than release.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
. scripts/display.sh

preset=${VELMORA_PRESET:-release}
scripts/setup.sh
use_display
cmake --preset "$preset" -DVELMORA_TESTS=ON
cmake --build --preset "$preset"
ctest --test-dir "build/$preset" -j "$(($(nproc) * 2))" --output-on-failure --no-tests=error "$@"
