#include "tools/velmar-cfg/text.h"

#include "platform/gen/gen.h"

std::string trimmed(std::string_view text)
{
    return gen_remove_leading_and_trailing_white_spaces(std::string(text));
}

std::string quoted(std::string_view text)
{
    constexpr std::size_t longest = 100;
    return "'" + std::string(text.substr(0, longest)) + (text.size() > longest ? "...'" : "'");
}
