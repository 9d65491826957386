// Answers for a reader of one type, and says in a sentence why there is no usable value.
//
// The settings that are asked may know one variable only. To suggest a similar name for a variable that is neither set
// nor known, all layers are therefore walked again: O(n) time and memory for n assignments, and only then.
#include "tools/velmar-cfg/settings/typed_answer.h"

#include <algorithm>
#include <iterator>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

namespace
{
std::string why_not_set(const SETTINGS& settings, const std::string& name, bool suggest,
                        const std::vector<std::string>& other_names)
{
    std::string not_set = "'" + name + "' is not set";
    if (const KNOWN_VARIABLE* const known = find_known_variable(name); known != nullptr)
        return not_set + (known->default_text.empty() ? "" : "; the catalogue's default is " + known->default_text);
    return suggest ? not_set + similar_variable(settings, name, other_names) : not_set;
}

std::string why_not_usable(const TYPED_ANSWER& answer)
{
    const std::string at = is_located(*answer.location) ? " at " + location_as_text(*answer.location) : "";
    return answer.text.empty()
               ? "'" + answer.name + "' is set to the empty text" + at
               : "'" + answer.name + "' is " + in_single_quotes(answer.text) + at + ": " + what_is_wanted(answer.type);
}

// Whether a number stands at the start of the text. If not, a floating-point reader reads the text as 0.
bool begins_with_number(std::string_view text, double read)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    if (text.starts_with('.'))
        text.remove_prefix(1);
    return read != 0 || (!text.empty() && text.front() >= '0' && text.front() <= '9');
}
}

TYPED_ANSWER answer_typed(const SETTINGS& settings, const std::string& name, READER_TYPE type,
                          const std::optional<TYPED_VALUE>& fallback, bool suggest,
                          const std::vector<std::string>& other_names)
{
    TYPED_ANSWER answer;
    answer.name = name;
    answer.type = type;
    if (const VARIABLE* const variable = settings.find(name); variable != nullptr)
    {
        answer.has_value = true;
        answer.text = settings.value_of(*variable);
        answer.external = variable->layers.mark_external();
        answer.location = settings.location_of(*variable);
    }
    const TYPED_READINGS readings = read_typed(answer.text);
    answer.value = value_of_type(type, answer.text, readings);
    const std::optional<std::string> shown = value_as_text(answer.value);
    answer.usable = shown.has_value();
    if (answer.usable && type == READER_TYPE::DOUBLE && !readings.floating_is_whole)
        answer.remark =
            "'" + name + "' is " + in_single_quotes(answer.text) +
            (begins_with_number(answer.text, *readings.floating) ? ": only the number at its start is read, "
                                                                 : ": it begins with no number, and is read as ") +
            *shown;
    else if (!answer.usable && fallback)
        answer.value = *fallback;
    else if (!answer.usable)
        answer.remark = answer.is_set() ? why_not_usable(answer) : why_not_set(settings, name, suggest, other_names);
    return answer;
}

std::vector<std::string> names_that_may_be_meant(const SETTINGS& settings, const std::string& name,
                                                 const std::vector<std::string>& other_names)
{
    std::vector<std::string> names = known_variable_names();
    std::ranges::move(names_of_variables(settings), std::back_inserter(names));
    std::ranges::copy_if(other_names, std::back_inserter(names),
                         [&name](const std::string& other) { return !same_name(other, name); });
    return names;
}

std::string similar_variable(const SETTINGS& settings, const std::string& name,
                             const std::vector<std::string>& other_names)
{
    return did_you_mean(name, names_that_may_be_meant(SETTINGS(settings.layers()), name, other_names));
}

TYPED_VALUE default_of_type(READER_TYPE type, std::string_view text)
{
    if (text.empty())
        return std::string();
    const TYPED_READINGS readings = read_typed(text);
    TYPED_VALUE value = value_of_type(type, text, readings);
    const bool fits =
        !std::holds_alternative<std::monostate>(value) && (type != READER_TYPE::DOUBLE || readings.floating_is_whole);
    if (!fits)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "the default " + in_single_quotes(text) + " is " + what_is_wanted(type) +
                                               "; give one of the type");
    return value;
}

void write_json(JSON_WRITER& out, const TYPED_ANSWER& answer)
{
    out.begin_object();
    write_fields(out, answer);
    out.end_object();
}

void write_fields(JSON_WRITER& out, const TYPED_ANSWER& answer)
{
    const bool text_is_known = answer.is_set() || answer.has_value == false;
    out.field("name", answer.name);
    out.field("type", type_word(answer.type));
    out.key("value");
    write_json(out, answer.value);
    out.field("usable", answer.usable);
    out.field("set", answer.has_value);
    out.field("masked", answer.masked);
    out.field("text", text_is_known ? std::optional(answer.text) : std::nullopt);
    out.field("external", answer.has_value ? std::optional(answer.external) : std::nullopt);
    write_location_fields(out, answer.location ? &*answer.location : nullptr);
}
