// The core readers beneath the public lookups (cfg_ini/cfg_ini.h). Each reads the settings files first if there is no
// store, takes the lock, and counts the access or leaves an empty record behind.
#ifndef CFG_INI_CFG_INI_READER_LOOKUP_H
#define CFG_INI_CFG_INI_READER_LOOKUP_H

#include <string>

// The cached value of the type, meaningful only when *found (not null) becomes true; the variable is then marked as
// validly read.
bool cfg_ini_read_boolean(const std::string& name, bool* found);
int cfg_ini_read_int(const std::string& name, bool* found);
unsigned int cfg_ini_read_uint(const std::string& name, bool* found);

// A copy of the text. The variable is marked as validly read when `mark_valid` is true, whatever the text.
std::string cfg_ini_read_string(const std::string& name, bool mark_valid);

#endif
