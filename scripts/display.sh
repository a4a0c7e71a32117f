# To be sourced: gives the caller a display, a virtual one if there is none, until the caller ends.

use_display() {
  [ -z "${DISPLAY:-}" ] || return 0
  local number_file
  number_file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$number_file" >/dev/null 2>&1 &
  local server=$!
  # shellcheck disable=SC2064
  trap "kill $server 2>/dev/null" EXIT
  for _ in $(seq 100); do
    [ -s "$number_file" ] && break
    sleep 0.1
  done
  if [ ! -s "$number_file" ]; then
    echo "Cannot start a virtual display (Xvfb)." >&2
    return 1
  fi
  DISPLAY=":$(cat "$number_file")"
  export DISPLAY
  rm -f "$number_file"
}
