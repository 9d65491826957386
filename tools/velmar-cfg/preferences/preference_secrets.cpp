#include "tools/velmar-cfg/preferences/preference_secrets.h"

#include <algorithm>
#include <cctype>

#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"

using namespace zon_cfg;

namespace
{
IS_SECRET_NAME names_of(const SECRETS& secrets)
{
    return [&secrets](std::string_view name) { return is_secret_preference_name(name, secrets); };
}

std::string hide_in_line(std::string_view line, SECRETS& secrets)
{
    const std::size_t equals = line.find('=');
    const std::size_t bracket = line.find('[');
    if (equals == std::string_view::npos || equals > bracket)
        return hide_behind_names(line, bracket != std::string_view::npos, names_of(secrets), secrets);
    const std::string_view name = line.substr(0, equals);
    const std::string_view value = line.substr(equals + 1);
    if (!is_secret_preference_name(trimmed(name), secrets))
        return hide_behind_names(name, false, names_of(secrets), secrets) + "=" +
               hide_behind_names(value, true, names_of(secrets), secrets);
    if (is_plain_value(value))
        return std::string(line);
    // The quotes are taken off, and a bracket makes the line a header.
    return std::string(name) + "=" + hide_runs(value, "\"[]", secrets);
}
// `text` with each `word` replaced by the mark. One that is short only where it stands alone: it may be part of any
// other.
std::string with_mark(std::string_view text, std::string_view word, const std::string& mark)
{
    constexpr std::size_t short_word = 4;
    const auto is_apart = [text](std::size_t at)
    { return at >= text.size() || std::isalnum(static_cast<unsigned char>(text[at])) == 0; };
    std::string result;
    std::size_t end = 0; // of what is in the result
    for (std::size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, std::max(at + 1, end)))
    {
        if (word.size() < short_word && (!is_apart(at - 1) || !is_apart(at + word.size())))
            continue;
        result.append(text, end, at - end).append(mark);
        end = at + word.size();
    }
    return result.append(text.substr(end));
}

// The message with the value hidden in it, piece by piece: a bracket makes a section's name of a part of the value.
std::string hide_everywhere(std::string message, std::string_view value, SECRETS& secrets)
{
    constexpr std::string_view between = "\"[]";
    while (!value.empty())
    {
        const std::string piece = trimmed(value.substr(0, value.find_first_of(between)));
        value.remove_prefix(std::min(value.find_first_of(between), value.size() - 1) + 1);
        if (piece.empty())
            continue;
        const std::string mark = secrets.mark(piece);
        std::string hidden;
        TEXT_PARTS parts(message);
        for (TEXT_PART part{}; parts.next(part);)
            hidden += part.hidden ? std::string(part.text) : with_mark(part.text, piece, mark);
        message = std::move(hidden);
    }
    return message;
}
}

bool is_secret_preference_name(std::string_view name, const SECRETS& secrets)
{
    if (secrets.shown())
        return false;
    const CFG_USER_INI_ENUMS number = find_preference(cfg_convert_from_old_to_new(std::string(name)).c_str());
    return is_secret_preference(number) || secrets.is_secret_name(name);
}

std::optional<std::string> hide_in_preference_text(std::string_view text, SECRETS& secrets)
{
    if (secrets.shown())
        return std::nullopt;
    std::string hidden;
    for (bool more = true; more;)
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        hidden += hide_in_line(line, secrets);
        more = line.size() < text.size();
        hidden += more ? "\n" : "";
        text.remove_prefix(line.size() + (more ? 1 : 0));
    }
    return has_hidden_parts(hidden) ? std::optional(std::move(hidden)) : std::nullopt;
}

std::string hide_in_message(std::string_view message, std::string_view text, std::string_view name,
                            std::string_view value, SECRETS& secrets)
{
    std::string hidden(message);
    if (is_secret_preference_name(name, secrets) && !is_plain_value(value))
        hidden = hide_everywhere(hidden, value, secrets);
    while (!text.empty())
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos && is_secret_preference_name(trimmed(line.substr(0, equals)), secrets) &&
            !is_plain_value(line.substr(equals + 1)))
            hidden = hide_everywhere(hidden, line.substr(equals + 1), secrets);
    }
    return hidden;
}

std::string hide_in_preference(std::string_view name, std::string_view value, SECRETS& secrets)
{
    if (has_hidden_parts(value) || is_plain_value(value))
        return std::string(value);
    return is_secret_preference_name(name, secrets) ? hide_runs(value, "\"[]", secrets)
                                                    : hide_behind_names(value, true, names_of(secrets), secrets);
}
