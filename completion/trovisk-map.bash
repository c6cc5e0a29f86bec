# bash completion for trovisk-map: options, the disks of this machine, image files and saved maps.
# shellcheck shell=bash

# Adds the files that end in one of the endings, and folders on the way to them.
_trovisk_map_files() {
  local current=$1 file endings=$2
  while IFS= read -r file; do
    if [[ ${file,,} =~ \.($endings)$ ]]; then COMPREPLY+=("$file"); fi
  done < <(compgen -f -- "$current")
  while IFS= read -r file; do
    COMPREPLY+=("$file")
  done < <(compgen -d -- "$current")
}

_trovisk_map_disks() {
  local current=$1 entry name size
  for entry in /sys/block/*; do
    name=/dev/${entry##*/}
    name=${name//!//}
    # A drive without a medium has no size, nor has a loop device without a file.
    if [[ $name == "$current"* ]] && read -r size <"$entry/size" && [ "$size" != 0 ]; then
      COMPREPLY+=("$name")
    fi
  done 2>/dev/null
}

_trovisk_map() {
  COMPREPLY=()
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local images='img|raw|dd|bin|iso|ima|000|001|aa|e01|s01|vhd|vhdx|vmdk|qcow2'
  case $previous in
    --color)
      mapfile -t COMPREPLY < <(compgen -W 'auto always never' -- "$current")
      return
      ;;
    --width) return ;;
    -o | --output | --html) return ;; # any file name
    --compare)
      _trovisk_map_disks "$current"
      _trovisk_map_files "$current" "$images|json"
      return
      ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '--json --html --sfdisk --compare --list --output --all --width --color --help
      --version' -- "$current")
    return
  fi
  _trovisk_map_disks "$current"
  # A saved map stands for a disk where it is compared.
  if [[ " ${COMP_WORDS[*]} " == *' --compare '* ]]; then images+='|json'; fi
  _trovisk_map_files "$current" "$images"
}

# Where no disk and no image fits, any file name does.
complete -o filenames -o bashdefault -o default -F _trovisk_map trovisk-map
