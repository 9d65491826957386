// Looks preferences up, with fallback to older releases and defaults, and assigns them: the functions that are not in
// the public header.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOOKUP_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOOKUP_H

#include <string>

#include "cfg_ini/cfg_ini.h"

// The value of a preference; empty for an unknown name. If `use_default`, the catalogue's default replaces an empty
// value. Loads the file first if need be. A null name is reported and gives the empty text.
std::string cfg_get_user_ini_value_internal(const char* name, bool use_default);

namespace zon_cfg
{
enum class PREFERENCE_SOURCE
{
    NOWHERE, // no value
    RUNNING_RELEASE,
    OLDER_RELEASE,
    UNVERSIONED_SECTION,
    DEFAULT, // of the catalogue
};

struct PREFERENCE_ORIGIN
{
    PREFERENCE_SOURCE source = PREFERENCE_SOURCE::NOWHERE;
    std::string section; // of the file; empty for NOWHERE and DEFAULT
};

// Where the value that a lookup of the preference gives comes from: a section of the file as it was loaded, or the
// default. Takes the steps of a lookup without its effects, but loads the file first if need be. If the file lacks the
// running release's section, the result ignores what the program has assigned since the load.
PREFERENCE_ORIGIN preference_origin(CFG_USER_INI_ENUMS preference);
}

#endif
