// Assignments by the program; the setters themselves are public (cfg_ini/cfg_ini.h).
#ifndef CFG_INI_CFG_INI_READER_VARIABLE_ASSIGNMENT_H
#define CFG_INI_CFG_INI_READER_VARIABLE_ASSIGNMENT_H

#include <string_view>

namespace zon_cfg
{
// Assigns a text as the setters do (cfg_ini/cfg_ini.h, "Setting a variable"). Notifies the callbacks with the lock
// held; an exception from a callback leaves it held. If `external` is true, marks the record as external; otherwise
// leaves that mark alone.
void assign_text(std::string_view name, std::string_view value, bool external);
}

#endif
