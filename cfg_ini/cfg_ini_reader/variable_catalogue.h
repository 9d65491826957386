// The catalogued variables: names and default texts by position.
#ifndef CFG_INI_CFG_INI_READER_VARIABLE_CATALOGUE_H
#define CFG_INI_CFG_INI_READER_VARIABLE_CATALOGUE_H

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "cfg_ini/cfg_ini.h"

// Name and default text ("on" or "off") of each catalogued variable. Constant.
extern const std::array<std::pair<const char*, const char*>, CFG_INI_VAR_END> cfg_enum_based_defaults;

namespace zon_cfg
{
// A catalogued variable. The characters are constant, each text followed by a zero byte.
struct CATALOGUE_ENTRY
{
    std::string_view name;
    std::string_view default_text; // "on" or "off"
    bool is_on;                    // the default as a boolean
};

// By position.
extern const std::array<CATALOGUE_ENTRY, CFG_INI_VAR_END> catalogue_entries;

// Reports a value outside the enumeration under the line number `line`. Aborts the process if the reporter returns.
[[noreturn]] void refuse_unknown_variable(int line);

// The entry of a catalogued variable. Refuses a value outside the enumeration, and reports it under the line number
// `line`, by default the caller's.
inline const CATALOGUE_ENTRY& catalogue_entry(CFG_INI_VAR_ENUM ini_enum, int line = __builtin_LINE())
{
    if (ini_enum < CFG_INI_VAR_BEGIN || ini_enum >= CFG_INI_VAR_END) [[unlikely]]
        refuse_unknown_variable(line);
    return catalogue_entries[static_cast<std::size_t>(ini_enum)];
}

// The position of a catalogued name, spelt exactly; empty for any other name.
std::optional<CFG_INI_VAR_ENUM> catalogue_position(std::string_view name);
}

#endif
