#compdef trovisk-map
# zsh completion for trovisk-map: options, the disks of this machine, image files and saved maps.

_trovisk_map_disk() {
  local -a disks
  local entry size
  for entry in /sys/block/*(N); do
    size=0
    read -r size <$entry/size
    # A drive without a medium has no size, nor has a loop device without a file.
    if [[ $size != 0 ]]; then disks+=(/dev/${${entry:t}//!//}); fi
  done 2>/dev/null
  # Where no disk and no image fits, any file name does; _files alone would offer the disks once more.
  _alternative 'disks:disk:compadd -a disks' \
    'images:image file or saved map:_path_files -g "(#i)*.(img|raw|dd|bin|iso|ima|000|001|aa|e01|s01|vhd|vhdx|vmdk|qcow2|json)(-.)"' \
    'folders:folder:_path_files -/' || _files
}

_arguments '(- *)'{-h,--help}'[how it is called]' '(- *)--version[its version]' \
  '(--html --sfdisk --compare --list)--json[one JSON document]' \
  '(--json --sfdisk --compare --list -o --output)--html=[a page for a browser]:file:_files' \
  '(--json --html --compare --list)--sfdisk[a script for sfdisk]' \
  '(--json --html --sfdisk --list)--compare=[compare with a disk or a saved map]:older disk or map:_trovisk_map_disk' \
  '(--json --html --sfdisk --compare 1)--list[the disks of this machine]' \
  '(-o --output --html)'{-o+,--output=}'[write a file in place of standard output]:file:_files' \
  '--all[every row and every check]' \
  '--width=[a table for so many columns]:columns:' \
  '--color=[when to use colours]:when:(auto always never)' \
  '1:disk:_trovisk_map_disk'
