# Puts the page of trovisk-map into a C++ source: cmake -D FOLDER=map/page -D OUTPUT=FILE -P embed_page.cmake
#
# The sheets of the style become one. So do the modules of the script, in an order in which each stands behind
# what it uses, without their imports and exports. It is a block: a name that two modules give is a syntax
# error, which the page's tests meet.

cmake_minimum_required(VERSION 3.24)

set(modules
    format
    dom
    document
    looks
    lanes
    bar
    magnifier
    picture
    readout
    overview
    map
    extents
    hex
    fields
    report
    copy
    section
    structures
    index
    search
    place
    main)

set(script "\"use strict\";\n{")
foreach(module IN LISTS modules)
  file(READ "${FOLDER}/${module}.js" text)
  string(REGEX REPLACE "\nimport [^;]*;" "" text "\n${text}")
  string(REGEX REPLACE "\nexport " "\n" text "${text}")
  string(APPEND script "${text}")
endforeach()
string(APPEND script "}\n")
file(WRITE "${OUTPUT}.js" "${script}")

set(style "")
foreach(
  sheet IN
  ITEMS page
        map
        tables
        structures
        joined
        search
        screens
        print)
  file(READ "${FOLDER}/${sheet}.css" text)
  string(APPEND style "${text}")
endforeach()
file(WRITE "${OUTPUT}.css" "${style}")

set(source "#include \"map/page_files.h\"\n\nnamespace trovisk {\nnamespace {\n\n")
foreach(part IN ITEMS template style script)
  if(part STREQUAL "template")
    set(file "${FOLDER}/page.html")
  elseif(part STREQUAL "style")
    set(file "${OUTPUT}.css")
  else()
    set(file "${OUTPUT}.js")
  endif()
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND source "constexpr char ${part}Bytes[] = {${bytes}};\n")
endforeach()
string(
  APPEND
  source
  "\n}  // namespace\n\n"
  "const std::string_view kPageTemplate(templateBytes, sizeof(templateBytes));\n"
  "const std::string_view kPageStyle(styleBytes, sizeof(styleBytes));\n"
  "const std::string_view kPageScript(scriptBytes, sizeof(scriptBytes));\n"
  "\n}  // namespace trovisk\n")
file(WRITE "${OUTPUT}" "${source}")
