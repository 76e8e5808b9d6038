#!/usr/bin/env bash
# xvfbserver.sh start|stop DIR
# xvfbserver.sh run DIR PROGRAM [ARGUMENT...]
#
# A throwaway X display for the tests of what a person sees. "start" starts
# Xvfb on a display number that no other X server holds, keeps its pid, log
# and settings (DIR/xvfb.env: DISPLAY) in DIR, and waits until it takes
# connections. "run" runs PROGRAM on that display. "stop" stops it and
# removes DIR. A start first stops a display that an interrupted run left
# behind. XVFB names the server when it is not Xvfb on the PATH.
set -euo pipefail
# shellcheck source=serverlib.sh
source "$(dirname "$0")/serverlib.sh"

action=${1:-}
dir=${2:-}
usage() {
  echo "usage: $0 start|stop DIR, or $0 run DIR PROGRAM [ARGUMENT...]" >&2
  exit 2
}
[[ -n $action && -n $dir ]] || usage
xvfb=${XVFB:-Xvfb}

stop() {
  stop_process "$dir/xvfb.pid"
  rm -rf -- "$dir"
}

fail() {
  cat "$dir/xvfb.log" >&2 2>/dev/null || true
  echo "xvfbserver.sh: $1" >&2
  stop
  exit 1
}

start() {
  stop
  command -v "$xvfb" >/dev/null || { echo "xvfbserver.sh: no $xvfb (Debian's xvfb)" >&2; exit 1; }
  mkdir -p "$dir"
  dir=$(cd "$dir" && pwd)
  # The server picks a free display number itself and writes it to the
  # descriptor once it takes connections. Local connections only.
  "$xvfb" -displayfd 3 -nolisten tcp -screen 0 1024x768x24 3>"$dir/display" </dev/null >"$dir/xvfb.log" 2>&1 &
  echo $! >"$dir/xvfb.pid"
  for _ in $(seq 100); do
    if [[ -s $dir/display ]] && [[ $(<"$dir/display") =~ ^[0-9]+$ ]]; then
      echo "DISPLAY=:$(<"$dir/display")" >"$dir/xvfb.env"
      echo "Xvfb on :$(<"$dir/display")"
      return
    fi
    kill -0 "$(<"$dir/xvfb.pid")" 2>/dev/null || fail "Xvfb ended at its start"
    sleep 0.1
  done
  fail "Xvfb did not take connections within 10 s"
}

run() {
  [[ -f $dir/xvfb.env ]] || { echo "xvfbserver.sh: no display in $dir (has the xvfb fixture started?)" >&2; exit 1; }
  local DISPLAY
  # shellcheck disable=SC1091
  source "$dir/xvfb.env"
  export DISPLAY
  exec "$@"
}

case $action in
  start) start ;;
  stop) stop ;;
  run) shift 2; (($#)) || usage; run "$@" ;;
  *) usage ;;
esac
