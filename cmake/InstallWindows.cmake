# What `cmake --install` puts where, below the prefix: the folder that the archive holds, and that the installer spreads over
# the places in which hosts look. packaging/windows/README.txt says which.
add_custom_target(tarvelline_product)
add_dependencies(tarvelline_product Tarvelline_VST3 Tarvelline_Standalone tarvelline_render tarvelline_preset_files)

install(FILES "$<TARGET_FILE:Tarvelline_VST3>" DESTINATION VST3/Tarvelline.vst3/Contents/x86_64-win)
install(FILES "$<TARGET_FILE:Tarvelline_Standalone>" "$<TARGET_FILE:tarvelline_render>" DESTINATION .)
install(DIRECTORY "${TARVELLINE_PRESETS_DIR}" DESTINATION "VST3 Presets/Vorntaal")
install(FILES packaging/windows/README.txt packaging/copyright CHANGELOG.md DESTINATION .)
install(FILES LICENSE DESTINATION . RENAME LICENSE.txt)
install(FILES docs/manual.md docs/presets.md docs/rendering.md DESTINATION doc)
install(DIRECTORY docs/images DESTINATION doc)
install(DIRECTORY "${TARVELLINE_STATIC_LIBRARIES}/sources/" DESTINATION licences
    FILES_MATCHING PATTERN copyright PATTERN googletest EXCLUDE) # of the libraries that the programs hold
