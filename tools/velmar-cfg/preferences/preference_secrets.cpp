#include "tools/velmar-cfg/preferences/preference_secrets.h"

#include <algorithm>

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
}

bool is_secret_preference_name(std::string_view name, const SECRETS& secrets)
{
    if (secrets.shown())
        return false;
    // What looks like a comment is kept as a preference, and its value may be a secret that was set once.
    name.remove_prefix(std::min(name.find_first_not_of("#; \t"), name.size()));
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
        hidden = hide_in_text(hidden, value, secrets);
    while (!text.empty())
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos && is_secret_preference_name(trimmed(line.substr(0, equals)), secrets) &&
            !is_plain_value(line.substr(equals + 1)))
            hidden = hide_in_text(hidden, line.substr(equals + 1), secrets);
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
