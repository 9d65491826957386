// Converts a text by the library's own rule for each type. A text of which a part is hidden has no readings: the mark
// in it is not what the readers get.
#include "tools/velmar-cfg/settings/typed_readings.h"

#include <cmath>
#include <string>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/settings/library_rules.h"

TYPED_READINGS read_typed(std::string_view text)
{
    if (has_hidden_parts(text))
        return {};
    const std::string terminated(text);
    TYPED_READINGS readings;
    readings.boolean = as_boolean(terminated);
    readings.signed_integer = as_integer(terminated);
    readings.unsigned_integer = as_unsigned(terminated);
    if (!text.empty())
        readings.floating = as_floating(terminated, &readings.floating_is_whole);
    return readings;
}

bool same_readings(const TYPED_READINGS& a, const TYPED_READINGS& b)
{
    const auto same_number = [](const std::optional<double>& one, const std::optional<double>& other)
    {
        return one.has_value() == other.has_value() && (!one || (std::isfinite(*one) || std::isfinite(*other)
                                                                     ? *one == *other
                                                                     : number_as_text(*one) == number_as_text(*other)));
    };
    return a.boolean == b.boolean && a.signed_integer == b.signed_integer && a.unsigned_integer == b.unsigned_integer &&
           a.floating_is_whole == b.floating_is_whole && same_number(a.floating, b.floating);
}

void write_json(JSON_WRITER& out, const TYPED_READINGS& readings)
{
    out.begin_object();
    out.field("bool", readings.boolean);
    out.field("int", readings.signed_integer);
    out.field("uint", readings.unsigned_integer);
    out.field("double", readings.floating);
    out.field("double_whole", readings.floating_is_whole);
    out.end_object();
}
