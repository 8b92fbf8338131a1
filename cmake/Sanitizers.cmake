# TARVELLINE_SANITIZE is a list for -fsanitize, chosen by a preset: "address;undefined" or "thread".
set(TARVELLINE_SANITIZE "" CACHE STRING "Sanitizers to build everything with")

if(TARVELLINE_SANITIZE)
    list(JOIN TARVELLINE_SANITIZE "," sanitizers)
    add_compile_options(-fsanitize=${sanitizers} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${sanitizers})
endif()
