# For the tests of bash completions. Sourced with the completion's file, its command and its function; the files to
# complete stand in the working folder then, and what is not as expected sets failed.
# shellcheck shell=bash disable=SC2034
set -euo pipefail
completion=$(readlink -f "$1")
command=$2
function=$3
# shellcheck source=completion/trovisk.bash
. "$completion"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir images
touch disk.img "two words.IMG" disk.raw old.json notes.txt images/usb.dd images/usb.txt
failed=0

# offered WORD...: what is offered for the last word.
offered() {
  COMP_WORDS=("$command" "$@")
  COMP_CWORD=$#
  "$function"
}

# expect WORD... = COMPLETION...
expect() {
  local -a words=()
  while [ "$1" != = ]; do
    words+=("$1")
    shift
  done
  shift
  offered "${words[@]}" 2>errors
  if [ -s errors ]; then
    echo "${words[*]}: complains: $(cat errors)" >&2
    failed=1
  fi
  if [ "$(printf '%s\n' "${COMPREPLY[@]}" | sort -u)" != "$(printf '%s\n' "$@" | sort -u)" ]; then
    echo "${words[*]}: offered ${COMPREPLY[*]}, not $*" >&2
    failed=1
  fi
}
