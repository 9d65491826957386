// The catalogued variables: names and default texts by position.
#ifndef CFG_INI_CFG_INI_READER_VARIABLE_CATALOGUE_H
#define CFG_INI_CFG_INI_READER_VARIABLE_CATALOGUE_H

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "cfg_ini/cfg_ini.h"

// Name and default text ("on" or "off") of each catalogued variable. Constant.
extern const std::array<std::pair<const char*, const char*>, CFG_INI_VAR_END> cfg_enum_based_defaults;

namespace zon_cfg
{
// The entry of a catalogued variable. A value outside the enumeration is reported under the line number `line` (by
// default the caller's), and the call does not return: should the reporter return, the process is aborted.
const std::pair<const char*, const char*>& catalogue_entry(CFG_INI_VAR_ENUM ini_enum, int line = __builtin_LINE());

// The position of a catalogued name, spelt exactly; empty for any other name.
std::optional<CFG_INI_VAR_ENUM> catalogue_position(std::string_view name);
}

#endif
