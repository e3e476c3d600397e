#!/usr/bin/env bash
# Runs every benchmark program of the build.
set -euo pipefail
build=${1:-build}
top=$(cd "$(dirname "$0")/.." && pwd)
shopt -s nullglob
found=0
for b in "$top/$build"/bench/bench_*; do
  [[ -x "$b" && -f "$b" ]] || continue
  found=1
  echo "== $(basename "$b")"
  "$b"
done
((found)) || echo "no benchmarks built"
