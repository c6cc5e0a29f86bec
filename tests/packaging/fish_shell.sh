# For the tests of fish completions. Sourced with the completion's file; the files to complete stand in the working folder
# then, and what is not as expected sets failed.
# shellcheck shell=bash disable=SC2034
set -euo pipefail
completion=$(readlink -f "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export HOME=$folder/home LC_ALL=C.UTF-8
mkdir -p "$HOME" "$folder/files/images"
cd "$folder/files"
touch disk.img "two words.IMG" disk.raw old.json notes.txt images/usb.dd images/usb.txt
failed=0

# offered LINE: what is offered for the last word of a command line, without descriptions.
offered() {
  # shellcheck disable=SC2016 # fish expands it
  fish --no-config --command 'source $argv[1]; complete --do-complete $argv[2]' "$completion" "$1" | cut -f 1
}

# expect LINE = COMPLETION...
expect() {
  local line=$1
  shift 2
  offered "$line" >"$folder/offered" 2>"$folder/errors"
  if [ "$(sort "$folder/offered")" != "$(printf '%s\n' "$@" | sort)" ] || [ -s "$folder/errors" ]; then
    echo "$line: offered $(cat "$folder/offered" "$folder/errors"), not $*" >&2
    failed=1
  fi
}
