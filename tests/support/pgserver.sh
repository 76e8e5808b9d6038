#!/usr/bin/env bash
# pgserver.sh start|stop STATEFILE
#
# A throwaway PostgreSQL server for the database tests. "start" creates a
# cluster in a fresh folder under /tmp, starts it listening on a Unix socket
# in that folder only (no TCP port, so any number of build trees can each
# run one), and writes the connection parameters to STATEFILE as shell
# assignments (PGHOST, PGPORT, PGUSER, ZENTARO_PG_DIR). "stop" stops the
# server named in STATEFILE and removes its folder and STATEFILE. A start
# first stops a server that an interrupted run left behind.
#
# Run as root, the server runs as the "postgres" user. PG_BINDIR names the
# folder of initdb and pg_ctl when they are not Debian's or on the PATH.
set -euo pipefail

action=${1:-}
state=${2:-}
if [[ -z $action || -z $state ]]; then
  echo "usage: $0 start|stop STATEFILE" >&2
  exit 2
fi

bindir() {
  if [[ -n ${PG_BINDIR:-} ]]; then
    echo "$PG_BINDIR"
  elif compgen -G '/usr/lib/postgresql/*/bin/initdb' >/dev/null; then
    # Debian keeps each major version in its own folder: take the newest.
    dirname "$(printf '%s\n' /usr/lib/postgresql/*/bin/initdb | sort -V | tail -n 1)"
  elif command -v initdb >/dev/null; then
    dirname "$(command -v initdb)"
  else
    echo "pgserver.sh: no PostgreSQL server programs (initdb, pg_ctl) found" >&2
    exit 1
  fi
}

# The server refuses to run as root.
as_server() {
  if [[ $(id -u) -eq 0 ]]; then
    runuser -u postgres -- "$@"
  else
    "$@"
  fi
}

stop() {
  [[ -f $state ]] || return 0
  local ZENTARO_PG_DIR='' ZENTARO_PG_BINDIR=''
  # shellcheck disable=SC1090
  source "$state"
  if [[ -n $ZENTARO_PG_DIR && -d $ZENTARO_PG_DIR ]]; then
    as_server "$ZENTARO_PG_BINDIR/pg_ctl" -D "$ZENTARO_PG_DIR/data" -m immediate -w stop >/dev/null 2>&1 || true
    rm -rf -- "$ZENTARO_PG_DIR"
  fi
  rm -f -- "$state"
}

start() {
  stop
  local bin dir port=5432
  bin=$(bindir)
  if [[ $(id -u) -eq 0 ]] && ! id postgres >/dev/null 2>&1; then
    echo "pgserver.sh: running as root, but there is no 'postgres' user to run the server" >&2
    exit 1
  fi
  # /tmp keeps the socket path well under its length limit.
  dir=$(mktemp -d /tmp/zentaro-pg.XXXXXX)
  [[ $(id -u) -eq 0 ]] && chown postgres: "$dir"

  if ! as_server "$bin/initdb" -D "$dir/data" -U zentaro --auth=trust -E UTF8 --locale=C -N \
      >"$dir/initdb.log" 2>&1; then
    cat "$dir/initdb.log" >&2
    rm -rf -- "$dir"
    echo "pgserver.sh: initdb failed" >&2
    exit 1
  fi
  # Durability is of no use to a server that lives for one test run.
  cat >>"$dir/data/postgresql.conf" <<CONF
listen_addresses = ''
unix_socket_directories = '$dir'
port = $port
fsync = off
synchronous_commit = off
full_page_writes = off
max_connections = 40
CONF
  if ! as_server "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 start >/dev/null; then
    cat "$dir/server.log" >&2 || true
    rm -rf -- "$dir"
    echo "pgserver.sh: the server did not start" >&2
    exit 1
  fi
  cat >"$state" <<STATE
PGHOST=$dir
PGPORT=$port
PGUSER=zentaro
ZENTARO_PG_DIR=$dir
ZENTARO_PG_BINDIR=$bin
STATE
  echo "PostgreSQL server on $dir (port $port)"
}

case $action in
  start) start ;;
  stop) stop ;;
  *) echo "usage: $0 start|stop STATEFILE" >&2; exit 2 ;;
esac
