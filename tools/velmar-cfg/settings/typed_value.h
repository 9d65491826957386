// A variable's value as the reader of one type answers it.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_TYPED_VALUE_H
#define TOOLS_VELMAR_CFG_SETTINGS_TYPED_VALUE_H

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

enum class READER_TYPE
{
    TEXT,
    BOOL,
    INT,
    UINT,
    DOUBLE,
};

// "text", "bool", "int", "uint" or "double"; and back, if it is one.
const char* type_word(READER_TYPE type);
std::optional<READER_TYPE> type_of_word(std::string_view word);

// std::monostate means no usable value.
using TYPED_VALUE = std::variant<std::monostate, std::string, bool, int, unsigned int, double>;

// `readings` are those of the text. The empty text has no value of any type.
TYPED_VALUE value_of_type(READER_TYPE type, std::string_view text, const TYPED_READINGS& readings);

// "on", "12", ...; nothing for no usable value.
std::optional<std::string> value_as_text(const TYPED_VALUE& value);

// Writes the value as its own JSON type; null for no usable value.
void write_json(JSON_WRITER& out, const TYPED_VALUE& value);

// What to call a text that is no value of the type: "no switch (on, 1, true, off, 0, false)".
const char* what_is_wanted(READER_TYPE type);

#endif
