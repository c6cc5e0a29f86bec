#!/usr/bin/env bash
# The fish completion: fish_completion_test.sh COMPLETION-FILE
# shellcheck source=tests/packaging/fish_shell.sh
. "$(dirname "$0")/fish_shell.sh" "$1"

expect "trovisk d" = disk.img disk.raw
touch evidence.E01 evidence.E02
expect "trovisk e" = evidence.E01 # the first file stands for all
rm evidence.*
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
