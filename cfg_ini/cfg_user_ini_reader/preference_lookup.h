// Looking preferences up, with fallback to older releases and defaults, and assigning them. What the public header
// leaves out.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOOKUP_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOOKUP_H

#include <string>

// The value of a preference, with the catalogue's default in place of an empty one if `use_default`; empty for an
// unknown name. Loads the file first if need be. A null name is reported and answers the empty text.
std::string cfg_get_user_ini_value_internal(const char* name, bool use_default);

#endif
