// A model of the preference store: what a load keeps of a file, and what lookups then answer.
//
// The load uses the library's rule for lines. Records are kept by section and key joined, as in the store, and
// the first line of such a name counts. The names of all sections are kept too. A lookup asks in this order:
//
// 1. The record in the running release's section. An empty value there ends the search in the file.
// 2. If the file has that section at all, nothing older is asked for.
// 3. The sections of all releases, the newest first. The first record ends the walk, also an empty one.
// 4. The section without a release.
// 5. The catalogue's default, wherever the file gave nothing.
//
// Unlike the store's, a lookup changes nothing: it carries no value over. Cost for n lines and r releases: O(n log n)
// time and O(n) memory for the load, O(r log n) for a lookup.
#include "tools/velmar-cfg/preferences/preferences.h"

#include <algorithm>
#include <cstdlib>

#include "platform/fio/fio.h"
#include "platform/gen/gen.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"

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

std::optional<PREFERENCE_SOURCE> source_of_word(std::string_view word)
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

bool is_looked_into(std::string_view section)
{
    return std::ranges::any_of(all_preference_numbers(),
                               [section](CFG_USER_INI_ENUMS number)
                               {
                                   const std::string_view bare = preference_triples(number).front().section;
                                   return section == bare ||
                                          (section.starts_with(std::string(bare) + " ") && section.ends_with("_pro"));
                               });
}

