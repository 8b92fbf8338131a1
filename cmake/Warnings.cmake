# What our own sources compile under: the framework's recommended set, and conversions.
option(TARVELLINE_WARNINGS_AS_ERRORS "Stop at a warning in our own sources, as the presets of the checks do" OFF)

add_library(tarvelline_warnings INTERFACE)

set(TARVELLINE_WARNING_OPTIONS
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wsign-compare -Wcast-align
    -Woverloaded-virtual -Wreorder -Wzero-as-null-pointer-constant -Wswitch-enum -Wstrict-aliasing
    -Wuninitialized -Wunused-parameter)
if(TARVELLINE_WARNINGS_AS_ERRORS)
    list(APPEND TARVELLINE_WARNING_OPTIONS -Werror)
endif()

target_compile_options(tarvelline_warnings INTERFACE ${TARVELLINE_WARNING_OPTIONS})

# Adds our sources to a target that also compiles framework modules: only ours get the strict set.
function(tarvelline_strict_sources target)
    target_sources(${target} PRIVATE ${ARGN})
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target}
        PROPERTIES COMPILE_OPTIONS "${TARVELLINE_WARNING_OPTIONS}")
endfunction()
