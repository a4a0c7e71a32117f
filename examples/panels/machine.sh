#!/usr/bin/env bash
# Opens the machine monitor on a simulated measuring device of its own, which ends with the window.
# Arguments go to the panel, such as --render machine.png --after 5.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=${BUILD:-$here/../../build/release}

folder=$(mktemp -d)
"$build/examples/device-simulator/device-simulator" --machine --link "$folder/COM1" >/dev/null &
device=$!
trap 'kill $device 2>/dev/null && wait $device; rm -rf "$folder"' EXIT
for _ in $(seq 100); do
  [ -e "$folder/COM1" ] && break
  sleep 0.05
done
VELMORA_COM1=$folder/COM1 "$build/velmora-animator" --panel "$here/machine.ui" --trust "$@"
