// Shows the difference of an edit without the secrets of either text.
//
// The difference is made of both texts with their secrets hidden. That is not enough: a value that was secret under its
// old name may stand below another name in the new text. Therefore the difference of the texts with their secrets shown
// is made as well. Each word of its removed lines that belongs to a secret is then hidden wherever it stands in the
// first difference. Nothing of the second one is shown.
//
// Cost: two differences where the old text holds a secret, else one, and a search of the first for each such word.
#include "tools/velmar-cfg/settings/settings_difference.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <utility>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/unified_diff.h"

namespace
{
std::string hidden_text(const std::string& text, SECRETS& secrets)
{
    return hide_in_settings_text(text, secrets).value_or(text);
}

// What of the text is shown once its secrets are hidden.
std::string shown_part(const std::string& text, SECRETS& secrets)
{
    const std::string hidden = hidden_text(text, secrets);
    std::string shown;
    TEXT_PARTS parts(hidden);
    for (TEXT_PART part{}; parts.next(part);)
    {
        if (!part.hidden)
            shown += part.text;
    }
    return shown;
}

// `text` with every word of `secret` hidden that does not stand in `shown`.
std::string hide_words(std::string text, std::string_view secret, std::string_view shown, SECRETS& secrets)
{
    constexpr std::string_view between_words = " \t\n\v\f\r=,;:\"'#";
    for (std::size_t at = secret.find_first_not_of(between_words); at != std::string_view::npos;)
    {
        const std::size_t end = std::min(secret.find_first_of(between_words, at), secret.size());
        const std::string_view word = secret.substr(at, end - at);
        if (shown.find(word) == std::string_view::npos && !is_plain_value(word))
            text = hide_in_text(text, word, secrets, SHORT_SECRETS::APART);
        at = secret.find_first_not_of(between_words, end);
    }
    return text;
}
}

std::string shown_settings_difference(const FILE_EDIT& edit, SECRETS& secrets)
{
    const auto difference_of = [&edit](const std::string& before, const std::string& after)
    { return unified_diff(before, after, edit.path, edit.path + " (new)"); };
    const std::string hidden_before = hidden_text(edit.before, secrets);
    std::string difference = difference_of(hidden_before, hidden_text(edit.after, secrets));
    if (!has_hidden_parts(hidden_before))
        return difference;
    // The names of both files are no part of it, and the first begins as a removed line does.
    const std::string heads = difference.substr(0, difference.find("@@ -"));
    difference.erase(0, heads.size());
    std::istringstream open_difference(difference_of(edit.before, edit.after));
    std::string line;
    std::getline(open_difference, line);
    while (std::getline(open_difference, line))
    {
        if (!line.starts_with('-'))
            continue;
        const std::string removed = line.substr(1);
        const std::string shown = shown_part(removed, secrets);
        if (shown.size() != removed.size())
            difference = hide_words(std::move(difference), removed, shown, secrets);
    }
    return heads + difference;
}
