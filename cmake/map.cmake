# trovisk-map: the survey, on the decoders of the report, with libraries for what is no disk structure.

# Windows gets one file that needs no DLL but the system's.
if(WIN32)
  set(ZLIB_USE_STATIC_LIBS ON)
endif()
find_package(ZLIB REQUIRED)

# CLI11 and nlohmann-json are headers alone, the same for every system; a cross compiler does not look where
# they are, and must not find the rest of that folder.
set(map_headers ${CMAKE_BINARY_DIR}/map_headers)
file(MAKE_DIRECTORY ${map_headers})
foreach(header IN ITEMS CLI/CLI.hpp nlohmann/json.hpp)
  get_filename_component(folder ${header} DIRECTORY)
  find_path(
    TROVISK_${folder}_INCLUDE ${header}
    PATHS /usr/local/include /usr/include
    NO_CMAKE_FIND_ROOT_PATH)
  if(NOT TROVISK_${folder}_INCLUDE)
    message(FATAL_ERROR "trovisk-map needs ${header}; script/bootstrap run installs it")
  endif()
  file(CREATE_LINK ${TROVISK_${folder}_INCLUDE}/${folder} ${map_headers}/${folder} COPY_ON_ERROR SYMBOLIC)
endforeach()

file(GLOB map_sources CONFIGURE_DEPENDS map/*.cpp)
list(REMOVE_ITEM map_sources ${CMAKE_SOURCE_DIR}/map/main.cpp)
# What is different on each system.
if(WIN32)
  list(FILTER map_sources EXCLUDE REGEX "_posix\\.cpp$")
else()
  list(FILTER map_sources EXCLUDE REGEX "_windows\\.cpp$")
endif()
set_source_files_properties(map/html_page.cpp map/options.cpp
                            PROPERTIES COMPILE_DEFINITIONS "TROVISK_VERSION=\"${PROJECT_VERSION}\"")

# The page's files, as bytes of the program.
file(GLOB page_files CONFIGURE_DEPENDS map/page/*.js map/page/*.css map/page/*.html)
set(page_source ${CMAKE_BINARY_DIR}/page_files.cpp)
add_custom_command(
  OUTPUT ${page_source}
  COMMAND ${CMAKE_COMMAND} -D FOLDER=${CMAKE_SOURCE_DIR}/map/page -D OUTPUT=${page_source} -P
          ${CMAKE_SOURCE_DIR}/cmake/embed_page.cmake
  DEPENDS ${page_files} cmake/embed_page.cmake
  VERBATIM)
add_library(trovisk_map_core STATIC ${map_sources} ${examination_sources} ${page_source})
target_link_libraries(trovisk_map_core PUBLIC trovisk_core ZLIB::ZLIB)
target_include_directories(trovisk_map_core SYSTEM PUBLIC ${map_headers})

add_executable(trovisk-map map/main.cpp)
target_link_libraries(trovisk-map PRIVATE trovisk_map_core trovisk_system trovisk_catalogue)
trovisk_add_resources(trovisk-map "Shows what lies where on a disk, and whether it is sound")
