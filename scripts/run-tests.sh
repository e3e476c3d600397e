#!/usr/bin/env bash
# Starts the services the tests need (each scripts/services/*.sh, on 127.0.0.1 only, in a throw-away
# folder), runs every test with CTest, and stops the services whatever the outcome.
set -uo pipefail
build=${1:-build}
top=$(cd "$(dirname "$0")/.." && pwd)
case "$build" in /*) ;; *) build="$top/$build" ;; esac
export VIRN_BUILD_DIR="$build"
scratch=$(mktemp -d /tmp/virn-test.XXXXXX)
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
    echo "service $(basename "$s") failed to start; its tests will report why" >&2
  fi
done
export VIRN_TEST_SCRATCH="$scratch"
# A sanitized build (make sanitize) stops at the first report; the leaks of the system's own libraries
# (fontconfig, the X and GL stubs) are not the program's.
export ASAN_OPTIONS="abort_on_error=1:detect_leaks=1:detect_stack_use_after_return=0"
export LSAN_OPTIONS="suppressions=$top/scripts/sanitize.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
cd "$build" && ctest --output-on-failure -j 2 --timeout 600
