# Run by CPack between installing and packing: gives the tree the form that Debian asks of a package.

if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(doc ${share}/doc/trovisk)
file(REMOVE ${doc}/LICENSE ${doc}/third_party_licenses.txt) # the copyright file holds them
file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog ${doc}/changelog.Debian COPYONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${doc}/copyright COPYONLY)
file(GLOB manuals ${share}/man/man8/*.8)
execute_process(COMMAND gzip -9n ${doc}/changelog ${doc}/changelog.Debian ${manuals} COMMAND_ERROR_IS_FATAL
                        ANY)
