# Cross-compiles for 64-bit Windows with Debian's mingw-w64 (POSIX threads variant),
# and runs the resulting test programs under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(VLR_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${VLR_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VLR_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${VLR_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VLR_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Self-contained executables: no libstdc++/libgcc/winpthread DLLs to ship or to find under Wine.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# Debian installs the 64-bit Wine loader outside PATH.
find_program(VLR_WINE64 NAMES wine64 HINTS /usr/lib/wine /usr/lib64/wine REQUIRED)
find_program(VLR_WINESERVER NAMES wineserver wineserver64 HINTS /usr/lib/wine /usr/lib64/wine)