bool is_preference_file(const std::string& path, std::string_view bytes)
{
    if (path.substr(path.rfind('/') + 1) == "velmar2.ini")
        return true;
    bool found = false;
    for_each_preference_line(
        bytes, [&found](std::size_t, std::string_view text, const PREFERENCE_LINE& line, const std::string&)
        { found |= text.starts_with('[') && line.section.ends_with("_pro") && is_looked_into(line.section); });
    return found;
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

FILE_CANDIDATE preference_file_candidate()
{
    const PREFERENCE_FILE_LOCATION location = preference_file_location();
    FILE_CANDIDATE candidate =
        sole_candidate("velmar2.ini", location.from_variable ? "VELMAR2_INI" : "profile directory", location.path);
    if (candidate.remark.empty())
        candidate.remark = location.remark;
    return candidate;
}

std::vector<FILE_CANDIDATE> all_file_candidates(const SETTINGS_SCOPE& scope)
{
    std::vector<FILE_CANDIDATE> all = settings_candidates(scope, false);
    all.push_back(appended_candidate());
    for (FILE_CANDIDATE& candidate : settings_candidates(scope, true))
        all.push_back(std::move(candidate));
    all.push_back(preference_file_candidate());
    for (FILE_CANDIDATE& candidate : all)
    {
        // A variable that names no file may hold what was meant for another one.
        if (candidate.state == FILE_STATE::MISSING)
            candidate.path = hide_in_value("", candidate.path, *scope.secrets);
        candidate.remark = hide_in_value("", candidate.remark, *scope.secrets);
    }
    return all;
}

std::shared_ptr<const INPUT_FILE> preference_file_in_use(INPUT_FILES& files)
{
    const std::string path = cfg_generate_user_ini_file_path();
    if (FIO_FILE_SYSTEM::exists(path.c_str()))
        return files.read(path);
    files.note_absence(path);
    return nullptr;
}

PREFERENCES load_preferences(INPUT_FILES& files, SECRETS& secrets)
{
    return preferences_in(preference_file_in_use(files).get(), secrets);
}

PREFERENCES preferences_in(const INPUT_FILE* file, SECRETS& secrets)
{
    if (file == nullptr)
        return PREFERENCES("");
    const std::optional<std::string> hidden = hide_in_preference_text(file->whole_lines(), secrets);
    return PREFERENCES(hidden ? *hidden : file->whole_lines());
}

PREFERENCES::PREFERENCES(std::string_view bytes)
{
    for_each_preference_line(
        bytes,
        [this](std::size_t number, std::string_view, const PREFERENCE_LINE& line, const std::string& section)
        {
            if (line.kind == PREFERENCE_LINE_KIND::HEADER)
                sections.insert(section);
            // The first line of a key counts.
            else if (line.kind == PREFERENCE_LINE_KIND::KEY && !section.empty())
                records.try_emplace(section + line.name, RECORD{section, line.value, number});
        });
}

const PREFERENCES::RECORD* PREFERENCES::find(const std::string& section, const std::string& key) const
{
    const auto found = records.find(section + key);
    return found == records.end() ? nullptr : &found->second;
}

const PREFERENCES::RECORD* PREFERENCES::find_in_releases(const std::string& section, const std::string& key,
                                                         const std::vector<std::string>& releases) const
{
    for (const std::string& release : releases)
    {
        if (const RECORD* const record = find(released_section(section, release), key); record != nullptr)
            return record;
    }
    return nullptr;
}

// From an older release, where an empty value ends the walk over the releases, or else from the section without one.
PREFERENCES::FOUND PREFERENCES::find_carried_over(const std::string& section, const std::string& key) const
{
    const RECORD* const older = find_in_releases(section, key, ver_get_all_versions());
    if (older != nullptr && !older->value.empty())
        return {older->value, {PREFERENCE_SOURCE::OLDER_RELEASE, older->section}, older->line};
    const RECORD* const unversioned = find(section, key);
    if (unversioned != nullptr && !unversioned->value.empty())
        return {unversioned->value, {PREFERENCE_SOURCE::UNVERSIONED_SECTION, unversioned->section}, unversioned->line};
    return {};
}

PREFERENCES::FOUND PREFERENCES::find_in_file(const std::string& section, const std::string& key) const
{
    const std::string running = released_section(section, ver_get_version());
    if (const RECORD* const record = find(running, key); record != nullptr)
        return record->value.empty()
                   ? FOUND{}
                   : FOUND{record->value, {PREFERENCE_SOURCE::RUNNING_RELEASE, record->section}, record->line};
    // A file that has the running release's section has had it saved: what is missing there is meant to be.
    return sections.contains(running) ? FOUND{} : find_carried_over(section, key);
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

std::string default_preference_value(CFG_USER_INI_ENUMS number)
{
    return cfg_user_ini_name_default_values[preference_position(number)].second;
}

PREFERENCE PREFERENCES::look_up(CFG_USER_INI_ENUMS number) const
{
    PREFERENCE preference;
    preference.number = number;
    preference.key = cfg_get_user_ini_ini_string(number);
    preference.section = cfg_get_section_for_name(preference.key.c_str(), nullptr, false);
    preference.default_value = default_preference_value(number);
    preference.allowed = allowed_preference_values(number);
    FOUND found = find_in_file(preference.section, preference.key);
    preference.value = std::move(found.value);
    preference.origin = std::move(found.origin);
    preference.line = found.line;
    if (preference.value.empty() && !preference.default_value.empty())
    {
        preference.value = preference.default_value;
        preference.origin.source = PREFERENCE_SOURCE::DEFAULT;
    }
    preference.release = release_of_section(preference);
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
    throw TOOL_ERROR(EXIT_CODE::REFUSED, "there is no preference '" + key + "'" +
                                             did_you_mean(key, all_preference_keys()) +
                                             "; see velmar-cfg prefs list --all");
}

void write_preference_fields(JSON_WRITER& out, const PREFERENCE& preference)
{
    out.field("key", preference.key);
    out.field("value", preference.value);
    out.field("default", preference.default_value);
    out.field("allowed", preference.allowed.empty() ? std::nullopt : std::optional(preference.allowed));
    out.field("source", source_word(preference.origin.source));
    out.field_or_null("section", preference.origin.section);
    out.field_or_null("release", preference.release);
}

std::string allowed_as_text(const std::vector<std::string>& allowed)
{
    std::string text;
    for (const std::string& value : allowed)
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
