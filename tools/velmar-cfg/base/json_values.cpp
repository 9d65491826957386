#include "tools/velmar-cfg/base/json_values.h"

#include <cmath>

#include "tools/velmar-cfg/base/text.h"

using nlohmann::ordered_json;

namespace
{
constexpr int indentation = 2;

bool is_utf_8(const ordered_json& text)
{
    try
    {
        static_cast<void>(text.dump());
        return true;
    }
    catch (const ordered_json::type_error&)
    {
        return false;
    }
}

void spell_out_bytes(ordered_json& value)
{
    if (value.is_structured())
    {
        for (ordered_json& part : value)
            spell_out_bytes(part);
    }
    else if (value.is_string() && !is_utf_8(value))
        value = {{"hex", as_hexadecimal(value.get_ref<const std::string&>())}};
}
}

std::string document_as_text(ordered_json document)
{
    try
    {
        return document.dump(indentation) + "\n";
    }
    catch (const ordered_json::type_error&)
    {
        spell_out_bytes(document);
        return document.dump(indentation) + "\n";
    }
}

nlohmann::ordered_json number_as_json(double number)
{
    return std::isfinite(number) ? nlohmann::ordered_json(number) : nlohmann::ordered_json(number_as_text(number));
}
