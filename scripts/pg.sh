#!/usr/bin/env bash
# A throwaway PostgreSQL cluster for the tests, listening only on 127.0.0.1.
#
#   scripts/pg.sh start       creates and starts a cluster in a fresh folder under /tmp with the
#                             database kmf_test; prints two lines on stdout:
#                               postgresql://postgres@127.0.0.1:PORT/kmf_test
#                               /tmp/kmf_pg.XXXXXX   (the folder, for stop)
#   scripts/pg.sh stop DIR    stops that cluster and removes its folder
#
# Authentication is "trust" for local connections: the cluster holds test data only and accepts
# connections from this machine alone. When run as root, the server runs as the OS user
# `postgres` (initdb refuses root). The binaries come from PG_BIN, else the Debian location.
#
# Typical use:
#   { read -r KMF_TEST_PG; read -r pg_dir; } < <(scripts/pg.sh start)
#   export KMF_TEST_PG
#   ...
#   scripts/pg.sh stop "$pg_dir"
set -euo pipefail

PG_BIN=${PG_BIN:-/usr/lib/postgresql/15/bin}
MARKER=kmf_throwaway_cluster

die() {
  echo "pg.sh: $*" >&2
  exit 1
}

# Runs a command as the cluster's owner: `postgres` when we are root, else ourselves.
as_owner() {
  if [ "$(id -u)" -eq 0 ]; then
    runuser -u postgres -- "$@"
  else
    "$@"
  fi
}

port_in_use() {
  ss -Htln 2>/dev/null | awk '{print $4}' | grep -Eq "[:.]$1\$"
}

free_port() {
  local port
  for _ in $(seq 1 200); do
    port=$((20000 + RANDOM % 40000))
    if ! port_in_use "$port"; then
      echo "$port"
      return 0
    fi
  done
  die "no free port found on 127.0.0.1"
}

start() {
  [ -x "$PG_BIN/initdb" ] || die "PostgreSQL server binaries not found in $PG_BIN (package postgresql-15)"
  local dir
  dir=$(mktemp -d /tmp/kmf_pg.XXXXXX)
  chmod 755 "$dir"
  touch "$dir/$MARKER"
  if [ "$(id -u)" -eq 0 ]; then
    chown postgres: "$dir"
  fi
  # UTF-8 with a UTF-8 character classification, so ILIKE and lower() fold accented letters.
  if ! as_owner "$PG_BIN/initdb" -D "$dir/data" -U postgres -A trust -E UTF8 \
    --locale=C.UTF-8 --lc-collate=C >"$dir/initdb.log" 2>&1; then
    cat "$dir/initdb.log" >&2
    rm -rf "$dir"
    die "initdb failed"
  fi
  cat >>"$dir/data/postgresql.conf" <<EOF

# Throwaway test cluster: loopback only, no durability needed.
listen_addresses = '127.0.0.1'
unix_socket_directories = '$dir'
fsync = off
synchronous_commit = off
full_page_writes = off
max_connections = 50
EOF
  local port started=""
  for _ in 1 2 3 4 5; do
    port=$(free_port)
    if as_owner "$PG_BIN/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 \
      -o "-p $port" start >/dev/null 2>&1; then
      started=yes
      break
    fi
    # Most likely the port was taken between the check and the start: try another one.
  done
  if [ -z "$started" ]; then
    cat "$dir/server.log" >&2 || true
    rm -rf "$dir"
    die "the server did not start"
  fi
  if ! as_owner "$PG_BIN/createdb" -h 127.0.0.1 -p "$port" -U postgres kmf_test; then
    stop "$dir"
    die "createdb failed"
  fi
  echo "postgresql://postgres@127.0.0.1:$port/kmf_test"
  echo "$dir"
}

stop() {
  local dir=${1:-}
  [ -n "$dir" ] || die "usage: pg.sh stop DIR"
  [ -f "$dir/$MARKER" ] || die "$dir is not a cluster created by pg.sh start"
  if [ -f "$dir/data/postmaster.pid" ]; then
    as_owner "$PG_BIN/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 ||
      echo "pg.sh: pg_ctl stop failed; removing the folder anyway" >&2
  fi
  rm -rf "$dir"
}

case "${1:-}" in
  start) start ;;
  stop) stop "${2:-}" ;;
  *) die "usage: pg.sh start | pg.sh stop DIR" ;;
esac
