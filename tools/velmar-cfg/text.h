// Texts for messages.
#ifndef TOOLS_VELMAR_CFG_TEXT_H
#define TOOLS_VELMAR_CFG_TEXT_H

#include <string>
#include <string_view>

// Without the white space at its ends, as the library trims values.
std::string trimmed(std::string_view text);

// In quotes, and cut short if need be: a line may be a megabyte long.
std::string quoted(std::string_view text);

#endif
