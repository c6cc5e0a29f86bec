#!/usr/bin/env bash
# The bash completion of trovisk-map: map_completion_test.sh COMPLETION-FILE
# shellcheck source=tests/packaging/bash_shell.sh
. "$(dirname "$0")/bash_shell.sh" "$1" trovisk-map _trovisk_map

expect d = disk.img disk.raw
touch evidence.E01 evidence.E02 split.001 split.002
expect e = evidence.E01 # the first file stands for all
expect s = split.001
rm evidence.* split.*
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
