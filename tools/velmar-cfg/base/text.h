// Texts for messages.
#ifndef TOOLS_VELMAR_CFG_BASE_TEXT_H
#define TOOLS_VELMAR_CFG_BASE_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Without the white space at its ends, as the library trims values.
std::string trimmed(std::string_view text);

// The text, or its first `longest` bytes and "...". No character of UTF-8 is cut in two.
std::string shortened(std::string_view text, std::size_t longest);

// The text in quotes, and shortened if it is long: a line may have a megabyte.
std::string in_single_quotes(std::string_view text);

// The bytes as lower-case hexadecimal digits, two for each byte. And back, from either letter case; nothing for any
// other text.
std::string as_hexadecimal(std::string_view bytes);
std::optional<std::string> from_hexadecimal(std::string_view digits);

// `text` made fit for one line of a terminal. A backslash becomes \\. Bytes that steer a terminal or are not UTF-8
// become escapes such as \n, \t or \x1b. Different texts stay different. A hidden part is shown as \(masked)
// (hidden_text.h). Everything that people see goes through this, except what `get` prints.
std::string printable(std::string_view text);

// Whether a character moves the cursor, ends the line or turns the direction of what stands around it: the control
// characters, the separators of lines and paragraphs, the bidirectional marks.
bool steers_a_terminal(char32_t character);

struct UTF_8_CHARACTER
{
    std::size_t length; // in bytes; 0 for bytes that do not begin with well-formed UTF-8
    char32_t character; // the first byte if the length is 0
};

// The first character of the bytes, of which there must be at least one.
UTF_8_CHARACTER first_character(std::string_view bytes);

// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool is_utf_8(std::string_view bytes);

// The shortest text that reads back as this number.
std::string number_as_text(double number);

// The decimal number that the whole text is: an optional "-", digits with at most one point, and an optional exponent.
// Infinite if it is too large; nothing for any other text. Does not use std::from_chars, which libc++ has only for
// integers.
std::optional<double> number_from_text(std::string_view text);

// The product's own words: "on" and "off".
const char* boolean_as_text(bool value);

#endif
