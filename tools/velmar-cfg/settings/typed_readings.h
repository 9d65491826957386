// What the reader of each type takes from a text.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_TYPED_READINGS_H
#define TOOLS_VELMAR_CFG_SETTINGS_TYPED_READINGS_H

#include <optional>
#include <string_view>

#include "tools/velmar-cfg/base/json_writer.h"

struct TYPED_READINGS
{
    std::optional<bool> boolean;
    std::optional<int> signed_integer;
    std::optional<unsigned int> unsigned_integer;
    std::optional<double> floating; // present for every text but the empty one
    bool floating_is_whole = false; // the number is the whole text
};

// What the readers of a variable with this text answer. The floating-point readers use the current locale. All are
// nothing for a text with hidden parts.
TYPED_READINGS read_typed(std::string_view text);

// Equal as JSON shows them: not-a-number is equal to itself.
bool same_readings(const TYPED_READINGS& a, const TYPED_READINGS& b);

// {"bool", "int", "uint", "double", "double_whole"}, null for what has no reading.
void write_json(JSON_WRITER& out, const TYPED_READINGS& readings);

#endif
