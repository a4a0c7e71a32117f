#!/usr/bin/env bash
# Opens the weather station with a package server of its own, which ends with the window. Arguments
# go to the panel, such as --render weather.png --after 5. SPEED=60 lets an hour pass in a minute.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=${BUILD:-$here/../../build/release}

"$build/examples/package-server/package-server" --port 4001 --rate "${SPEED:-1}" >/dev/null &
server=$!
trap 'kill $server 2>/dev/null || true' EXIT
"$build/velmora-animator" --panel "$here/weather.ui" --trust "$@"
