# fish completion for trovisk: the disks of this machine and image files.

function __trovisk_at_disk --description 'Whether the first argument is being typed'
    test (count (commandline --tokenize --cut-at-cursor --current-process)) -eq 1
end

# A drive without a medium has no size, nor has a loop device without a file.
function __trovisk_disks --description 'The disks of this machine'
    for entry in /sys/block/*
        set --local size 0
        read size <$entry/size 2>/dev/null
        if test "$size" != 0
            string replace --all '!' / -- (string replace /sys/block/ /dev/ -- $entry)
        end
    end
end

# Where no image fits, any file does.
function __trovisk_files --description 'Image files, and folders on the way to them'
    set --local files (__fish_complete_path (commandline --current-token) | string replace --regex '\t.*' '')
    string match --regex --ignore-case '.*(?:/|\.(?:img|raw|dd|bin|iso|ima|000|001|aa|e01|s01|vhd|vhdx|vmdk|qcow2))$' -- $files
    or string collect -- $files
end

# Sector numbers follow the disk.
complete --command trovisk --no-files
complete --command trovisk --condition __trovisk_at_disk --arguments '(__trovisk_disks)' --description Disk
complete --command trovisk --condition __trovisk_at_disk --arguments '(__trovisk_files)'
complete --command trovisk --condition __trovisk_at_disk --long-option help --description 'How it is called'
complete --command trovisk --condition __trovisk_at_disk --long-option version --description 'Its version'
