# What `cmake --install` puts where. Three components: runtime (what a program needs to run), development (headers, static
# libraries, CMake package, pkg-config file) and tool (velmar-cfg, its manual pages and completion). Nothing installed names the prefix, so that the
# installed tree can be moved.
include(CMakePackageConfigHelpers)

set(zon_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zon_cfg_ini)

# --- Libraries ---

# zon_install_library(name...): each with its static twin `<name>_static`.
function(zon_install_library)
    foreach(name IN LISTS ARGN)
        target_compile_features(${name} INTERFACE cxx_std_17)
        target_compile_features(${name}_static INTERFACE cxx_std_17)
        # Libraries stand beside each other.
        set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN")
        install(TARGETS ${name} EXPORT zon_cfg_ini_targets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
        install(TARGETS ${name}_static EXPORT zon_cfg_ini_targets
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    endforeach()
endfunction()

set(zon_services thr err mem fio gen ver)
list(TRANSFORM zon_services PREPEND zon_ OUTPUT_VARIABLE zon_service_libraries)
zon_install_library(zon_cfg_ini ${zon_service_libraries})
if(TARGET zon_cfg_run_report)
    zon_install_library(zon_cfg_run_report)
endif()

# --- Headers ---

install(FILES cfg_ini/cfg_ini.h cfg_ini/cfg_ini_var_enum.h cfg_ini/cfg_user_ini_enums.h cfg_ini/cfg_cached_value.h
    cfg_ini/cfg_settings_sources.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cfg_ini COMPONENT development)
if(TARGET zon_cfg_run_report)
    install(FILES cfg_run_report/cfg_run_report.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cfg_run_report COMPONENT development)
endif()
foreach(service IN LISTS zon_services)
    install(FILES platform/${service}/${service}.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/platform/${service} COMPONENT development)
endforeach()

install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(FILES docs/architecture.svg DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT development) # shown by README.md

# --- CMake package and pkg-config files ---

install(EXPORT zon_cfg_ini_targets NAMESPACE zon_cfg_ini:: DESTINATION ${zon_package_dir} COMPONENT development)
configure_package_config_file(cmake/zon_cfg_ini-config.cmake.in ${PROJECT_BINARY_DIR}/zon_cfg_ini-config.cmake
    INSTALL_DESTINATION ${zon_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zon_cfg_ini-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zon_cfg_ini-config.cmake ${PROJECT_BINARY_DIR}/zon_cfg_ini-config-version.cmake
    DESTINATION ${zon_package_dir} COMPONENT development)

# zon_install_pc(name): the pkg-config file made of cmake/<name>.pc.in.
function(zon_install_pc name)
    configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

file(RELATIVE_PATH zon_pc_prefix "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
list(TRANSFORM zon_service_libraries PREPEND -l OUTPUT_VARIABLE zon_pc_private_libraries)
list(JOIN zon_pc_private_libraries " " zon_pc_private_libraries)
list(TRANSFORM ZON_WIDE_FILES PREPEND " -D" OUTPUT_VARIABLE zon_pc_definitions)
list(JOIN zon_pc_definitions "" zon_pc_definitions)
zon_install_pc(zon_cfg_ini)
if(TARGET zon_cfg_run_report)
    zon_install_pc(zon_cfg_run_report)
endif()

# --- The tool ---

if(TARGET velmar-cfg)
    if(ZON_TOOL_SHARED_SERVICES)
        file(RELATIVE_PATH zon_lib_from_bin "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${CMAKE_INSTALL_LIBDIR}")
        set_target_properties(velmar-cfg PROPERTIES INSTALL_RPATH "$ORIGIN/${zon_lib_from_bin}")
    endif()
    install(TARGETS velmar-cfg RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)

    install(FILES docs/man/velmar-cfg.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
    install(FILES docs/man/velmar.ini.5 docs/man/velmar2.ini.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT tool)
    set(ZON_ZSH_COMPLETION_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
        CACHE STRING "Where completion for zsh is installed, below the prefix")
    install(FILES ${PROJECT_BINARY_DIR}/completions/velmar-cfg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
    install(FILES ${PROJECT_BINARY_DIR}/completions/_velmar-cfg DESTINATION ${ZON_ZSH_COMPLETION_DIR} COMPONENT tool)
endif()
