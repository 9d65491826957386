// Texts for messages.
#ifndef TOOLS_VELMAR_CFG_BASE_TEXT_H
#define TOOLS_VELMAR_CFG_BASE_TEXT_H

#include <optional>
#include <string>
#include <string_view>

// Without the white space at its ends, as the library trims values.
std::string trimmed(std::string_view text);

// In quotes, and cut short if need be: a line may be a megabyte long.
std::string in_single_quotes(std::string_view text);

// The bytes as lower-case hexadecimal digits, two a byte; and back, in either letter case, nothing for another text.
std::string as_hexadecimal(std::string_view bytes);
std::optional<std::string> from_hexadecimal(std::string_view digits);

// `text` fit for one line of a terminal: control characters as \n, \t or \x1b, and the backslash itself as it is.
std::string printable(std::string_view text);

// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool is_utf_8(std::string_view bytes);

// The shortest text that reads back as this number.
std::string number_as_text(double number);

// The product's own words: "on" and "off".
const char* boolean_as_text(bool value);

#endif
