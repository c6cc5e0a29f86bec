#!/usr/bin/env bash
# The bash completion of trovisk-map: map_completion_test.sh COMPLETION-FILE
set -euo pipefail
completion=$(readlink -f "$1")
# shellcheck source=completion/trovisk-map.bash
. "$completion"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir images
touch disk.img "two words.IMG" disk.raw old.json notes.txt images/usb.dd images/usb.txt
failed=0

# expect WORD... = COMPLETION...
expect() {
  local -a words=()
  while [ "$1" != = ]; do
    words+=("$1")
    shift
  done
  shift
  COMP_WORDS=(trovisk-map "${words[@]}")
  COMP_CWORD=${#words[@]}
  _trovisk_map 2>errors
  if [ -s errors ]; then
    echo "${words[*]}: complains: $(cat errors)" >&2
    failed=1
  fi
  if [ "$(printf '%s\n' "${COMPREPLY[@]}" | sort -u)" != "$(printf '%s\n' "$@" | sort -u)" ]; then
    echo "${words[*]}: offered ${COMPREPLY[*]}, not $*" >&2
    failed=1
  fi
}

expect d = disk.img disk.raw
expect two = "two words.IMG"
expect images/ = images/usb.dd
expect notes =                      # no image: left to the default, any file
expect old =                        # a saved map is no disk
expect --compare old = old.json     # but it can be compared
expect --compare old.json o = old.json
expect --json d = disk.img disk.raw # options stand before the disk
expect -- = --json --html --sfdisk --compare --list --output --all --width --color --help --version
expect --co = --compare --color
expect --color = --color
expect --color a = auto always
expect --color never d = disk.img disk.raw
expect --width 4 =
expect --html d =
expect --output d =                 # any file: left to the default
expect -o d =
exit $failed
