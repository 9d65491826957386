// Text to boolean, to 32-bit integers and to floating point. No state; any thread. `text` is zero-terminated and must
// not be null.
#ifndef CFG_INI_CFG_INI_READER_VALUE_CONVERSION_H
#define CFG_INI_CFG_INI_READER_VALUE_CONVERSION_H

#include <cstdint>

// Whether `text` is one of the boolean words "on", "1", "true", "off", "0", "false", in any letter case and with
// nothing around it; *value becomes the boolean, false when it is none.
bool cfg_ini_convert_to_bool(const char* text, bool* value);

// The boolean of `text`, or `default_value` when it is no boolean word.
bool cfg_ini_str_to_bool(const char* text, bool default_value);

// Whether the whole text is a decimal number, an int (with an optional "-", no "+") or an unsigned int (no sign at
// all). Not when any other character stands there, blanks included, or when the number does not fit. *value is written
// only when it is one and otherwise keeps what it held.
bool cfg_ini_convert_to_int(const char* text, int* value);
bool cfg_ini_convert_to_uint(const char* text, unsigned int* value);

namespace zon_cfg
{
// What a text is by the rules above, all of them at once.
struct CONVERTED
{
    std::int64_t number; // meaningful for is_int and is_uint
    bool is_bool;
    bool bool_value; // false when it is none
    bool is_int;
    bool is_uint;
};
CONVERTED convert(const char* text);

// The number that strtod reads at the start of `text`, in the current locale; 0.0 when there is none. *whole tells
// whether nothing is left over behind it; an empty text is whole.
double convert_to_double(const char* text, bool* whole);
}

#endif
