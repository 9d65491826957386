// Texts for messages.
#ifndef TOOLS_VELMAR_CFG_TEXT_H
#define TOOLS_VELMAR_CFG_TEXT_H

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

#endif
