# Warnings of this project's own targets; linked privately, so that consumers never see them.
add_library(zon_warnings INTERFACE)
target_compile_options(zon_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wformat=2 -Wcast-qual -Wundef
    "$<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast;-Wnon-virtual-dtor;-Woverloaded-virtual>"
    $<$<BOOL:${ZON_WARNINGS_AS_ERRORS}>:-Werror>)
