# Shared by the scripts of this folder: sourced, not run.
# shellcheck shell=bash
set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
name=${0##*/}
PATH=$PATH:/usr/sbin:/sbin

say() { printf '%s: %s\n' "$name" "$*" >&2; }

# Runs a command with its output kept back; shows it only when the command fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 || status=$?
  if [ $status -ne 0 ]; then
    cat "$log" >&2
    say "failed: $*"
  fi
  rm -f "$log"
  return $status
}

# build PRESET TARGET...: configures build/PRESET and builds the targets.
build() {
  local preset=$1 generator=()
  shift
  if [ ! -e "$top/build/$preset/CMakeCache.txt" ] && command -v ninja >/dev/null; then generator=(-G Ninja); fi
  say "building $preset"
  (
    cd "$top"
    quietly cmake --preset "$preset" "${generator[@]}"
    quietly cmake --build "build/$preset" --parallel "$(nproc)" --target "$@"
  )
}
