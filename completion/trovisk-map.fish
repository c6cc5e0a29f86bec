# fish completion for trovisk-map: options, the disks of this machine, image files and saved maps.

# A drive without a medium has no size, nor has a loop device without a file.
function __trovisk_map_disks --description 'The disks of this machine'
    for entry in /sys/block/*
        set --local size 0
        read size <$entry/size 2>/dev/null
        if test "$size" != 0
            string replace --all '!' / -- (string replace /sys/block/ /dev/ -- $entry)
        end
    end
end

# Where no image fits, any file does.
function __trovisk_map_files --description 'Image files and saved maps, and folders on the way to them'
    set --local files (__fish_complete_path (commandline --current-token) | string replace --regex '\t.*' '')
    string match --regex --ignore-case '.*(?:/|\.(?:img|raw|dd|bin|iso|ima|000|001|aa|e01|s01|vhd|vhdx|vmdk|qcow2|json))$' -- $files
    or string collect -- $files
end

complete --command trovisk-map --no-files
complete --command trovisk-map --arguments '(__trovisk_map_disks)' --description Disk
complete --command trovisk-map --arguments '(__trovisk_map_files)'
complete --command trovisk-map --long-option json --description 'One JSON document'
complete --command trovisk-map --long-option html --require-parameter --force-files --description 'A page for a browser'
complete --command trovisk-map --long-option sfdisk --description 'A script for sfdisk'
complete --command trovisk-map --long-option compare --require-parameter --description 'Compare with a disk or a saved map' --arguments '(__trovisk_map_disks; __trovisk_map_files)'
complete --command trovisk-map --long-option list --description 'The disks of this machine'
complete --command trovisk-map --short-option o --long-option output --require-parameter --force-files --description 'Write a file'
complete --command trovisk-map --long-option all --description 'Every row and every check'
complete --command trovisk-map --long-option width --exclusive --description 'A table for so many columns'
complete --command trovisk-map --long-option color --exclusive --arguments 'auto always never' --description 'When to use colours'
complete --command trovisk-map --short-option h --long-option help --description 'How it is called'
complete --command trovisk-map --long-option version --description 'Its version'
