# 32-bit Windows with Debian's MinGW-w64 compiler, in its variant with POSIX threads. Programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

# Exceptions cross the border of the DLL: everybody shares the compiler's run-time libraries.
set(CMAKE_EXE_LINKER_FLAGS_INIT -shared-libgcc)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -shared-libgcc)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run)

# Programs come from this machine, headers and libraries never do, except packages named by their prefix.
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
