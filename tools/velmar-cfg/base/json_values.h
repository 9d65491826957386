// Values that JSON does not have as they are: absent ones, and texts of any bytes.
#ifndef TOOLS_VELMAR_CFG_BASE_JSON_VALUES_H
#define TOOLS_VELMAR_CFG_BASE_JSON_VALUES_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

template <typename T>
nlohmann::ordered_json value_or_null(const std::optional<T>& value)
{
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json();
}

// A list of what `as_json` makes of each row.
template <typename ROWS, typename AS_JSON>
nlohmann::ordered_json rows_as_json(const ROWS& rows, AS_JSON as_json)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const auto& row : rows)
        list.push_back(as_json(row));
    return list;
}

// The text, or null for the empty one.
inline nlohmann::ordered_json text_or_null(const std::string& text)
{
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

// The number, or its text where JSON has none: infinities and not-a-number.
nlohmann::ordered_json number_as_json(double number);

// The document as it is written, with a final newline. A text that is no UTF-8 becomes {"hex": "<two digits a byte>"},
// from which JSON_NODE::text reads it back.
std::string document_as_text(nlohmann::ordered_json document);

#endif
