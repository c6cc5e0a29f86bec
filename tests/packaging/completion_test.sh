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

# expect WORD... = COMPLETION...: the last word is the one under the cursor.
expect() {
  local -a words=(trovisk)
  while [ "$1" != = ]; do
    words+=("$1")
    shift
  done
  shift
  COMP_WORDS=("${words[@]}")
  COMP_CWORD=$((${#words[@]} - 1))
  COMPREPLY=()
  _trovisk
  local found wanted
  found=$(printf '[%s] ' "${COMPREPLY[@]}" | tr ' ' '\n' | sort -u)
  wanted=$(printf '[%s] ' "$@" | tr ' ' '\n' | sort -u)
  if [ "$found" != "$wanted" ]; then
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

# What the system lists as disks, with a medium in them.
disks=()
while read -r size name; do
  if [ "$size" != 0 ]; then disks+=("$name"); fi
done < <(lsblk --nodeps --noheadings --bytes --paths --output SIZE,NAME --exclude '' 2>/dev/null)
while IFS= read -r entry; do disks+=("$entry"); done < <(compgen -d /dev/)
expect /dev/ = "${disks[@]}"
exit $failed
