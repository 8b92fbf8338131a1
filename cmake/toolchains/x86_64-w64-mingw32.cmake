# Windows x64 with MinGW-w64, and the libraries that tools/static-libraries has built.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
cmake_path(SET root NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../..")
set(TARVELLINE_STATIC_LIBRARIES "${root}build/static/${triple}")

set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)

set(CMAKE_FIND_ROOT_PATH "${TARVELLINE_STATIC_LIBRARIES}" "/usr/${triple}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${TARVELLINE_STATIC_LIBRARIES}/lib/pkgconfig")
set(PKG_CONFIG_ARGN --static)

# Everything in one file, which holds no time of day and no place, so that two builds of one commit are the same.
foreach(kind IN ITEMS EXE MODULE SHARED)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -s -Wl,--no-insert-timestamp")
endforeach()
set(CMAKE_C_FLAGS_INIT "-ffile-prefix-map=${root}=")
# The framework's modules have more sections than the old kind of object holds.
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT} -Wa,-mbig-obj")

# The framework is source code, and a program of the machine that builds.
file(GLOB frameworks "/usr/lib/*-linux-gnu/cmake/JUCE-*")
if(frameworks AND NOT JUCE_DIR)
    list(GET frameworks 0 JUCE_DIR)
endif()
