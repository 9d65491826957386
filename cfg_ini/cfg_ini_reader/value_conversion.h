// Text to boolean, to 32-bit integers and to floating point. No state; any thread. `text` is zero-terminated and must
// not be null.
#ifndef CFG_INI_CFG_INI_READER_VALUE_CONVERSION_H
#define CFG_INI_CFG_INI_READER_VALUE_CONVERSION_H

#include <optional>

// Whether `text` is one of the boolean words "on", "1", "true", "off", "0", "false", in any letter case and with
// nothing around it; *value becomes the boolean, false when it is none.
bool cfg_ini_convert_to_bool(const char* text, bool* value);

// The boolean of `text`, or `default_value` when it is no boolean word.
bool cfg_ini_str_to_bool(const char* text, bool default_value);

// The decimal number that is the whole text, for T = int (with an optional "-", no "+") and unsigned int (no sign at
// all). Empty when any other character stands there, blanks included, or when the number does not fit.
template <typename T>
std::optional<T> cfg_ini_convert_to(const char* text);
template <>
std::optional<int> cfg_ini_convert_to<int>(const char* text);
template <>
std::optional<unsigned int> cfg_ini_convert_to<unsigned int>(const char* text);

// Whether cfg_ini_convert_to has a result; *value is written only then and otherwise keeps what it held.
bool cfg_ini_convert_to_int(const char* text, int* value);
bool cfg_ini_convert_to_uint(const char* text, unsigned int* value);

// The number that strtod reads at the start of `text`, in the current locale; 0.0 when there is none. *whole tells
// whether nothing is left over behind it; an empty text is whole.
double cfg_ini_convert_to_double(const char* text, bool* whole);

#endif
