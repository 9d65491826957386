// Writes preferences as a file of the running release, and finds those that another file gives.
//
// What is written is what the library's own writer makes of the records. A value that the reader would change, because
// it trims values and takes a pair of quotes off, is written in quotes. What another file gives is what lookups answer
// from a line of it (preferences.h). Names that the catalogue does not have are looked for only in sections that
// lookups get to.
//
// Cost: three passes over the file, O(n log n) time and O(n) memory for n lines.
#include "tools/velmar-cfg/preferences/preference_transfer.h"

#include <algorithm>
#include <deque>
#include <set>
#include <sstream>
#include <utility>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"

using namespace zon_cfg;

namespace
{
// The reader trims values and takes one pair of quotes off.
std::string as_written(const std::string& key, const std::string& value)
{
    return classify_preference_line(key + " = " + value).value == value ? value : "\"" + value + "\"";
}

// The sections in which lookups of a file with these headers look.
std::set<std::string> sections_looked_into(const std::set<std::string>& headers)
{
    std::set<std::string> sections;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        const std::string bare = preference_triples(number).front().section;
        const std::string running = released_section(bare, ver_get_version());
        if (!sections.insert(running).second || headers.contains(running))
            continue;
        sections.insert(bare);
        for (const std::string& release : ver_get_all_versions())
            sections.insert(released_section(bare, release));
    }
    return sections;
}

std::set<std::string> headers_of(std::string_view bytes)
{
    std::set<std::string> headers;
    for_each_preference_line(
        bytes,
        [&headers](std::size_t, std::string_view, const PREFERENCE_LINE& line, const std::string& section)
        {
            if (line.kind == PREFERENCE_LINE_KIND::HEADER)
                headers.insert(section);
        });
    return headers;
}

std::string note_of_mask(const std::string& key)
{
    return "# " + key + " is left out, since its value is masked";
}

bool is_unknown(const std::string& name)
{
    return !name.starts_with('#') && !name.starts_with(';') && find_preference(name.c_str()) == CFG_USER_INI_ENUMS_END;
}
}

PREFERENCE_DUMP dump_preferences(const PREFERENCE_LOOKUP& look_up, bool only_changed)
{
    PREFERENCE_DUMP dump;
    std::ostringstream text;
    std::deque<CFG_USER_VALUE_STRUCT> records;
    CFG_USER_VALUE_MAP ordered;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        const std::optional<PREFERENCE> preference = look_up(number);
        if (!preference || preference->value.empty() ||
            (only_changed && preference->value == preference->default_value))
            continue;
        if (has_hidden_parts(preference->value))
        {
            dump.masked.push_back(preference->key);
            // Without "=" and "[", so that it is no preference.
            text << note_of_mask(preference->key) << "\n";
            continue;
        }
        const std::string section = released_section(preference->section, ver_get_version());
        records.push_back({section, preference->key, as_written(preference->key, preference->value)});
        ordered[section + preference->key] = &records.back();
    }
    for (const SECTION_GROUP& group : groups_to_write(ordered))
        write_group(text, group);
    dump.text = std::move(text).str();
    return dump;
}

GIVEN_PREFERENCES preferences_given_by(std::string_view bytes)
{
    GIVEN_PREFERENCES given;
    const auto is_note_of_dump = [](std::string_view text)
    {
        return std::ranges::any_of(all_preference_keys(),
                                   [text](const std::string& key) { return text == note_of_mask(key); });
    };
    const PREFERENCES preferences(bytes);
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        PREFERENCE preference = preferences.look_up(number);
        if (preference.line != 0)
            given.known.push_back({number, std::move(preference.value), preference.line});
    }
    const std::set<std::string> sections = sections_looked_into(headers_of(bytes));
    for_each_preference_line(
        bytes,
        [&](std::size_t number, std::string_view text, const PREFERENCE_LINE& line, const std::string& section)
        {
            if (text.starts_with("# ") && is_note_of_dump(text))
                given.notes_of_dump.push_back(number);
            if (line.kind == PREFERENCE_LINE_KIND::KEY && !line.value.empty() && sections.contains(section) &&
                is_unknown(line.name))
                given.unknown.push_back({line.name, number});
        });
    return given;
}
