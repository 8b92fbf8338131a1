# The plug-in. `Tarvelline` is the shared code (framework modules and our sources, compiled once); `Tarvelline_VST3` and
# `Tarvelline_LV2` wrap it as modules that hosts load, `Tarvelline_Standalone` as a program that is its own host.
#
# Any release of the framework from 7.0.5 on: its package takes no number but exactly its own.
find_package(JUCE CONFIG REQUIRED)
if(JUCE_VERSION VERSION_LESS 7.0.5)
    message(FATAL_ERROR "JUCE 7.0.5 or newer is needed, and ${JUCE_DIR} is ${JUCE_VERSION}")
endif()

# Files of which there is one a system end in its name.
if(WIN32)
    set(TARVELLINE_SYSTEM Windows)
else()
    set(TARVELLINE_SYSTEM Posix)
endif()

# While building, a program loads the LV2 module, and from JUCE 8 on the VST3 module: one without sanitizers, and of this system.
set(TARVELLINE_FORMATS VST3 LV2 Standalone)
set(describe_module TRUE)
if(TARVELLINE_SANITIZE)
    set(TARVELLINE_FORMATS VST3)
    set(describe_module FALSE)
elseif(WIN32)
    set(TARVELLINE_FORMATS VST3 Standalone)
    set(describe_module FALSE)
endif()

set(TARVELLINE_LV2_URI "https://vorntaal.org/plugins/tarvelline")

juce_add_plugin(Tarvelline
    PLUGIN_NAME "Tarvelline"
    PRODUCT_NAME "Tarvelline"
    COMPANY_NAME "Vorntaal"
    COMPANY_WEBSITE "https://vorntaal.org"
    COMPANY_COPYRIGHT "The Tarvelline authors, GPL-3.0-or-later"
    VERSION "${PROJECT_VERSION}"
    BUNDLE_ID "org.vorntaal.tarvelline"
    PLUGIN_MANUFACTURER_CODE Vorn
    PLUGIN_CODE Tarv
    FORMATS ${TARVELLINE_FORMATS}
    LV2URI "${TARVELLINE_LV2_URI}"
    IS_SYNTH FALSE
    NEEDS_MIDI_INPUT TRUE
    NEEDS_MIDI_OUTPUT FALSE
    IS_MIDI_EFFECT FALSE
    VST3_CATEGORIES Fx "Pitch Shift"
    COPY_PLUGIN_AFTER_BUILD FALSE
    VST3_AUTO_MANIFEST ${describe_module}) # last, after a single value: releases before 8 pass over what they do not know

target_compile_definitions(Tarvelline PUBLIC
    JUCE_VST3_CAN_REPLACE_VST2=0
    JUCE_USE_CURL=0
    JUCE_WEB_BROWSER=0
    JUCE_USE_FLAC=0
    JUCE_USE_OGGVORBIS=0
    JUCE_DISPLAY_SPLASH_SCREEN=0
    # The framework's LV2 header gets its LV2URI argument too late.
    JucePlugin_LV2URI="${TARVELLINE_LV2_URI}"
    # Beside ALSA, for the standalone program; the library is opened only when it runs, and need not be there.
    JUCE_JACK=1
    # The command-line renderer and the host tests load the finished module through the framework's own hosting,
    # and link this same library so that the framework is compiled once.
    JUCE_PLUGINHOST_VST3=1)

target_include_directories(Tarvelline PUBLIC "${PROJECT_SOURCE_DIR}")

target_link_libraries(Tarvelline
    PRIVATE
        juce::juce_audio_utils
    PUBLIC
        tarvelline_engine)

# Where the framework takes its picture formats from the system, its own build files link them on Linux alone.
if(WIN32)
    find_package(PNG REQUIRED)
    find_package(JPEG REQUIRED)
    target_link_libraries(Tarvelline PUBLIC PNG::PNG JPEG::JPEG)
endif()

add_subdirectory(resources)
target_link_libraries(Tarvelline PRIVATE tarvelline_resources)

add_subdirectory(processor)
add_subdirectory(widgets)
add_subdirectory(editor)

foreach(module IN ITEMS Tarvelline_VST3 Tarvelline_LV2)
    if(TARGET ${module} AND CMAKE_SYSTEM_NAME STREQUAL Linux)
        target_link_options(${module} PRIVATE "-Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/entry-points.map")
        set_property(TARGET ${module} APPEND PROPERTY LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/entry-points.map")
    endif()
endforeach()

if(TARGET Tarvelline_Standalone)
    set_target_properties(Tarvelline_Standalone PROPERTIES OUTPUT_NAME tarvelline) # a command, in lower case as others
endif()
if(TARGET Tarvelline_Standalone AND NOT WIN32)
    tarvelline_strict_sources(Tarvelline_Standalone "${PROJECT_SOURCE_DIR}/editor/StandaloneEntry.cpp")
    target_compile_definitions(Tarvelline_Standalone PRIVATE JUCE_USE_CUSTOM_PLUGIN_STANDALONE_ENTRYPOINT=1)
endif()

# The programs' icon, and the renderer's version. Not by the framework's ICON_BIG, with which it would call a command of Windows.
if(WIN32)
    get_target_property(juceaide juce::juceaide IMPORTED_LOCATION)
    execute_process(COMMAND "${juceaide}" winicon "${PROJECT_BINARY_DIR}/tarvelline.ico" "${PROJECT_SOURCE_DIR}/packaging/tarvelline.png"
        ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
    foreach(name IN ITEMS icon renderer)
        configure_file("${PROJECT_SOURCE_DIR}/packaging/windows/${name}.rc.in" "${PROJECT_BINARY_DIR}/${name}.rc" @ONLY)
    endforeach()
    target_sources(Tarvelline_Standalone PRIVATE "${PROJECT_BINARY_DIR}/icon.rc")
endif()

if(TARGET Tarvelline_LV2)
    add_custom_command(TARGET Tarvelline_LV2 POST_BUILD VERBATIM
        COMMAND "${CMAKE_COMMAND}" -D "BUNDLE=$<TARGET_FILE_DIR:Tarvelline_LV2>"
            -P "${PROJECT_SOURCE_DIR}/cmake/TidyLv2.cmake")
endif()

# Lets a program use the shared code: its headers, definitions and objects, without compiling the framework again.
function(tarvelline_use_shared_code target)
    target_include_directories(${target} SYSTEM PRIVATE $<TARGET_PROPERTY:Tarvelline,INCLUDE_DIRECTORIES>)
    target_include_directories(${target} BEFORE PRIVATE "${PROJECT_SOURCE_DIR}")
    target_compile_definitions(${target} PRIVATE $<TARGET_PROPERTY:Tarvelline,COMPILE_DEFINITIONS>)
    target_link_libraries(${target} PRIVATE Tarvelline tarvelline_warnings)
endfunction()

# Where the finished module stands, a folder; and what the programs that load it open, on Windows the file in it.
set(TARVELLINE_BUNDLE "$<GENEX_EVAL:$<TARGET_PROPERTY:Tarvelline_VST3,JUCE_PLUGIN_ARTEFACT_FILE>>")
set(TARVELLINE_MODULE_PATH "$<IF:$<PLATFORM_ID:Windows>,$<TARGET_FILE:Tarvelline_VST3>,${TARVELLINE_BUNDLE}>")

# Where tools/presets puts the factory presets: beside the module, in the folders that an installed one has them in.
set(TARVELLINE_PRESETS_DIR "$<PATH:GET_PARENT_PATH,$<GENEX_EVAL:${TARVELLINE_BUNDLE}>>/presets/Vorntaal/Tarvelline")
