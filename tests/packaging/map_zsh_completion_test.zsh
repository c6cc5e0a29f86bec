#!/usr/bin/env zsh
# The zsh completion of trovisk-map: map_zsh_completion_test.zsh COMPLETION-FILE
#
# A shell on a terminal of its own completes each line as its user would, by the tab key, and says what the line has
# become.
setopt err_exit no_unset pipe_fail
zmodload zsh/zpty
completion=${1:A}
folder=$(mktemp -d)
trap 'rm -rf $folder' EXIT
mkdir -p $folder/functions $folder/files/images
cp $completion $folder/functions/_trovisk-map
cd $folder/files
touch disk.img "two words.IMG" other.raw saved.json notes.txt images/usb.dd images/usb.txt
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
