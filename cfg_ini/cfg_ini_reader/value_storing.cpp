// Sets a value. All three conversions are made here, once, so that lookups make none. A number that the program passes
// is written by to_chars, which no locale changes, and need not be converted back.
//
// The text is assigned first, since only that can fail: if there is no memory for it, the record is as it was.
#include "cfg_ini/cfg_ini_reader/value_storing.h"

#include <charconv>
#include <iterator>
#include <limits>
#include <string>

#include "cfg_ini/cfg_ini_reader/value_conversion.h"

namespace zon_cfg
{
namespace
{
// Assigns `text`, which must not be a part of `to`. Nearly always there is room already, and then this is faster than
// the general assignment. If there is no memory, `to` is as it was.
void assign_other_text(std::string& to, std::string_view text)
{
    if (text.size() <= to.size())
    {
        text.copy(to.data(), text.size());
        to.resize(text.size());
    }
    else if (text.size() <= to.capacity())
    {
        to.clear();
        to.append(text);
    }
    else
        to = text;
}
}

// If the text converts to no int or unsigned int, that number keeps its old value; if it is no boolean word, the
// boolean becomes false. Lookups read none of them while its flag is false. Both are intended, for programs that look
// at records themselves.
void set_value(CFG_INI_RECORD& record, std::string_view value)
{
    assign_other_text(record.value, value);
    const CONVERTED converted = convert(record.value.c_str());
    record.bool_valid = converted.is_bool;
    record.bool_value = converted.bool_value;
    record.int_valid = converted.is_int;
    if (converted.is_int)
        record.int_value = static_cast<int>(converted.number);
    record.uint_valid = converted.is_uint;
    if (converted.is_uint)
        record.uint_value = static_cast<unsigned int>(converted.number);
    record.had_valid_read = false;
}

void set_value(CFG_INI_RECORD& record, int value)
{
    char text[std::numeric_limits<int>::digits10 + 2]; // a sign, and one digit more than digits10
    // cppcheck-suppress legacyUninitvar
    assign_other_text(record.value, {text, std::to_chars(std::begin(text), std::end(text), value).ptr});
    record.bool_valid = value == 0 || value == 1;
    record.bool_value = value == 1;
    record.int_valid = true;
    record.int_value = value;
    record.uint_valid = value >= 0;
    if (record.uint_valid)
        record.uint_value = static_cast<unsigned int>(value);
    record.had_valid_read = false;
}
}
