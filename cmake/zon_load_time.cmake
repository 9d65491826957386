# Smaller libraries that start sooner, in optimised configurations; scoped to this project's directories, like the
# hardening. Each choice stands only where compiler and linker know it.
#
# - Functions that nothing calls are left out: the tool calls some that the library itself does not.
# - The linker packs relative relocations, of which the tables of preferences have 3 500, to a hundredth of their size. What
#   was built so needs a C library that unpacks them (glibc 2.36): older ones refuse it by name (GLIBC_ABI_DT_RELR). For
#   these configure with -DZON_LINKER_PACKS_RELOCATIONS=OFF.
include(CheckCXXSourceCompiles)
function(zon_check_linker_flag flag result)
    set(CMAKE_REQUIRED_LINK_OPTIONS ${flag})
    # Some linkers only warn of what they do not know.
    check_cxx_source_compiles("int main() {}" ${result} FAIL_REGEX "[Uu]nknown|ignor")
endfunction()
zon_check_linker_flag(LINKER:-z,pack-relative-relocs ZON_LINKER_PACKS_RELOCATIONS)
zon_check_linker_flag(LINKER:--gc-sections ZON_LINKER_DROPS_SECTIONS)
zon_check_linker_flag(LINKER:-z,noseparate-code ZON_LINKER_JOINS_SEGMENTS)

if(ZON_LINKER_PACKS_RELOCATIONS)
    add_link_options($<${optimised}:LINKER:-z,pack-relative-relocs>)
endif()
if(ZON_LINKER_DROPS_SECTIONS)
    add_compile_options($<${optimised}:-ffunction-sections> $<${optimised}:-fdata-sections>)
    add_link_options($<${optimised}:LINKER:--gc-sections>)
endif()

# For a library of a few pages: one segment for code and constants instead of three, as each takes the kernel a mapping and
# a page fault.
function(zon_join_segments target)
    if(ZON_LINKER_JOINS_SEGMENTS)
        target_link_options(${target} PRIVATE $<${optimised}:LINKER:-z,noseparate-code>)
    endif()
endfunction()
