# What the service scripts share (sourced, not run): stop_pidfile FILE [TENTHS] stops the process
# whose id FILE holds (TERM, then KILL after TENTHS tenths of a second, 100 by default) and removes
# FILE; nothing happens when there is no such file.
stop_pidfile() {
    local pidfile=$1 tenths=${2:-100} pid
    [[ -f "$pidfile" ]] || return 0
    pid=$(cat "$pidfile" 2>/dev/null || true)
    if [[ -n "$pid" ]]; then
        kill "$pid" 2>/dev/null || true
        for _ in $(seq 1 "$tenths"); do
            kill -0 "$pid" 2>/dev/null || break
            sleep 0.1
        done
        kill -9 "$pid" 2>/dev/null || true
    fi
    rm -f "$pidfile"
}
