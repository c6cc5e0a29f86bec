#!/usr/bin/env bash
# The bash completion: completion_test.sh COMPLETION-FILE
# shellcheck source=tests/packaging/bash_shell.sh
. "$(dirname "$0")/bash_shell.sh" "$1" trovisk _trovisk

expect d = disk.img disk.raw
touch evidence.E01 evidence.E02 split.001 split.002
expect e = evidence.E01 # the first file stands for all
expect s = split.001
rm evidence.* split.*
expect two = "two words.IMG"
expect i = images
expect images/ = images/usb.dd
expect notes =             # no image: left to the default, any file
expect -- = --help --version
expect --v = --version
expect -x =
expect disk.img -- =
expect disk.img 1 =        # sectors are not completed
expect disk.img 1 2 =

# What the system lists as disks, with a medium in them; but for loop devices, which come and go. Where lsblk
# finds nothing to list from, nothing is offered either.
offered /dev/ 2>errors
for entry in "${COMPREPLY[@]}"; do
  if [ ! -d "$entry" ] && [[ $entry != /dev/loop* ]]; then echo "$entry"; fi
done | sort >offered
{ lsblk --nodeps --noheadings --bytes --raw --paths --output NAME,SIZE --exclude 7 2>/dev/null || true; } |
  awk '$2 != 0 { print $1 }' | sort >listed
diff -u listed offered || failed=1
if [ -s errors ]; then
  echo "/dev/: complains: $(cat errors)" >&2
  failed=1
fi

# A machine that tells nothing of its disks: no /sys, and an lsblk that complains. Images are offered all the same.
mkdir tools
printf '#!/bin/sh\necho "no sysfs" >&2\nexit 1\n' >tools/lsblk
chmod +x tools/lsblk
# shellcheck disable=SC2016 # the inner shell expands it
without_sys=(unshare --mount --map-root-user bash -c 'mount -t tmpfs none /sys || exit 1
  . "$0"
  COMP_CWORD=1
  for word in /dev/ d; do
    COMP_WORDS=(trovisk "$word")
    _trovisk
    printf "%s\n" "${COMPREPLY[@]}"
  done' "$completion")
if unshare --mount --map-root-user mount -t tmpfs none /sys 2>/dev/null; then
  PATH=$folder/tools:$PATH "${without_sys[@]}" 2>errors | { grep -v '^/dev/' || true; } | sort >offered
  printf '%s\n' disk.img disk.raw >listed
  diff -u listed offered || failed=1
  if [ -s errors ]; then
    echo "without /sys: complains: $(cat errors)" >&2
    failed=1
  fi
fi
exit $failed
