// Makes changes to layers, only to see what they would do.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_WHAT_IF_H
#define TOOLS_VELMAR_CFG_SETTINGS_WHAT_IF_H

#include <string>
#include <vector>

#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"

// The source of what the changes set.
inline constexpr const char* what_if_source = "--with";

// The layers with the changes made in their order. A value is set in a layer of its own, on top of all others. Its
// assignments are counted from 1. They do not make variables external, as with values that a program sets. When a
// variable is removed, each line that sets it becomes an empty one, and each item an empty item, so all others keep
// their positions. Secret values are hidden.
LAYERS changed_layers(LAYERS layers, const std::vector<WHAT_IF>& changes, SECRETS& secrets);

// "with max_fanout=16, without trace_routes": for people, secret values hidden. Empty for no changes.
std::string changes_as_text(const std::vector<WHAT_IF>& changes, SECRETS& secrets);

#endif
