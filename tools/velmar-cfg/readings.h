// A variable as each type of reader of the library reads it.
#ifndef TOOLS_VELMAR_CFG_READINGS_H
#define TOOLS_VELMAR_CFG_READINGS_H

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

struct READINGS
{
    std::optional<bool> boolean;
    std::optional<int> signed_integer;
    std::optional<unsigned int> unsigned_integer;
    std::optional<double> floating; // present for every text but the empty one
    bool floating_is_whole = false; // the number is the whole text
};

// The library's answers for the variable as it is now.
READINGS read_typed(const std::string& name);

// {"bool", "int", "uint", "double", "double_whole"}, null for what has no reading. A number that JSON cannot hold
// becomes a text.
nlohmann::ordered_json readings_as_json(const READINGS& readings);
nlohmann::ordered_json number_as_json(double number);

// The shortest text that reads back as this number.
std::string number_as_text(double number);

// The product's own words: "on" and "off".
const char* boolean_as_text(bool value);

#endif
