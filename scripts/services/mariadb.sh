#!/usr/bin/env bash
# Test MariaDB for the remote price list: `mariadb.sh start|stop <scratch dir>`.
# start: a private server as the current user on 127.0.0.1, a free port and a throw-away data folder
# inside the scratch folder; creates a test database and user and prints `export VAR=value` lines.
# stop: shuts that server down. Nothing outside the scratch folder is touched.
set -euo pipefail

cmd=${1:-}
scratch=${2:-}
if [[ -z "$cmd" || -z "$scratch" ]]; then
    echo "usage: $0 start|stop <scratch dir>" >&2
    exit 2
fi
source "$(dirname "$0")/../lib/services.sh"
base="$scratch/mariadb"
sock="$base/mysqld.sock"
pidfile="$base/mysqld.pid"

find_tool() {
    for t in "$@"; do
        if command -v "$t" >/dev/null 2>&1; then
            command -v "$t"
            return 0
        fi
        [[ -x "/usr/sbin/$t" ]] && { echo "/usr/sbin/$t"; return 0; }
    done
    return 1
}

port_is_free() {
    # A refused connection and no listener in ss means nobody uses the port.
    if (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; then
        return 1
    fi
    ! ss -ltn 2>/dev/null | awk '{print $4}' | grep -q ":$1\$"
}

stop_server() {
    stop_pidfile "$pidfile" 100
}

case "$cmd" in
start)
    server=$(find_tool mariadbd mysqld) || { echo "mariadb.sh: mariadbd not installed (mariadb-server)" >&2; exit 1; }
    installer=$(find_tool mariadb-install-db mysql_install_db) || { echo "mariadb.sh: mariadb-install-db missing" >&2; exit 1; }
    client=$(find_tool mariadb mysql) || { echo "mariadb.sh: mariadb client missing" >&2; exit 1; }
    mkdir -p "$base"
    rm -rf "$base/data"
    user=$(id -un)
    "$installer" --no-defaults --user="$user" --datadir="$base/data" --auth-root-authentication-method=normal \
        --skip-test-db >"$base/install.log" 2>&1 || { cat "$base/install.log" >&2; exit 1; }

    started=""
    for _ in $(seq 1 20); do
        port=$((20000 + RANDOM % 30000))
        port_is_free "$port" || continue
        "$server" --no-defaults --user="$user" --datadir="$base/data" --socket="$sock" --pid-file="$pidfile" \
            --port="$port" --bind-address=127.0.0.1 --skip-name-resolve --log-error="$base/error.log" \
            --innodb-buffer-pool-size=32M --character-set-server=utf8mb4 --collation-server=utf8mb4_unicode_ci \
            >/dev/null 2>&1 &
        srv=$!
        for _ in $(seq 1 300); do
            if "$client" --no-defaults --protocol=socket --socket="$sock" -uroot -e 'SELECT 1' >/dev/null 2>&1; then
                started=yes
                break
            fi
            kill -0 "$srv" 2>/dev/null || break
            sleep 0.1
        done
        [[ -n "$started" ]] && break
        kill "$srv" 2>/dev/null || true
        wait "$srv" 2>/dev/null || true
    done
    if [[ -z "$started" ]]; then
        echo "mariadb.sh: the server did not start; see $base/error.log" >&2
        tail -n 20 "$base/error.log" >&2 2>/dev/null || true
        exit 1
    fi
    password="t$(date +%s%N | sha256sum | cut -c1-20)"
    "$client" --no-defaults --protocol=socket --socket="$sock" -uroot <<SQL
CREATE DATABASE virn_test DEFAULT CHARACTER SET utf8mb4;
CREATE USER 'virn'@'127.0.0.1' IDENTIFIED BY '$password';
GRANT ALL PRIVILEGES ON virn_test.* TO 'virn'@'127.0.0.1';
FLUSH PRIVILEGES;
SQL
    echo "export VIRN_TEST_MYSQL_HOST=127.0.0.1"
    echo "export VIRN_TEST_MYSQL_PORT=$port"
    echo "export VIRN_TEST_MYSQL_USER=virn"
    echo "export VIRN_TEST_MYSQL_PASSWORD=$password"
    echo "export VIRN_TEST_MYSQL_DB=virn_test"
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
