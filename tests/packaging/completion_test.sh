#!/usr/bin/env bash
# The bash completion: completion_test.sh COMPLETION-FILE
set -euo pipefail
# shellcheck source=completion/trovisk.bash
. "$1"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir images
touch disk.img "two words.IMG" disk.raw notes.txt images/usb.dd images/usb.txt
failed=0

# offered WORD...: what is offered for the last word.
offered() {
  COMP_WORDS=(trovisk "$@")
  COMP_CWORD=$#
  _trovisk
}

# expect WORD... = COMPLETION...
expect() {
  local -a words=()
  while [ "$1" != = ]; do
    words+=("$1")
    shift
  done
  shift
  offered "${words[@]}"
  if [ "$(printf '%s\n' "${COMPREPLY[@]}" | sort -u)" != "$(printf '%s\n' "$@" | sort -u)" ]; then
    echo "${words[*]}: offered ${COMPREPLY[*]}, not $*" >&2
    failed=1
  fi
}

expect d = disk.img disk.raw
expect two = "two words.IMG"
expect i = images
expect images/ = images/usb.dd
expect notes =             # no image: left to the default, any file
expect disk.img 1 =        # sectors are not completed
expect disk.img 1 2 =

# What the system lists as disks, with a medium in them; but for loop devices, which come and go.
offered /dev/
for entry in "${COMPREPLY[@]}"; do
  if [ ! -d "$entry" ] && [[ $entry != /dev/loop* ]]; then echo "$entry"; fi
done | sort >offered
lsblk --nodeps --noheadings --bytes --raw --paths --output NAME,SIZE --exclude 7 |
  awk '$2 != 0 { print $1 }' | sort >listed
diff -u listed offered
exit $failed
