# What is installed where, and CPack's packages: a .deb and a .tar.gz on Linux, a .zip for Windows. The .deb
# is the same whenever and wherever it is made; the .zip takes in the maker's user number and the folder's
# order, so script/package makes its own.

set(programs trovisk)
if(TROVISK_MAP)
  list(APPEND programs trovisk-map)
  install(FILES map/map.schema.json packaging/third_party_licenses.txt DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(NOT WIN32)
  foreach(program IN LISTS programs)
    install(FILES man/${program}.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
    install(
      FILES completion/${program}.bash
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
      RENAME ${program})
    install(
      FILES completion/${program}.zsh
      DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
      RENAME _${program})
    install(FILES completion/${program}.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  endforeach()
endif()

set(CPACK_PACKAGE_VENDOR "The Trovisk authors")
set(CPACK_PACKAGE_CONTACT "The Trovisk authors <maintainers@trovisk.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "examine the on-disk metadata of a disk, sector by sector")
set(CPACK_PACKAGE_DESCRIPTION
    "Trovisk walks the partitioning and volume metadata of a disk or a disk image
outward from sector 0, prints every field of every structure, names the boot
code it knows, and lists which sector holds what. It decodes MBR and GPT, FAT,
NTFS, exFAT, ReFS and BitLocker boot sectors, dynamic disks (LDM), Storage
Spaces and Storage Replica. trovisk-map shows the whole disk at a glance: what
lies where, what belongs together, and whether it is sound. Neither ever writes
to the disk.")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/packaging/debian/finish_tree.cmake)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME trovisk-${PROJECT_VERSION}-windows-x64)
else()
  set(CPACK_GENERATOR DEB TGZ)
  set(CPACK_PACKAGE_FILE_NAME trovisk-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
endif()
set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_IGNORE_FILES "/\\.git" "^${CMAKE_SOURCE_DIR}/(build|dist)/")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 0trovisk1) # older than any of Debian's own
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libewf2, libqcow1, libvhdi1, libvmdk1") # loaded when a container is met
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)
