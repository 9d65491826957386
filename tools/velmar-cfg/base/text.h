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

// In quotes, and cut short if need be: a line may be a megabyte long.
std::string in_single_quotes(std::string_view text);

// The bytes as lower-case hexadecimal digits, two a byte; and back, in either letter case, nothing for another text.
std::string as_hexadecimal(std::string_view bytes);
std::optional<std::string> from_hexadecimal(std::string_view digits);

// `text` fit for one line of a terminal: backslashes as \\, and what steers a terminal and bytes that are no UTF-8 as
// \n, \t or \x1b, byte by byte. No two texts become the same one. All that people see goes through this, but for what
// `get` prints. A hidden part is named (hidden_text.h).
std::string printable(std::string_view text);

// Whether a character moves the cursor, ends the line or turns the direction of what stands around it: the control
// characters, the separators of lines and paragraphs, the bidirectional marks.
bool steers_a_terminal(char32_t character);

struct UTF_8_CHARACTER
{
    std::size_t length; // in bytes; 0 for bytes that do not begin with well-formed UTF-8
    char32_t character; // without a length, the first byte
};

// The character that the bytes, of which there is one, begin with.
UTF_8_CHARACTER first_character(std::string_view bytes);

// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool is_utf_8(std::string_view bytes);

// The shortest text that reads back as this number.
std::string number_as_text(double number);

// The number that the whole text is, in decimal: "-" or no sign, digits with at most one point, and perhaps an
// exponent. Infinite where it is too large; nothing for another text. Not std::from_chars, which libc++ has for
// integers only.
std::optional<double> number_from_text(std::string_view text);

// The product's own words: "on" and "off".
const char* boolean_as_text(bool value);

#endif
