// Looking preferences up, with fallback to older releases and defaults, and assigning them. What the public header
// leaves out.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOOKUP_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOOKUP_H

#include <string>

#include "cfg_ini/cfg_ini.h"

// The value of a preference, with the catalogue's default in place of an empty one if `use_default`; empty for an
// unknown name. Loads the file first if need be. A null name is reported and answers the empty text.
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

// Where the file as it was loaded has the value that a lookup of the preference answers, default included. Follows the
// steps of a lookup without its effects; loads the file first if need be. What the program has assigned since is not
// seen where the file lacks the running release's section.
PREFERENCE_ORIGIN preference_origin(CFG_USER_INI_ENUMS preference);
}

#endif
