#compdef trovisk
# zsh completion for trovisk: the disks of this machine and image files.

_trovisk_disk() {
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
    'images:image file:_path_files -g "(#i)*.(img|raw|dd|bin|iso|ima|000|001|aa|e01|s01|vhd|vhdx|vmdk|qcow2)(-.)"' \
    'folders:folder:_path_files -/' || _files
}

# Sector numbers follow the disk.
_arguments '(- *)--help[how it is called]' '(- *)--version[its version]' \
  '1:disk:_trovisk_disk' '2:first sector:' '3:last sector:'
