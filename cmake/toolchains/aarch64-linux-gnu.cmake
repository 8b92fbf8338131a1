# ARM64 Linux from another machine: Debian's cross compiler, the libraries that tools/static-libraries has built and those that
# tools/arm64-sysroot has fetched, and an emulator for what is run while building and testing.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(triple aarch64-linux-gnu)
cmake_path(SET build NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../build")

set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)
set(CMAKE_SYSROOT "${build}/sysroot/${triple}")
find_program(TARVELLINE_EMULATOR qemu-aarch64 REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR "${TARVELLINE_EMULATOR}" -L "${CMAKE_SYSROOT}")

set(CMAKE_FIND_ROOT_PATH "${build}/static/${triple}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${CMAKE_SYSROOT}/usr/lib/${triple}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")

foreach(folder IN ITEMS "${CMAKE_SYSROOT}" "${CMAKE_FIND_ROOT_PATH}")
    if(NOT EXISTS "${folder}")
        message(FATAL_ERROR "There is no ${folder}: tools/check arm64 makes what this build needs")
    endif()
endforeach()

# The framework is source code, and a program of the machine that builds.
file(GLOB frameworks "/usr/lib/*-linux-gnu/cmake/JUCE-*")
if(frameworks AND NOT JUCE_DIR)
    list(GET frameworks 0 JUCE_DIR)
endif()
