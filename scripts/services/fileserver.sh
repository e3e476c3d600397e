#!/usr/bin/env bash
# The program's file server for the tests and `make run`: `fileserver.sh start|stop <scratch dir>`.
# start: the build's virn-fileserver ($VIRN_BUILD_DIR, else build/) on 127.0.0.1 and a free port,
# with a fresh data folder inside the scratch folder, seeded from the build (the program's own
# version, release notes, a news text, the figure-area plug-in) and one account ($VIRN_FILESERVER_KEY
# or a random one); prints `export VAR=value` lines: VIRN_TEST_FILESERVER_URL, _KEY, _DATA, _LOG.
# stop: stops that server. Nothing outside the scratch folder is touched.
set -euo pipefail

cmd=${1:-}
scratch=${2:-}
if [[ -z "$cmd" || -z "$scratch" ]]; then
    echo "usage: $0 start|stop <scratch dir>" >&2
    exit 2
fi
top=$(cd "$(dirname "$0")/../.." && pwd)
source "$top/scripts/lib/services.sh"
build=${VIRN_BUILD_DIR:-$top/build}
base="$scratch/fileserver"
pidfile="$base/server.pid"

stop_server() {
    stop_pidfile "$pidfile" 50
}

case "$cmd" in
start)
    bin="$build/fileserver/virn-fileserver"
    seed="$build/fileserver/seed"
    [[ -x "$bin" ]] || { echo "fileserver.sh: $bin is not built" >&2; exit 1; }
    [[ -f "$seed/virn_8/square_shapes.so" ]] || { echo "fileserver.sh: $seed has no plug-in (build square_shapes)" >&2; exit 1; }
    stop_server
    rm -rf "$base"
    mkdir -p "$base/data"
    cp -R "$seed/." "$base/data/"
    key=${VIRN_FILESERVER_KEY:-test_$(date +%s%N | sha256sum | cut -c1-16)}
    echo "$key" >"$base/data/accounts.txt"
    # The server's output goes to files: a caller reading this script's output must not wait for it.
    "$bin" --listen 127.0.0.1 --port 0 --port-file "$base/port" --log "$base/requests.log" "$base/data" \
        >/dev/null 2>"$base/server.err" </dev/null &
    echo $! >"$pidfile"
    for _ in $(seq 1 100); do
        [[ -s "$base/port" ]] && break
        kill -0 "$(cat "$pidfile")" 2>/dev/null || break
        sleep 0.1
    done
    if [[ ! -s "$base/port" ]]; then
        echo "fileserver.sh: the server did not start:" >&2
        cat "$base/server.err" >&2 || true
        stop_server
        exit 1
    fi
    echo "export VIRN_TEST_FILESERVER_URL=http://127.0.0.1:$(cat "$base/port")"
    echo "export VIRN_TEST_FILESERVER_KEY=$key"
    echo "export VIRN_TEST_FILESERVER_DATA=$base/data"
    echo "export VIRN_TEST_FILESERVER_LOG=$base/requests.log"
    ;;
stop)
    stop_server
    rm -rf "$base"
    ;;
*)
    echo "usage: $0 start|stop <scratch dir>" >&2
    exit 2
    ;;
esac
