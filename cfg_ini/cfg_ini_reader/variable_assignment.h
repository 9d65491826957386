// Assignments by the program; the setters themselves are public (cfg_ini/cfg_ini.h).
#ifndef CFG_INI_CFG_INI_READER_VARIABLE_ASSIGNMENT_H
#define CFG_INI_CFG_INI_READER_VARIABLE_ASSIGNMENT_H

#include <string_view>

namespace zon_cfg
{
// Loads the settings first if there is no store, takes the lock, makes the record if need be, stores and converts the
// text, clears the mark of a valid read, notifies the callbacks of exactly this name with the lock held, and marks the
// settings as changed. No access is counted. An exception out of a callback leaves the lock held. `external` marks the
// record as external; without it that mark stays as it is.
void assign_text(std::string_view name, std::string_view value, bool external);
}

#endif
