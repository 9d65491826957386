// A variable as each type of reader of the library reads it.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_TYPED_READINGS_H
#define TOOLS_VELMAR_CFG_SETTINGS_TYPED_READINGS_H

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

struct TYPED_READINGS
{
    std::optional<bool> boolean;
    std::optional<int> signed_integer;
    std::optional<unsigned int> unsigned_integer;
    std::optional<double> floating; // present for every text but the empty one
    bool floating_is_whole = false; // the number is the whole text
};

// The library's answers for the variable as it is now.
TYPED_READINGS read_typed(const std::string& name);

// {"bool", "int", "uint", "double", "double_whole"}, null for what has no reading.
nlohmann::ordered_json readings_as_json(const TYPED_READINGS& readings);

#endif
