#!/usr/bin/env bash
# The fish completion of trovisk-map: map_fish_completion_test.sh COMPLETION-FILE
set -euo pipefail
completion=$(readlink -f "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export HOME=$folder/home LC_ALL=C.UTF-8
mkdir -p "$HOME" "$folder/files/images"
cd "$folder/files"
touch disk.img "two words.IMG" disk.raw old.json notes.txt images/usb.dd
failed=0

# expect LINE = COMPLETION...
expect() {
  local line=$1
  shift 2
  # shellcheck disable=SC2016 # fish expands it
  fish --no-config --command 'source $argv[1]; complete --do-complete $argv[2]' "$completion" "$line" 2>"$folder/errors" |
    cut -f 1 | sort >"$folder/offered"
  if [ "$(cat "$folder/offered")" != "$(printf '%s\n' "$@" | sort)" ] || [ -s "$folder/errors" ]; then
    echo "$line: offered $(cat "$folder/offered" "$folder/errors"), not $*" >&2
    failed=1
  fi
}

expect "trovisk-map d" = disk.img disk.raw
expect "trovisk-map tw" = "two words.IMG"
expect "trovisk-map notes" = notes.txt # no image: any file
expect "trovisk-map --" = --all --color --compare --help --html --json --list --output --sfdisk --version --width
expect "trovisk-map --color " = auto always never
expect "trovisk-map --compare ol" = old.json
expect "trovisk-map --output no" = notes.txt
expect "trovisk-map --html no" = notes.txt
expect "trovisk-map --json d" = disk.img disk.raw
exit $failed
