# shellcheck shell=bash
# Sourced by the fixtures' scripts that run a server in the background.

# Stops the process whose id PIDFILE holds, if there is one: asked first,
# killed after 5 s.
stop_process() {
  [[ -f $1 ]] || return 0
  local pid
  pid=$(<"$1")
  kill "$pid" 2>/dev/null || true
  for _ in $(seq 50); do
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.1
  done
  kill -9 "$pid" 2>/dev/null || true
}
