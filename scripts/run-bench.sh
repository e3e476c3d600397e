#!/usr/bin/env bash
# Runs every benchmark program of the build, with the services of the tests started (each
# scripts/services/*.sh, on 127.0.0.1 only, in a throw-away folder) for the benchmarks that use them.
set -euo pipefail
build=${1:-build}
top=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d /tmp/virn-bench.XXXXXX)
started=()
stop_all() {
  for s in "${started[@]}"; do "$s" stop "$scratch" >/dev/null 2>&1 || true; done
  rm -rf "$scratch"
}
trap stop_all EXIT
shopt -s nullglob
for s in "$top"/scripts/services/*.sh; do
  if env_lines=$("$s" start "$scratch"); then
    started+=("$s")
    eval "$env_lines"
  else
    echo "service $(basename "$s") failed to start; its benchmarks will say so" >&2
  fi
done
found=0
for b in "$top/$build"/bench/bench_*; do
  [[ -x "$b" && -f "$b" ]] || continue
  found=1
  echo "== $(basename "$b")"
  "$b"
done
((found)) || echo "no benchmarks built"
