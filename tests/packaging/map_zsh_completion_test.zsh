#!/usr/bin/env zsh
# The zsh completion of trovisk-map: map_zsh_completion_test.zsh COMPLETION-FILE
. ${0:A:h}/zsh_shell.zsh $1 trovisk-map

expect "trovisk-map d" = "trovisk-map disk.img "
expect "trovisk-map tw" = "trovisk-map two\\ words.IMG "
expect "trovisk-map images/" = "trovisk-map images/usb.dd "
expect "trovisk-map n" = "trovisk-map notes.txt " # no image: any file
expect "trovisk-map --j" = "trovisk-map --json "
expect "trovisk-map --al" = "trovisk-map --all "
expect "trovisk-map --json d" = "trovisk-map --json disk.img "
expect "trovisk-map --compare s" = "trovisk-map --compare saved.json "
expect "trovisk-map --color=n" = "trovisk-map --color=never "
expect "trovisk-map -o n" = "trovisk-map -o notes.txt "
expect "trovisk-map --html=n" = "trovisk-map --html=notes.txt "
expect "trovisk-map disk.img d" = "trovisk-map disk.img d" # one disk alone
zpty -d shell

exit $failed
