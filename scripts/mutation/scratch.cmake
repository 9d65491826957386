# Included at the end of `project` in a scratch copy of the project (CMAKE_PROJECT_INCLUDE). There the tests take the library's
# objects from a shared library, so that a mutant costs the compilation of what it changes and one link. Symbols are visible,
# so that the shared library finds the tests' fakes; its own calls stay inside, or the unchanged inline functions of the
# tests' objects would answer them.
function(zon_all_targets directory result)
    get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
    get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
    foreach(subdirectory IN LISTS subdirectories)
        zon_all_targets(${subdirectory} more)
        list(APPEND targets ${more})
    endforeach()
    set(${result} ${targets} PARENT_SCOPE)
endfunction()

function(zon_prepare_for_mutation)
    # The standard library's checks end the process where a bound is overstepped.
    target_compile_options(zon_cfg_ini_objects PRIVATE -D_GLIBCXX_ASSERTIONS)
    target_precompile_headers(zon_cfg_ini_objects PRIVATE
        <algorithm> <array> <atomic> <cstdio> <cstdlib> <cstring> <deque> <fstream> <functional> <map> <memory>
        <memory_resource> <mutex> <optional> <span> <string> <string_view> <unordered_map> <vector>)

    add_library(zon_cfg_ini_under_test SHARED $<TARGET_OBJECTS:zon_cfg_ini_objects>)
    target_include_directories(zon_cfg_ini_under_test PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_options(zon_cfg_ini_under_test PRIVATE LINKER:-Bsymbolic-functions)

    zon_all_targets(${PROJECT_SOURCE_DIR} targets)
    foreach(target IN LISTS targets)
        get_target_property(type ${target} TYPE)
        if(type MATCHES "UTILITY|INTERFACE_LIBRARY")
            continue()
        endif()
        set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF)
        get_target_property(directory ${target} SOURCE_DIR)
        get_target_property(libraries ${target} LINK_LIBRARIES)
        if(type STREQUAL EXECUTABLE AND directory MATCHES "^${PROJECT_SOURCE_DIR}/tests")
            list(TRANSFORM libraries REPLACE "^zon_cfg_ini_objects$" zon_cfg_ini_under_test)
            set_target_properties(${target} PROPERTIES LINK_LIBRARIES "${libraries}")
        endif()
    endforeach()
endfunction()

cmake_language(DEFER CALL zon_prepare_for_mutation)
