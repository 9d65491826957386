// Hash tables by the name of a variable. Names are equal as in the store.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_VARIABLE_NAME_H
#define TOOLS_VELMAR_CFG_SETTINGS_VARIABLE_NAME_H

#include <string>
#include <unordered_map>
#include <unordered_set>

#include "tools/velmar-cfg/settings/library_rules.h"

template <typename T>
using BY_VARIABLE_NAME = std::unordered_map<std::string, T, NAME_HASH, NAME_EQUAL>;

using VARIABLE_NAMES = std::unordered_set<std::string, NAME_HASH, NAME_EQUAL>;

#endif
