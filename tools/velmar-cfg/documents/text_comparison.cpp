// The shown parts of the masked text are looked for in the plain one, one behind the other; what stands between them is
// what may have been hidden. Where several parts are hidden, a shown part may be found too early, so that marks which
// differ then prove nothing.
#include "tools/velmar-cfg/documents/text_comparison.h"

#include <vector>

#include "tools/velmar-cfg/settings/secrets.h"

namespace
{
SAMENESS compare_part(std::string_view hidden, std::string_view plain, const MARK_MAKER& mark)
{
    if (plain.empty()) // no mark stands for nothing
        return SAMENESS::DIFFERENT;
    return mark == nullptr ? SAMENESS::UNKNOWN : compare_texts(hidden, mark(plain));
}

SAMENESS compare_with_plain(std::string_view masked, std::string_view plain, const MARK_MAKER& mark)
{
    if (is_plain_value(plain)) // of such a value nothing is hidden
        return SAMENESS::DIFFERENT;
    std::vector<TEXT_PART> parts;
    TEXT_PARTS walk(masked);
    for (TEXT_PART part{}; walk.next(part);)
        parts.push_back(part);
    SAMENESS result = SAMENESS::SAME;
    std::size_t marks = 0;
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        if (!parts[i].hidden)
        {
            if (!plain.starts_with(parts[i].text))
                return SAMENESS::DIFFERENT;
            plain.remove_prefix(parts[i].text.size());
            continue;
        }
        const bool is_last = i + 1 == parts.size();
        const bool is_last_but_one = i + 2 == parts.size() && !parts[i + 1].hidden;
        std::size_t end = plain.size();
        if (is_last_but_one)
            end = plain.ends_with(parts[i + 1].text) ? end - parts[i + 1].text.size() : std::string_view::npos;
        else if (!is_last)
            end = parts[i + 1].hidden ? std::string_view::npos : plain.find(parts[i + 1].text);
        if (end == std::string_view::npos)
            return !is_last && parts[i + 1].hidden ? SAMENESS::UNKNOWN : SAMENESS::DIFFERENT;
        const SAMENESS of_part = compare_part(parts[i].text, plain.substr(0, end), mark);
        plain.remove_prefix(end);
        ++marks;
        if (of_part == SAMENESS::DIFFERENT || (of_part == SAMENESS::UNKNOWN && result == SAMENESS::SAME))
            result = of_part;
    }
    if (!plain.empty())
        return SAMENESS::DIFFERENT;
    return result == SAMENESS::DIFFERENT && marks > 1 ? SAMENESS::UNKNOWN : result;
}
}

SAMENESS compare_masked(std::string_view a, std::string_view b, const MARK_MAKER& mark)
{
    const bool masked_a = has_hidden_parts(a);
    const bool masked_b = has_hidden_parts(b);
    if (masked_a == masked_b)
        return compare_texts(a, b);
    return masked_a ? compare_with_plain(a, b, mark) : compare_with_plain(b, a, mark);
}
