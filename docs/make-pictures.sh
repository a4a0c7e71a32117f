#!/usr/bin/env bash
# Makes the pictures of the documentation again, with the built program. Besides what the program
# needs it takes ImageMagick to put frames together and xdotool to find the window.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/display.sh
use_display

program=build/release/velmora-animator
pictures=docs/pictures
frames=$(mktemp -d)
mkdir -p "$pictures"

# settings NAME CHECKED ZOOM [LINE...]: a settings file for one picture.
settings() {
  local name=$1 checked=$2 zoom=$3
  shift 3
  printf '%s\n' "[General]" "ScaleZ=$zoom" "CanSave=0" "$@" "[Windows]" \
    "CheckedLabels=$checked" "LabelsVisible=1" >"$frames/$name.ini"
}

# render NAME EXAMPLE SIZE COUNT TYPE: COUNT frames with the settings of that name.
render() {
  "$program" "examples/$2.mod" "examples/$2.dat" --settings "$frames/$1.ini" \
    --render "$frames/$1.png" --size "$3" --frames "$4" --scale-type "$5"
}

moving() {
  settings plate 000100 0.86 RotX=28 RotY=-40
  settings bridge 000001 0.74 RotX=14 RotY=-32
  settings rolls 0010 0.82 RotX=18 RotY=-35
  local n
  for n in plate bridge rolls; do render "$n" "$n" 400x290 10 relative; done
  for n in $(seq -f %03g 10); do
    convert "$frames"/{plate,bridge,rolls}-"$n".png +append +repage "$frames/moving-$n.png"
  done
  convert -delay 9 -loop 0 "$frames"/moving-*.png +dither -colors 128 -layers optimize \
    "$pictures/moving.gif"
}

scale_types() {
  settings absolute 00001 0.72
  settings relative 00001 0.72
  settings sum 111111 0.72
  local type
  for type in absolute relative sum; do render $type plate 480x280 3 $type; done
  convert "$frames"/{absolute,relative,sum}-001.png +append +repage +dither -colors 128 \
    "$pictures/scale-types.png"
}

window() {
  settings window 000001 0.75 ScaleType=1
  printf '%s\n' Left=0 Top=0 Width=1100 Height=720 LabelsLeft=880 LabelsTop=140 \
    LabelsWidth=180 LabelsHeight=190 >>"$frames/window.ini"
  "$program" examples/bridge.mod examples/bridge.dat --settings "$frames/window.ini" &
  local process=$!
  xdotool search --sync --onlyvisible --pid $process --name Legend >/dev/null
  sleep 2 # until all of it is painted
  import -window root -crop 1100x720+0+0 +repage +dither -colors 255 "$pictures/window.png"
  kill $process
}

# A wing of 65 nodes, of which 14 on its edges were measured: the others at rest, and following.
wing() {
  python3 - "$frames" <<'END'
import math, sys
ribs, chords = 13, 5
with open(sys.argv[1] + "/nodes.csv", "w") as f:
    f.write("node,x,y,z\n")
    for i in range(ribs):
        for j in range(chords):
            f.write(f"{10 * i + j},{0.5 * i - 3},0,{(j / 4 - 0.5) * (1.6 - 0.07 * i) + 0.04 * i}\n")
with open(sys.argv[1] + "/lines.csv", "w") as f:
    f.write("node1,node2\n")
    for i in range(ribs):
        for j in range(chords):
            if i + 1 < ribs: f.write(f"{10 * i + j},{10 * i + 10 + j}\n")
            if j + 1 < chords: f.write(f"{10 * i + j},{10 * i + j + 1}\n")
with open(sys.argv[1] + "/shapes.csv", "w") as f:
    f.write("frequency,node,y\n")
    for i in range(0, ribs, 2):
        for j in (0, chords - 1):
            s = i / (ribs - 1)
            f.write(f"11.7,{10 * i + j},{s * math.sin(4.5 * s)}\n")
END
  settings wing 1 0.64 RotX=24 RotY=-20 ViewScale=20
  local what
  for what in rest follow; do
    "$program" "$frames"/{nodes,lines,shapes}.csv --settings "$frames/wing.ini" \
      --unmeasured $what --render "$frames/wing-$what.png" --size 480x280 --scale-type relative
  done
  convert "$frames"/wing-{rest,follow}.png +append +repage +dither -colors 128 \
    "$pictures/neighbours.png"
}

# The simulated device and server, started as the user's guide says.
monitor() {
  local examples=build/release/examples device server
  "$examples/device-simulator/device-simulator" --link /tmp/device >/dev/null &
  device=$!
  "$examples/package-server/package-server" >/dev/null &
  server=$!
  sleep 1 # until both can be reached
  QT_QPA_PLATFORM=offscreen "$examples/monitor/monitor" --device /tmp/device \
    --server 127.0.0.1:4001 --after 40 --render "$frames/monitor.png"
  kill $device $server
  convert "$frames/monitor.png" +dither -colors 255 "$pictures/monitor.png"
}

panels() {
  export QT_QPA_PLATFORM=offscreen
  "$program" --panel examples/panels/signal.ui --render "$frames/signal.png" --after 8
  SPEED=20 examples/panels/weather.sh --render "$frames/weather.png" --after 45
  examples/panels/machine.sh --render "$frames/machine.png" --after 68
  "$program" --panel examples/panels/replay.ui --trust --render "$frames/replay.png" --after 20
  local panel
  for panel in signal weather machine replay; do
    convert "$frames/$panel.png" +dither -colors 255 "$pictures/panel-$panel.png"
  done
}

moving
scale_types
window
wing
(panels)
QT_QPA_PLATFORM=offscreen build/release/examples/gallery/gallery --render "$pictures/gallery.png"
QT_QPA_PLATFORM=offscreen build/release/examples/values/values --render "$pictures/values.png"
monitor
rm -r "$frames"
ls -l "$pictures"
