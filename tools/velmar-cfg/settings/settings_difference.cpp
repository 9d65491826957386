// Shows the difference of an edit without the secrets of either text.
//
// The difference is made of both texts with their secrets hidden. That is not enough: a value that was secret under its
// old name may stand below another name in the new text. Therefore the difference of the texts with their secrets shown
// is made as well. Each word of its removed lines that belongs to a secret is then hidden wherever it stands in the
// first difference. Nothing of the second one is shown.
//
// Cost: two differences where the old text holds a secret, else one, and one search of the first for all such words.
#include "tools/velmar-cfg/settings/settings_difference.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/unified_diff.h"
#include "tools/velmar-cfg/base/word_search.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

namespace
{
std::string hidden_text(std::string_view text, SECRETS& secrets)
{
    return hide_in_settings_text(text, secrets).value_or(std::string(text));
}

// What of the text is shown once its secrets are hidden.
std::string shown_part(std::string_view text, SECRETS& secrets)
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

// The words of the removed line, in which a secret is, that may be part of that: they do not stand in `shown`.
void add_words(std::string_view line, std::string_view shown, std::vector<SECRET_TEXT>& to)
{
    constexpr std::string_view between_words = " \t\n\v\f\r=,;:\"'#";
    std::vector<std::string_view> words;
    for (std::size_t at = line.find_first_not_of(between_words); at != std::string_view::npos;)
    {
        const std::size_t end = std::min(line.find_first_of(between_words, at), line.size());
        words.push_back(line.substr(at, end - at));
        at = line.find_first_not_of(between_words, end);
    }
    const std::vector<bool> are_shown = WORD_SEARCH(words).standing_in(shown);
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        if (!are_shown[i] && !is_plain_value(words[i]))
            to.push_back({words[i]});
    }
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
    const std::string open_difference = difference_of(edit.before, edit.after);
    std::vector<SECRET_TEXT> words;
    for (std::string_view rest = std::string_view(open_difference).substr(open_difference.find('\n') + 1);
         !rest.empty();)
    {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (!line.starts_with('-'))
            continue;
        const std::string_view removed = line.substr(1);
        const std::string shown = shown_part(removed, secrets);
        if (shown.size() != removed.size())
            add_words(removed, shown, words);
    }
    return heads + SECRET_TEXTS(words, secrets, SHORT_SECRETS::APART).hide_in(difference);
}
