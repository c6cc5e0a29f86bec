#!/usr/bin/env zsh
# The zsh completion: zsh_completion_test.zsh COMPLETION-FILE
. ${0:A:h}/zsh_shell.zsh $1 trovisk

expect "trovisk d" = "trovisk disk.img "
expect "trovisk tw" = "trovisk two\\ words.IMG "
expect "trovisk o" = "trovisk other.raw "
expect "trovisk i" = "trovisk images/"
expect "trovisk images/" = "trovisk images/usb.dd "
expect "trovisk n" = "trovisk notes.txt " # no image: any file
expect "trovisk --h" = "trovisk --help "
expect "trovisk --v" = "trovisk --version "
expect "trovisk disk.img d" = "trovisk disk.img d" # sectors are not completed
expect "trovisk disk.img 1 d" = "trovisk disk.img 1 d"

# Each disk that the system lists, with a medium in it, is one; a name that others begin with is not finished.
listed=(/sys/block/*(N:t))
for name in $listed; do
  size=0
  read -r size </sys/block/$name/size || true
  if [[ $size == 0 || $name == loop* || ${#${(M)listed:#$name*}} != 1 ]]; then continue; fi
  expect "trovisk /dev/${name//!//}" = "trovisk /dev/${name//!//} "
done
zpty -d shell

exit $failed
