# bash completion for trovisk: the disks of this machine, image files, and the two options.
# shellcheck shell=bash

_trovisk() {
  COMPREPLY=()
  # Sector numbers follow the disk.
  [ "$COMP_CWORD" -eq 1 ] || return 0
  local current=${COMP_WORDS[1]} entry name size file

  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '--help --version' -- "$current")
  fi
  for entry in /sys/block/*; do
    name=/dev/${entry##*/}
    name=${name//!//}
    # A drive without a medium has no size, nor has a loop device without a file.
    if [[ $name == "$current"* ]] && read -r size <"$entry/size" && [ "$size" != 0 ]; then
      COMPREPLY+=("$name")
    fi
  done 2>/dev/null

  while IFS= read -r file; do
    case ${file,,} in
      *.img | *.raw | *.dd | *.bin | *.iso | *.ima | *.000 | *.001 | *.aa | *.e01 | *.s01 | *.vhd | *.vhdx | *.vmdk | *.qcow2) COMPREPLY+=("$file") ;;
    esac
  done < <(compgen -f -- "$current")
  while IFS= read -r file; do
    COMPREPLY+=("$file")
  done < <(compgen -d -- "$current")
}

# Where no disk and no image fits, any file name does.
complete -o filenames -o bashdefault -o default -F _trovisk trovisk
