# What is installed where. debian/ makes a .deb of it, script/package a .zip for Windows. The pages keep their
# places to each other, so that their links hold.

set(programs trovisk)
if(TROVISK_MAP)
  list(APPEND programs trovisk-map)
  install(FILES packaging/third_party_licenses.txt DESTINATION ${CMAKE_INSTALL_DOCDIR})
  install(FILES map/map.schema.json DESTINATION ${CMAKE_INSTALL_DOCDIR}/map)
endif()
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
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
