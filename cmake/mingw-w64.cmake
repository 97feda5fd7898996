# Cross-compiling the Windows build on Debian with mingw-w64 (g++-mingw-w64-x86-64-posix).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# libzip, pugixml, CLI11 and GoogleTest built for mingw by scripts/build-mingw-deps.sh.
if(NOT SW_MINGW_DEPS)
  set(SW_MINGW_DEPS ${CMAKE_CURRENT_LIST_DIR}/../build/mingw-deps)
endif()
get_filename_component(SW_MINGW_DEPS ${SW_MINGW_DEPS} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${SW_MINGW_DEPS})
# Qt for mingw, built by scripts/build-qt-mingw.sh into its cache; without it the window is left out.
# The Qt host tools (moc, rcc, uic) are the machine's own of the same version.
if(SW_QT_MINGW)
  list(APPEND CMAKE_FIND_ROOT_PATH ${SW_QT_MINGW})
  set(QT_HOST_PATH /usr CACHE PATH "")
  set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake CACHE PATH "")
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# zlib from libz-mingw-w64-dev comes as DLL and static library; the programs take the static one.
set(ZLIB_USE_STATIC_LIBS ON)
# Which C++ runtime each program links is decided in cmake/WindowsRuntime.cmake.
