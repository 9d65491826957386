// Compares names eight characters at a time, in words of an ordinary register.
//
// Two words agree if they are the same, or if both are ASCII and the same once their letters are folded. The last word
// of a name reaches back over characters that were compared already, so nothing outside the name is read. At the first
// words that do not agree, the comparison goes on byte by byte. Either these words differ, which shows within eight
// bytes. Or they hold a byte of 0x80 or above, and their letters may still differ in case only.
//
// Most pairs of names have one length and no zero byte, so this case is tried first. What is left are names that
// differ, and names that agree up to a zero byte.
#include "cfg_ini/cfg_ini_reader/name_matching.h"

#include <stdexcept>

#include "cfg_ini/cfg_ini_reader/character_block.h"
#include "cfg_ini/cfg_ini_reader/name_hash.h"

namespace zon_cfg
{
namespace
{
std::string_view up_to_zero_byte(std::string_view name)
{
    return name.substr(0, name.find('\0'));
}
}

void refuse_null_text()
{
    throw std::logic_error("basic_string: construction from null is not valid");
}

std::size_t hash_name(std::string_view name)
{
    return hash_by_blocks<CHARACTER_BLOCK>(name);
}

bool equal_folded(const char* a, const char* b, std::size_t length)
{
    const auto equal_words = [](const char* x, const char* y)
    {
        const CHARACTER_WORD of_x = CHARACTER_WORD::load(x);
        const CHARACTER_WORD of_y = CHARACTER_WORD::load(y);
        return of_x == of_y || (!(of_x | of_y).has_high_bits() && of_x.folded() == of_y.folded());
    };

    if (length >= 8)
    {
        for (; length > 8 && equal_words(a, b); length -= 8)
        {
            a += 8;
            b += 8;
        }
        // The last eight characters; some of them may have been compared already.
        if (length <= 8 && equal_words(a + length - 8, b + length - 8))
            return true;
        // Words with a high bit are told apart below, byte by byte: the letters in them may differ in case.
    }
    for (; length > 0 && folded(*a) == folded(*b); ++a, ++b, --length)
    {
    }
    return length == 0;
}

bool equal_up_to_zero_byte(std::string_view a, std::string_view b)
{
    a = up_to_zero_byte(a);
    b = up_to_zero_byte(b);
    return a.size() == b.size() && equal_folded(a.data(), b.data(), a.size());
}
}
