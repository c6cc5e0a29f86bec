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

target_compile_options(trovisk_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

# The same program from whatever folder it is built in.
target_compile_options(trovisk_options INTERFACE "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")

# The input is hostile: what gets past the code meets the usual walls. The sanitizers bring walls of their
# own.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  target_compile_options(trovisk_options INTERFACE -fstack-protector-strong)
  target_link_options(trovisk_options INTERFACE -fstack-protector-strong)
  target_compile_definitions(trovisk_options INTERFACE _FORTIFY_SOURCE=2)
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
