#!/usr/bin/env zsh
# The zsh completion: zsh_completion_test.zsh COMPLETION-FILE
#
# A shell on a terminal of its own completes each line as its user would, by the tab key, and says what the line has
# become.
setopt err_exit no_unset pipe_fail
zmodload zsh/zpty
completion=${1:A}
folder=$(mktemp -d)
trap 'rm -rf $folder' EXIT
mkdir -p $folder/functions $folder/files/images
cp $completion $folder/functions/_trovisk
cd $folder/files
touch disk.img "two words.IMG" other.raw notes.txt images/usb.dd images/usb.txt images/usb.ddx
failed=0

# completed LINE: what the line becomes.
completed() {
  rm -f $folder/line
  zpty -w -n shell $1$'\t\C-t'
  local -i tries=0
  until [[ -s $folder/line ]] || ((++tries > 200)); do sleep 0.05; done
  cat $folder/line
}

# expect LINE = COMPLETED
expect() {
  local line=$(completed $1)
  if [[ $line != "$3" ]]; then
    print -u 2 -r -- "$1: became '$line', not '$3'"
    failed=1
  fi
}

cat >$folder/.zshrc <<SETUP
PS1=
cd $folder/files
fpath=($folder/functions \$fpath)
autoload -Uz compinit
compinit -u -d $folder/dump
unsetopt beep always_last_prompt
tell() { print -r -- "\$BUFFER" >$folder/telling; mv $folder/telling $folder/line; BUFFER=; zle -I; }
zle -N tell
bindkey -e
bindkey '^I' complete-word
bindkey '^T' tell
print ready >$folder/ready
SETUP
zpty -b shell "ZDOTDIR=$folder TERM=dumb LC_ALL=C.UTF-8 zsh -d -i"
until [[ -e $folder/ready ]]; do sleep 0.05; done

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
