#!/usr/bin/env bash
# The fish completion: fish_completion_test.sh COMPLETION-FILE
set -euo pipefail
completion=$(readlink -f "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export HOME=$folder/home LC_ALL=C.UTF-8
mkdir -p "$HOME" "$folder/files/images"
cd "$folder/files"
touch disk.img "two words.IMG" disk.raw notes.txt images/usb.dd images/usb.txt
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

expect "trovisk d" = disk.img disk.raw
expect "trovisk tw" = "two words.IMG"
expect "trovisk i" = images/
expect "trovisk images/" = images/usb.dd
expect "trovisk notes" = notes.txt    # no image: any file
expect "trovisk --" = --help --version
expect "trovisk --h" = --help
expect "trovisk disk.img --" =        # no options behind a disk
expect "trovisk disk.img " =          # sectors are not completed
expect "trovisk disk.img 1 d" =

# What the system lists as disks, with a medium in them; but for loop devices, which come and go.
for entry in /sys/block/*; do
  name=/dev/${entry##*/}
  [[ $name == /dev/loop* || $(cat "$entry/size" 2>/dev/null || echo 0) == 0 ]] || echo "${name//!//}"
done | sort >"$folder/listed"
offered "trovisk /dev/" | while IFS= read -r entry; do
  if [ -b "$entry" ] || grep -qxF "$entry" "$folder/listed"; then echo "$entry"; fi
done | { grep -v '^/dev/loop' || true; } | sort >"$folder/offered"
diff -u "$folder/listed" "$folder/offered" || failed=1
exit $failed
