// Names of variables, equal as in the store.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_VARIABLE_NAME_H
#define TOOLS_VELMAR_CFG_SETTINGS_VARIABLE_NAME_H

#include <string>
#include <unordered_map>
#include <unordered_set>

#include "cfg_ini/cfg_ini_reader/name_matching.h"

inline bool same_name(const std::string& a, const std::string& b)
{
    return zon_cfg::equal_names(a, b);
}

template <typename T>
using BY_VARIABLE_NAME =
    std::unordered_map<std::string, T, STL_CASE_INSENSITIVE_HASH_COMPARE, STL_CASE_INSENSITIVE_EQUAL>;

using VARIABLE_NAMES = std::unordered_set<std::string, STL_CASE_INSENSITIVE_HASH_COMPARE, STL_CASE_INSENSITIVE_EQUAL>;

#endif
