#!/usr/bin/env bash
# The fish completion of trovisk-map: map_fish_completion_test.sh COMPLETION-FILE
# shellcheck source=tests/packaging/fish_shell.sh
. "$(dirname "$0")/fish_shell.sh" "$1"

expect "trovisk-map d" = disk.img disk.raw
touch evidence.E01 evidence.E02
expect "trovisk-map e" = evidence.E01 # the first file stands for all
rm evidence.*
expect "trovisk-map tw" = "two words.IMG"
expect "trovisk-map notes" = notes.txt # no image: any file
expect "trovisk-map --" = --all --color --compare --help --html --json --list --output --sfdisk --version --width
expect "trovisk-map --color " = auto always never
expect "trovisk-map --compare ol" = old.json
expect "trovisk-map --output no" = notes.txt
expect "trovisk-map --html no" = notes.txt
expect "trovisk-map --json d" = disk.img disk.raw
exit $failed
