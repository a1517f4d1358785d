# Builds for Windows on Debian: the compiler with POSIX threads, and the libraries that
# script/release/windows-toolkit has built (it prints their folder, KALIVOR_WINDOWS_TOOLKIT names it).
if(NOT DEFINED ENV{KALIVOR_WINDOWS_TOOLKIT})
  message(FATAL_ERROR "Please build with script/windows, or set KALIVOR_WINDOWS_TOOLKIT.")
endif()
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 $ENV{KALIVOR_WINDOWS_TOOLKIT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The toolkit's compilers of user interfaces and resources are those of this system.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)

# One file that runs from any folder.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
