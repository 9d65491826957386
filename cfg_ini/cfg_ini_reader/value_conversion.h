// Converts a text to boolean, to 32-bit integers and to floating point. No state; any thread. `text` is zero-terminated
// and must not be null.
#ifndef CFG_INI_CFG_INI_READER_VALUE_CONVERSION_H
#define CFG_INI_CFG_INI_READER_VALUE_CONVERSION_H

#include <cstdint>

// Whether the whole text is one of the boolean words "on", "1", "true", "off", "0", "false", in any letter case. *value
// becomes the boolean, or false if the text is none of these words.
bool cfg_ini_convert_to_bool(const char* text, bool* value);

// The boolean of `text`, or `default_value` when it is no boolean word.
bool cfg_ini_str_to_bool(const char* text, bool default_value);

// Whether the whole text is a decimal number that fits. An int may begin with "-", but not with "+"; an unsigned int
// has no sign. A text with any other character, such as a blank, is no number. *value is written only if the text is a
// number.
bool cfg_ini_convert_to_int(const char* text, int* value);
bool cfg_ini_convert_to_uint(const char* text, unsigned int* value);

namespace zon_cfg
{
// The results of all these conversions of one text.
struct CONVERTED
{
    std::int64_t number; // meaningful for is_int and is_uint
    bool is_bool;
    bool bool_value; // false when it is none
    bool is_int;
    bool is_uint;
};
CONVERTED convert(const char* text);

// The number that strtod finds at the start of `text`, in the current locale; 0.0 if there is none. *whole becomes
// whether nothing follows the number. An empty text counts as whole.
double convert_to_double(const char* text, bool* whole);
}

#endif
