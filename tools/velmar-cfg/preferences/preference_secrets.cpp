// Hardly any line holds a secret, and a search shows that without parsing the line. A name is secret if one of the
// built-in words stands in it, if it matches a pattern of the user's, or if it is a key that the catalogue marks or one
// of its old names. Only a line in which such a text stands is looked at name by name.
//
// Cost: two searches of each line; a copy of the text when something is hidden.
#include "tools/velmar-cfg/preferences/preference_secrets.h"

#include <algorithm>
#include <array>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/preferences/preferences.h"

using namespace zon_cfg;

namespace
{
IS_SECRET_NAME names_of(const SECRETS& secrets)
{
    return [&secrets](std::string_view name) { return is_secret_preference_name(name, secrets); };
}

constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Finds the keys that the catalogue marks, and their old names, in texts.
class MARKED_KEYS
{
public:
    MARKED_KEYS()
    {
        for (int number = 0; number < CFG_USER_INI_ENUMS_END; ++number)
        {
            if (is_secret_preference(static_cast<CFG_USER_INI_ENUMS>(number)))
                add(cfg_user_ini_ini_names[static_cast<std::size_t>(number)]);
        }
        for (const auto& [current_name, old_name] : cfg_user_ini_name_old_name_table)
        {
            if (is_secret_preference(find_preference(current_name)))
                add(old_name);
        }
    }

    // Whether one of them stands in the text, letter case ignored.
    bool stand_in(std::string_view text) const
    {
        return std::ranges::any_of(text,
                                   [this, text](const char& c)
                                   {
                                       return begins_key[static_cast<unsigned char>(c)] &&
                                              begins_with_key(text.substr(static_cast<std::size_t>(&c - text.data())));
                                   });
    }

private:
    void add(std::string_view name)
    {
        std::string& key = keys.emplace_back(name);
        std::ranges::transform(key, key.begin(), folded);
        for (unsigned int c = 0; c < begins_key.size(); ++c)
            begins_key[c] = begins_key[c] || folded(static_cast<char>(c)) == key.front();
    }

    bool begins_with_key(std::string_view text) const
    {
        return std::ranges::any_of(keys, [text](const std::string& key)
                                   { return std::ranges::equal(text.substr(0, key.size()), key, {}, folded); });
    }

    std::vector<std::string> keys; // in lower case
    std::array<bool, 256> begins_key = {};
};

// False only for a line in which no secret name stands. Quick.
bool may_hold_secret(std::string_view line, const SECRETS& secrets)
{
    static const MARKED_KEYS marked_keys;
    return secrets.may_hold_secret_name(line) || (!secrets.shown() && marked_keys.stand_in(line));
}

// "CLOUD_TOKEN [VALUE]" is a header to the library, whose section nobody looks into.
std::string hide_in_header(std::string_view line, std::size_t bracket, SECRETS& secrets)
{
    const std::size_t end = end_of_secret_name(line.substr(0, bracket), names_of(secrets));
    if (end == std::string_view::npos || is_looked_into(classify_preference_line(line).section))
        return hide_behind_names(line, true, names_of(secrets), secrets);
    return std::string(line.substr(0, end)) + hide_runs(line.substr(end), "\"[]", secrets);
}

std::string hide_in_line(std::string_view line, SECRETS& secrets)
{
    const std::size_t equals = line.find('=');
    const std::size_t bracket = line.find('[');
    if (equals == std::string_view::npos || equals > bracket)
        return bracket == std::string_view::npos ? hide_behind_names(line, false, names_of(secrets), secrets)
                                                 : hide_in_header(line, bracket, secrets);
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
    std::string hidden;
    std::size_t copied = 0; // how much of the text is in it
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::string_view line = text.substr(begin, text.find('\n', begin) - begin);
        const std::size_t end = begin + line.size();
        if (may_hold_secret(line, secrets))
        {
            const std::string hidden_line = hide_in_line(line, secrets);
            if (has_hidden_parts(hidden_line))
            {
                hidden.append(text, copied, begin - copied).append(hidden_line);
                copied = end;
            }
        }
        begin = end + 1;
    }
    if (copied == 0)
        return std::nullopt;
    hidden.append(text, copied);
    return hidden;
}

void add_secret_of_preference(std::string_view name, std::string_view value, const SECRETS& secrets,
                              std::vector<SECRET_TEXT>& to)
{
    if (is_secret_preference_name(name, secrets) && !is_plain_value(value))
        to.push_back({value});
}

std::vector<SECRET_TEXT> secrets_of_preference_text(std::string_view text, const SECRETS& secrets)
{
    std::vector<SECRET_TEXT> found;
    while (!text.empty())
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (const std::size_t equals = line.find('='); equals != std::string_view::npos)
            add_secret_of_preference(trimmed(line.substr(0, equals)), line.substr(equals + 1), secrets, found);
    }
    return found;
}

std::string hide_in_preference(std::string_view name, std::string_view value, SECRETS& secrets)
{
    if (has_hidden_parts(value) || is_plain_value(value))
        return std::string(value);
    return is_secret_preference_name(name, secrets) ? hide_runs(value, "\"[]", secrets)
                                                    : hide_behind_names(value, true, names_of(secrets), secrets);
}
