# Every function and table is a section of its own, and what nothing refers to is left out when linking: the modules carry
# nothing of the framework's hosting code, which the programs that link the same shared code need.
add_compile_options(-ffunction-sections -fdata-sections)
add_link_options($<IF:$<PLATFORM_ID:Darwin>,-Wl$<COMMA>-dead_strip,-Wl$<COMMA>--gc-sections>)
