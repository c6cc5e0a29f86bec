# Cross-building for a Debian of another processor: the presets name its triplet and its architecture. The
# compiler brings the C library; what else is linked lies below build/sysroot, where script/test_foreign puts
# it. The programs run through qemu.

set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TROVISK_TRIPLET TROVISK_ARCHITECTURE)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR ${TROVISK_TRIPLET})
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${TROVISK_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${TROVISK_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${TROVISK_TRIPLET})

set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot/${TROVISK_ARCHITECTURE}
                         /usr/${TROVISK_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR} -L /usr/${TROVISK_TRIPLET})
