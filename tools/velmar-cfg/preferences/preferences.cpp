#include "tools/velmar-cfg/preferences/preferences.h"

#include <algorithm>
#include <cstdlib>

#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "platform/fio/fio.h"
#include "platform/gen/gen.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/base/nearest_name.h"

using namespace zon_cfg;

namespace
{
std::string release_of_section(const PREFERENCE& preference)
{
    const auto is_section_of = [&](const std::string& release) {
        return gen_stricmp(released_section(preference.section, release).c_str(), preference.origin.section.c_str()) ==
               0;
    };
    if (is_section_of(ver_get_version()))
        return ver_get_version();
    const std::vector<std::string> releases = ver_get_all_versions();
    const auto found = std::ranges::find_if(releases, is_section_of);
    return found == releases.end() ? "" : *found;
}
}

const char* source_word(PREFERENCE_SOURCE source)
{
    switch (source)
    {
    case PREFERENCE_SOURCE::RUNNING_RELEASE:
        return "running release";
    case PREFERENCE_SOURCE::OLDER_RELEASE:
        return "older release";
    case PREFERENCE_SOURCE::UNVERSIONED_SECTION:
        return "unversioned section";
    case PREFERENCE_SOURCE::DEFAULT:
        return "default";
    case PREFERENCE_SOURCE::NOWHERE:
        break;
    }
    return "none";
}

std::optional<PREFERENCE_SOURCE> source_of_word(const std::string& word)
{
    for (const PREFERENCE_SOURCE source :
         {PREFERENCE_SOURCE::NOWHERE, PREFERENCE_SOURCE::RUNNING_RELEASE, PREFERENCE_SOURCE::OLDER_RELEASE,
          PREFERENCE_SOURCE::UNVERSIONED_SECTION, PREFERENCE_SOURCE::DEFAULT})
    {
        if (word == source_word(source))
            return source;
    }
    return std::nullopt;
}

bool PREFERENCE::differs_from_default() const
{
    return gen_stricmp(value.c_str(), default_value.c_str()) != 0;
}

PREFERENCE_FILE_LOCATION preference_file_location()
{
    PREFERENCE_FILE_LOCATION location{cfg_generate_user_ini_file_path(), false, {}};
    const char* const directory = std::getenv("VELMAR2_INI");
    if (directory == nullptr || *directory == '\0')
        return location;
    FIO_PATH named(location.path.c_str());
    named.directory(directory);
    location.from_variable = location.path == named.fullpath();
    if (!location.from_variable)
        location.remark = "VELMAR2_INI names no directory and is ignored: " + std::string(directory);
    return location;
}

void check_preference_file()
{
    const std::string path = cfg_generate_user_ini_file_path();
    if (!FIO_FILE_SYSTEM::exists(path.c_str()))
        return;
    const std::string bytes = read_input_file(path);
    if (const std::size_t zero = bytes.find('\0'); zero != std::string::npos)
        throw_binary_file(path, 1 + static_cast<std::size_t>(std::count(
                                        bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(zero), '\n')));
}

std::vector<CFG_USER_INI_ENUMS> all_preference_numbers()
{
    std::vector<CFG_USER_INI_ENUMS> numbers;
    for (int i = 0; i < CFG_USER_INI_ENUMS_END; ++i)
    {
        const auto number = static_cast<CFG_USER_INI_ENUMS>(i);
        if (!preference_triples(number).empty())
            numbers.push_back(number);
    }
    return numbers;
}

std::vector<std::string> all_preference_keys()
{
    std::vector<std::string> keys;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
        keys.push_back(cfg_get_user_ini_ini_string(number));
    return keys;
}

std::vector<std::string> allowed_preference_values(CFG_USER_INI_ENUMS number)
{
    std::vector<std::string> allowed;
    for (const PREFERENCE_TRIPLE& triple : preference_triples(number))
    {
        if (*triple.value != '\0')
            allowed.emplace_back(triple.value);
    }
    return allowed;
}

PREFERENCE look_up_preference(CFG_USER_INI_ENUMS number)
{
    PREFERENCE preference;
    preference.number = number;
    preference.key = cfg_get_user_ini_ini_string(number);
    preference.section = cfg_get_section_for_name(preference.key.c_str(), nullptr, false);
    preference.origin = preference_origin(number);
    preference.release = release_of_section(preference);
    preference.value = cfg_get_user_ini_value(number);
    preference.default_value = cfg_user_ini_name_default_values[preference_position(number)].second;
    preference.allowed = allowed_preference_values(number);
    return preference;
}

CFG_USER_INI_ENUMS preference_number(const std::string& key)
{
    const CFG_USER_INI_ENUMS number = find_preference(key.c_str());
    if (number != CFG_USER_INI_ENUMS_END)
        return number;
    const std::string current = cfg_convert_from_old_to_new(key);
    if (current != key)
        throw TOOL_ERROR(EXIT_CODE::REFUSED, "'" + key + "' is an old name; the preference is called " + current);
    const std::string suggestion = did_you_mean(key, all_preference_keys());
    throw TOOL_ERROR(EXIT_CODE::REFUSED, "there is no preference '" + key + "'" + suggestion +
                                             (suggestion.empty() ? "; see" : " See") + " velmar-cfg prefs list --all");
}

nlohmann::ordered_json preference_as_json(const PREFERENCE& preference)
{
    return {
        {"key", preference.key},
        {"value", preference.value},
        {"default", preference.default_value},
        {"allowed", preference.allowed.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(preference.allowed)},
        {"source", source_word(preference.origin.source)},
        {"section", text_or_null(preference.origin.section)},
        {"release", text_or_null(preference.release)}};
}

std::string allowed_as_text(const PREFERENCE& preference)
{
    std::string text;
    for (const std::string& value : preference.allowed)
        text += (text.empty() ? "" : ", ") + value;
    return text.empty() ? "any text" : text;
}

std::string origin_as_text(const PREFERENCE_ORIGIN& origin)
{
    const std::string& section = origin.section;
    switch (origin.source)
    {
    case PREFERENCE_SOURCE::RUNNING_RELEASE:
        return "set in section [" + section + "]";
    case PREFERENCE_SOURCE::OLDER_RELEASE:
        return "carried over from an older release, section [" + section + "]";
    case PREFERENCE_SOURCE::UNVERSIONED_SECTION:
        return "carried over from section [" + section + "], which names no release";
    case PREFERENCE_SOURCE::DEFAULT:
        return "the default";
    case PREFERENCE_SOURCE::NOWHERE:
        break;
    }
    return "not set, and there is no default";
}
