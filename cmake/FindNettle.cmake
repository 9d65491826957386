# Nettle::nettle, for the SHA-256 of velmar-cfg: the static library where there is one, so that the tool starts without
# the time that loading another shared library takes.
find_path(NETTLE_INCLUDE_DIR nettle/sha2.h)
find_library(NETTLE_LIBRARY NAMES libnettle.a nettle)
mark_as_advanced(NETTLE_INCLUDE_DIR NETTLE_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Nettle REQUIRED_VARS NETTLE_LIBRARY NETTLE_INCLUDE_DIR)

if(Nettle_FOUND AND NOT TARGET Nettle::nettle)
    add_library(Nettle::nettle UNKNOWN IMPORTED)
    set_target_properties(Nettle::nettle PROPERTIES
        IMPORTED_LOCATION "${NETTLE_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${NETTLE_INCLUDE_DIR}")
endif()
