# Hardening of everything built here in optimised configurations; scoped to this project's directories, so that neither
# consumers nor an enclosing project see it. Debug builds leave it out: fortification needs optimisation, and the
# sanitizers there see more. All of it together costs a lookup about one instruction in a hundred.
include(CheckCXXCompilerFlag)
if(PROJECT_IS_TOP_LEVEL) # it changes how an enclosing project's executables are linked
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
endif()

set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
add_compile_options(
    $<${optimised}:-fstack-protector-strong>
    $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=2>
    $<${optimised}:-D_GLIBCXX_ASSERTIONS>)
foreach(flag -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "ZON_HAS${flag}" has_flag)
    check_cxx_compiler_flag(${flag} ${has_flag})
    if(${has_flag})
        add_compile_options($<${optimised}:${flag}>)
    endif()
endforeach()
add_link_options($<${optimised}:LINKER:-z,relro,-z,now,-z,noexecstack,--enable-new-dtags>)

# A shared library's every symbol must be found among the libraries it is linked to. (Clang leaves its sanitizers'
# symbols to the executable.)
function(zon_refuse_undefined_symbols target)
    if(NOT (CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND CMAKE_CXX_FLAGS MATCHES "-fsanitize"))
        target_link_options(${target} PRIVATE LINKER:--no-undefined)
    endif()
endfunction()
