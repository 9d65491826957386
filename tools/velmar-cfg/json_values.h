// Values that may be absent, as JSON.
#ifndef TOOLS_VELMAR_CFG_JSON_VALUES_H
#define TOOLS_VELMAR_CFG_JSON_VALUES_H

#include <nlohmann/json.hpp>
#include <optional>

template <typename T>
nlohmann::ordered_json value_or_null(const std::optional<T>& value)
{
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json();
}

// The text, or null for the empty one.
inline nlohmann::ordered_json text_or_null(const std::string& text)
{
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

#endif
