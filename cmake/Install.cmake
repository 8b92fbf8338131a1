# What `cmake --install` puts where, below the prefix: the places in which hosts and desktops look.

find_program(GZIP gzip REQUIRED)
set(packed "${PROJECT_BINARY_DIR}/packaging") # manual pages and the change log, compressed as Debian has them
file(MAKE_DIRECTORY "${packed}")

function(tarvelline_pack source name)
    add_custom_command(OUTPUT "${packed}/${name}"
        COMMAND "${GZIP}" -9nc "${PROJECT_SOURCE_DIR}/${source}" > "${packed}/${name}"
        DEPENDS "${PROJECT_SOURCE_DIR}/${source}"
        VERBATIM)
endfunction()

tarvelline_pack(CHANGELOG.md changelog.gz)
file(GLOB manual_pages RELATIVE "${PROJECT_SOURCE_DIR}/docs" CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.1")
foreach(page IN LISTS manual_pages)
    tarvelline_pack("docs/${page}" "${page}.gz")
endforeach()
list(TRANSFORM manual_pages REPLACE "(.+)" "${packed}/\\1.gz")
add_custom_target(tarvelline_packed ALL DEPENDS "${packed}/changelog.gz" ${manual_pages})

# Everything that is installed, for those who build no more than that.
add_custom_target(tarvelline_product)
add_dependencies(tarvelline_product Tarvelline_VST3 Tarvelline_LV2 Tarvelline_Standalone tarvelline_render
    tarvelline_preset_files tarvelline_packed)

get_target_property(artefacts Tarvelline_VST3 LIBRARY_OUTPUT_DIRECTORY)
cmake_path(GET artefacts FILENAME architecture) # such as x86_64-linux

install(TARGETS Tarvelline_VST3 LIBRARY DESTINATION "lib/vst3/Tarvelline.vst3/Contents/${architecture}")
install(FILES "${artefacts}/../Resources/moduleinfo.json" DESTINATION lib/vst3/Tarvelline.vst3/Contents/Resources
    OPTIONAL) # what JUCE from 8 on writes for hosts, so that they need not load the module to list it
install(TARGETS Tarvelline_LV2 LIBRARY DESTINATION lib/lv2/Tarvelline.lv2)
install(DIRECTORY "$<TARGET_FILE_DIR:Tarvelline_LV2>/" DESTINATION lib/lv2/Tarvelline.lv2 FILES_MATCHING PATTERN "*.ttl")
install(TARGETS Tarvelline_Standalone tarvelline_render RUNTIME DESTINATION bin)
install(DIRECTORY "${TARVELLINE_PRESETS_DIR}" DESTINATION share/vst3/presets/Vorntaal)

install(FILES packaging/tarvelline.desktop DESTINATION share/applications)
install(FILES packaging/tarvelline.svg DESTINATION share/icons/hicolor/scalable/apps)
install(FILES packaging/tarvelline.png DESTINATION share/icons/hicolor/256x256/apps)
install(FILES ${manual_pages} DESTINATION share/man/man1)
install(FILES packaging/copyright LICENSE "${packed}/changelog.gz" docs/manual.md docs/presets.md docs/rendering.md
    DESTINATION share/doc/tarvelline)
install(DIRECTORY docs/images DESTINATION share/doc/tarvelline)
# Versions and licences of the libraries that are linked in; none where the system's own are used.
install(DIRECTORY "${CMAKE_PREFIX_PATH}/sources/" DESTINATION share/doc/tarvelline/libraries OPTIONAL)
