# The compiler settings that every target shares.

add_library(trovisk_options INTERFACE)

if(MSVC)
  target_compile_options(trovisk_options INTERFACE /W4 /utf-8 /permissive-)
  target_compile_definitions(trovisk_options INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
else()
  target_compile_options(trovisk_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
endif()
