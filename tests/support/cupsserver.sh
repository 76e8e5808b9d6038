#!/usr/bin/env bash
# cupsserver.sh start|stop DIR
#
# A throwaway CUPS scheduler for the tests of printing through a queue.
# "start" writes a configuration into DIR (its spool, cache, state and logs
# too), starts cupsd on it listening on a free port of 127.0.0.1 and on the
# domain socket DIR/cups.sock, and waits until it answers. Clients find it
# with CUPS_SERVER=DIR/cups.sock; over that socket anyone may administer it
# (the tests add their queues with lpadmin). DIR/cups.env holds the
# settings as shell assignments. "stop" stops it and removes DIR. A start
# first stops a scheduler that an interrupted run left behind.
#
# Run as root, the scheduler runs its backends as the "lp" user, as a
# system one does. CUPSD names the scheduler when it is not /usr/sbin/cupsd.
set -euo pipefail
# shellcheck source=serverlib.sh
source "$(dirname "$0")/serverlib.sh"

action=${1:-}
dir=${2:-}
if [[ -z $action || -z $dir ]]; then
  echo "usage: $0 start|stop DIR" >&2
  exit 2
fi
cupsd=${CUPSD:-/usr/sbin/cupsd}

stop() {
  stop_process "$dir/cupsd.pid"
  rm -rf -- "$dir"
}

# A port nothing listens on; the scheduler's start shows whether it still
# is free.
free_port() {
  local port
  for _ in $(seq 50); do
    port=$((20000 + RANDOM % 40000))
    if ! (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
      echo "$port"
      return
    fi
  done
  echo "cupsserver.sh: no free port found" >&2
  exit 1
}

fail() {
  cat "$dir/log/error_log" >&2 2>/dev/null || true
  echo "cupsserver.sh: $1" >&2
  stop
  exit 1
}

start() {
  stop
  [[ -x $cupsd ]] || { echo "cupsserver.sh: no scheduler at $cupsd (Debian's cups-daemon)" >&2; exit 1; }
  [[ -x /usr/lib/cups/backend/socket ]] ||
    { echo "cupsserver.sh: no socket backend (Debian's cups)" >&2; exit 1; }
  mkdir -p "$dir"/{etc/ppd,spool/tmp,cache,state,log}
  dir=$(cd "$dir" && pwd)
  # A domain socket's path holds at most 107 bytes.
  ((${#dir} <= 96)) || fail "the folder's path is too long for a domain socket: $dir"
  local port
  port=$(free_port)
  cat >"$dir/cups-files.conf" <<CONF
ServerRoot $dir/etc
RequestRoot $dir/spool
TempDir $dir/spool/tmp
CacheDir $dir/cache
StateDir $dir/state
ErrorLog $dir/log/error_log
AccessLog $dir/log/access_log
PageLog $dir/log/page_log
ServerBin /usr/lib/cups
FileDevice Yes
User lp
Group lp
SystemGroup root
CONF
  cat >"$dir/cupsd.conf" <<CONF
Listen 127.0.0.1:$port
Listen $dir/cups.sock
LogLevel info
Browsing Off
WebInterface No
DefaultShared No
# The scheduler lives for one test run: no authentication, no history.
PreserveJobHistory Yes
PreserveJobFiles No
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
CONF
  # The backends run as lp and read the spooled files.
  if [[ $(id -u) -eq 0 ]]; then
    chown -R root:lp "$dir"
    chmod 0755 "$dir"
  fi
  "$cupsd" -f -c "$dir/cupsd.conf" -s "$dir/cups-files.conf" </dev/null >"$dir/log/cupsd.out" 2>&1 &
  echo $! >"$dir/cupsd.pid"
  for _ in $(seq 100); do
    if [[ -S $dir/cups.sock ]] && CUPS_SERVER=$dir/cups.sock lpstat -r >/dev/null 2>&1; then
      cat >"$dir/cups.env" <<STATE
CUPS_SERVER=$dir/cups.sock
ZENTARO_CUPS_PORT=$port
STATE
      echo "CUPS scheduler on $dir/cups.sock and 127.0.0.1:$port"
      return
    fi
    kill -0 "$(<"$dir/cupsd.pid")" 2>/dev/null || fail "the scheduler ended at its start"
    sleep 0.1
  done
  fail "the scheduler did not answer within 10 s"
}

case $action in
  start) start ;;
  stop) stop ;;
  *) echo "usage: $0 start|stop DIR" >&2; exit 2 ;;
esac
