# The compiler settings that every target shares.

add_library(trovisk_options INTERFACE)

if(MSVC)
  target_compile_options(trovisk_options INTERFACE /W4 /utf-8 /permissive-)
  target_compile_definitions(trovisk_options INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
  # One file that needs no DLL but the system's, with the manifest that its resources bring.
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
  target_link_options(trovisk_options INTERFACE /MANIFEST:NO)
  return()
endif()

target_compile_options(trovisk_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# The same program from whatever folder it is built in.
target_compile_options(trovisk_options INTERFACE "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")

# The input is hostile: what gets past the code meets the usual walls. The sanitizers bring walls of their
# own.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  target_compile_options(trovisk_options INTERFACE -fstack-protector-strong)
  target_link_options(trovisk_options INTERFACE -fstack-protector-strong)
  string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
  # Only where neither who builds nor the compiler has chosen a level.
  include(CheckCXXSourceCompiles)
  set(CMAKE_REQUIRED_FLAGS "-O2 ${CMAKE_CXX_FLAGS_${build_type}}")
  check_cxx_source_compiles(
    "#ifdef _FORTIFY_SOURCE
     #error
     #endif
     int main() { return 0; }"
    TROVISK_CHOOSES_FORTIFY_SOURCE)
  unset(CMAKE_REQUIRED_FLAGS)
  if(TROVISK_CHOOSES_FORTIFY_SOURCE)
    target_compile_definitions(trovisk_options INTERFACE _FORTIFY_SOURCE=2)
  endif()
  if(WIN32)
    target_link_options(trovisk_options INTERFACE -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va
                        -Wl,--no-insert-timestamp)
  else()
    target_link_options(trovisk_options INTERFACE -Wl,-z,relro -Wl,-z,now)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # One file that runs wherever the C library does, and starts faster for it.
    target_link_options(trovisk_options INTERFACE -static-libstdc++ -static-libgcc)
  endif()
endif()
