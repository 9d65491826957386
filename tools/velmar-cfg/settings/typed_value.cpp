// Chooses among the readings of a text (typed_readings.h) the one for a reader's type, and shows it as text or as JSON.
// No text is converted here, and nothing is kept: a value is a variant, whose first alternative stands for no usable
// value.
#include "tools/velmar-cfg/settings/typed_value.h"

#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr READER_TYPE all_types[] = {READER_TYPE::TEXT, READER_TYPE::BOOL, READER_TYPE::INT, READER_TYPE::UINT,
                                     READER_TYPE::DOUBLE};

template <typename T>
TYPED_VALUE value_of(const std::optional<T>& reading)
{
    return reading ? TYPED_VALUE(*reading) : TYPED_VALUE();
}
}

const char* type_word(READER_TYPE type)
{
    switch (type)
    {
    case READER_TYPE::TEXT:
        return "text";
    case READER_TYPE::BOOL:
        return "bool";
    case READER_TYPE::INT:
        return "int";
    case READER_TYPE::UINT:
        return "uint";
    case READER_TYPE::DOUBLE:
        break;
    }
    return "double";
}

std::optional<READER_TYPE> type_of_word(std::string_view word)
{
    for (const READER_TYPE type : all_types)
    {
        if (word == type_word(type))
            return type;
    }
    return std::nullopt;
}

TYPED_VALUE value_of_type(READER_TYPE type, std::string_view text, const TYPED_READINGS& readings)
{
    switch (type)
    {
    case READER_TYPE::BOOL:
        return value_of(readings.boolean);
    case READER_TYPE::INT:
        return value_of(readings.signed_integer);
    case READER_TYPE::UINT:
        return value_of(readings.unsigned_integer);
    case READER_TYPE::DOUBLE:
        return value_of(readings.floating);
    case READER_TYPE::TEXT:
        break;
    }
    return text.empty() ? TYPED_VALUE() : TYPED_VALUE(std::string(text));
}

std::optional<std::string> value_as_text(const TYPED_VALUE& value)
{
    struct AS_TEXT
    {
        std::optional<std::string> operator()(std::monostate) const
        {
            return std::nullopt;
        }
        std::optional<std::string> operator()(const std::string& text) const
        {
            return text;
        }
        std::optional<std::string> operator()(bool truth) const
        {
            return boolean_as_text(truth);
        }
        std::optional<std::string> operator()(int number) const
        {
            return std::to_string(number);
        }
        std::optional<std::string> operator()(unsigned int number) const
        {
            return std::to_string(number);
        }
        std::optional<std::string> operator()(double number) const
        {
            return number_as_text(number);
        }
    };
    return std::visit(AS_TEXT(), value);
}

void write_json(JSON_WRITER& out, const TYPED_VALUE& value)
{
    if (std::holds_alternative<std::monostate>(value))
        out.value(std::nullopt);
    std::visit(
        [&out](const auto& one)
        {
            if constexpr (!std::is_same_v<std::decay_t<decltype(one)>, std::monostate>)
                out.value(one);
        },
        value);
}

const char* what_is_wanted(READER_TYPE type)
{
    switch (type)
    {
    case READER_TYPE::BOOL:
        return "no switch (on, 1, true, off, 0, false)";
    case READER_TYPE::INT:
        return "no integer from -2147483648 to 2147483647";
    case READER_TYPE::UINT:
        return "no integer from 0 to 4294967295";
    case READER_TYPE::DOUBLE:
        return "no number";
    case READER_TYPE::TEXT:
        break;
    }
    return "no text";
}
