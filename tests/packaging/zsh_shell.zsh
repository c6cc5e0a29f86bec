# For the tests of zsh completions: a shell on a terminal of its own, which completes each line as its user would, by the
# tab key, and says what the line has become. Sourced with the completion's file and its command; the files to complete
# stand in the working folder then, and what is not as expected sets failed.
setopt err_exit no_unset pipe_fail
zmodload zsh/zpty
folder=$(mktemp -d)
trap 'rm -rf $folder' EXIT
mkdir -p $folder/functions $folder/files/images
cp ${1:A} $folder/functions/_$2
cd $folder/files
touch disk.img "two words.IMG" other.raw saved.json notes.txt images/usb.dd images/usb.txt images/usb.ddx
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
