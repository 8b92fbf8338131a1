# What `cpack` makes of the installed files: a .deb and a .tar.gz.
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME tarvelline)
string(TOLOWER "tarvelline-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}" CPACK_PACKAGE_FILE_NAME)
set(CPACK_PACKAGE_VENDOR Vorntaal)
set(CPACK_PACKAGE_CONTACT "Vorntaal <tarvelline@vorntaal.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "pitch- and timbre-shifting wheel for audio (VST3, LV2, standalone)")
set(CPACK_PACKAGE_DESCRIPTION
    "Tarvelline shifts the pitch of whatever runs through it, in real time, with a
large wheel that has weight, inertia and a spring, with MIDI notes and with
pitch-bend. A second wheel moves the timbre on its own.
.
The package holds the effect as a VST3 and an LV2 plug-in and as a program that
needs no host, a command that plays recordings through it, and factory presets.")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/PackageTimes.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON) # adds what is linked; it knows the libraries of this machine alone
# The framework opens the libraries of the X Window System and of JACK only when it needs them.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libx11-6, libxcursor1, libxext6, libxinerama1, libxrandr2, libxrender1")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core | fonts-freefont-ttf | fonts-liberation")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "pipewire-jack | libjack-jackd2-0 | libjack0")

if(CMAKE_CROSSCOMPILING) # the preset arm64: what it adds for `portable`, whose libraries are the same
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS OFF)
    string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", libasound2 (>= 1.0.16), libc6 (>= 2.35), libfreetype6 (>= 2.2.1)")
endif()

include(CPack)
