// A line has one of three fates. Some lines are lost whatever the records are: what the reader passes over, and a key's
// second line. A header stays if its section has a record to write, and no other section whose name differs in letter
// case alone stands before it in the file's order. A key line stays if its record has a value, its section keeps its
// header, and the value reads back as it is.
//
// Invariants:
// - A saved record reads back as itself, but for the two cases above: names are trimmed and hold no "=", names and
//   values hold no "[", values are trimmed, and sections hold no "]". What is assigned is checked by its caller.
// - Of sections that differ in letter case alone, the first in byte order gives the header: no key comes into it, for
//   such sections differ before their ends.
#include "tools/velmar-cfg/preferences/preference_save.h"

#include <algorithm>
#include <deque>
#include <map>
#include <sstream>

#include "platform/gen/gen.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"

using namespace zon_cfg;

namespace
{
bool is_comment(std::string_view trimmed_text)
{
    return trimmed_text.starts_with('#') || trimmed_text.starts_with(';');
}

// Two quotes around a value go at each load; a value that keeps such a pair loses it at the load after the save.
bool reads_back(const std::string& value)
{
    return value.front() != '"' || classify_preference_line("KEY = " + value).value == value;
}

// The reader takes a line up to its first zero byte.
std::string_view behind_zero_byte(std::string_view text)
{
    return text.substr(std::min(text.find('\0'), text.size()));
}

// As in every line of a file whose characters have two bytes.
bool cuts_off_assignment(std::string_view text)
{
    return behind_zero_byte(text).find('=') != std::string_view::npos;
}

struct LESS_IGNORING_CASE
{
    bool operator()(const std::string& a, const std::string& b) const
    {
        return gen_stricmp(a.c_str(), b.c_str()) < 0;
    }
};
}

// --- The load ---

PREFERENCE_RECORDS::PREFERENCE_RECORDS(std::string_view bytes)
{
    for_each_preference_line(
        bytes,
        [this](std::size_t number, std::string_view text, const PREFERENCE_LINE& line, const std::string& section)
        {
            const std::string content = trimmed(text);
            if (content.empty())
                return;
            switch (line.kind)
            {
            case PREFERENCE_LINE_KIND::HEADER:
                lines.push_back(line_of_header(number, text, line));
                break;
            case PREFERENCE_LINE_KIND::KEY:
                lines.push_back(line_of_key(number, text, line, section));
                break;
            case PREFERENCE_LINE_KIND::MALFORMED_HEADER:
                if (is_comment(content))
                    lines.push_back({number, text, LOSS::NO_PREFERENCE});
                else
                    lines.push_back({number, text,
                                     line.bracket_after_equals ? LOSS::BRACKET_IN_VALUE : LOSS::MALFORMED_HEADER,
                                     content.find('=') != std::string::npos});
                break;
            case PREFERENCE_LINE_KIND::TOO_SHORT:
                lines.push_back({number, text, is_comment(content) ? LOSS::NO_PREFERENCE : LOSS::TOO_SHORT,
                                 cuts_off_assignment(text)});
                break;
            case PREFERENCE_LINE_KIND::OTHER:
                lines.push_back({number, text, LOSS::NO_PREFERENCE, cuts_off_assignment(text)});
                break;
            }
        });
}

std::size_t PREFERENCE_RECORDS::position_of_section(const std::string& name)
{
    const auto [found, is_new] = section_positions.try_emplace(name, sections.size());
    if (is_new)
        sections.push_back(name);
    return found->second;
}

PREFERENCE_RECORDS::LINE PREFERENCE_RECORDS::line_of_header(std::size_t number, std::string_view text,
                                                            const PREFERENCE_LINE& line)
{
    const std::size_t opening = text.find('[');
    const std::string before = trimmed(text.substr(0, opening));
    const std::string behind = trimmed(text.substr(text.find(']', opening) + 1));
    below_empty_header = line.section.empty();
    LINE result{number, text, {}};
    result.section = position_of_section(line.section);
    if (line.bracket_after_equals && !is_comment(before))
    {
        result.lost = LOSS::BRACKET_IN_VALUE;
        result.has_value = true;
    }
    else if (line.section.empty())
        result.lost = LOSS::EMPTY_HEADER;
    else if (!before.empty() || !behind.empty())
        result.lost = LOSS::BESIDE_HEADER;
    result.has_value |= !is_comment(before) && !is_comment(behind) && behind.find('=') != std::string::npos;
    return result;
}

PREFERENCE_RECORDS::LINE PREFERENCE_RECORDS::line_of_key(std::size_t number, std::string_view text,
                                                         const PREFERENCE_LINE& line, const std::string& section)
{
    LINE result{number, text, {}};
    const bool comment = is_comment(line.name);
    result.has_value = !line.value.empty() && !comment;
    if (section.empty())
    {
        result.lost = comment              ? LOSS::NO_PREFERENCE
                      : below_empty_header ? LOSS::BELOW_EMPTY_HEADER
                                           : LOSS::BEFORE_SECTION;
        return result;
    }
    result.section = position_of_section(section);
    const auto [found, is_first] = record_positions.try_emplace(section + line.name, records.size());
    result.record = found->second;
    if (is_first)
        records.push_back({result.section, line.name, line.value, number, {}});
    else
        result.lost = LOSS::SECOND_LINE;
    return result;
}

// --- Changes ---

void PREFERENCE_RECORDS::assign(CFG_USER_INI_ENUMS number, const std::string& value)
{
    RECORD* const record = current_record(number);
    if (record != nullptr)
    {
        if (!record->value_before)
            record->value_before = record->value;
        record->value = value;
        return;
    }
    const std::string key = cfg_get_user_ini_ini_string(number);
    const std::string section = cfg_get_section_for_name(key.c_str(), nullptr, true);
    record_positions[section + key] = records.size();
    records.push_back({position_of_section(section), key, value, 0, {}});
}

void PREFERENCE_RECORDS::clear(CFG_USER_INI_ENUMS number)
{
    if (current_record(number) != nullptr)
        assign(number, {});
}

PREFERENCE_RECORDS::RECORD* PREFERENCE_RECORDS::current_record(CFG_USER_INI_ENUMS number)
{
    const std::string key = cfg_get_user_ini_ini_string(number);
    const auto found = record_positions.find(cfg_get_section_for_name(key.c_str(), nullptr, true) + key);
    return found == record_positions.end() ? nullptr : &records[found->second];
}

// --- The save ---

std::string PREFERENCE_RECORDS::saved() const
{
    std::deque<CFG_USER_VALUE_STRUCT> copies;
    CFG_USER_VALUE_MAP ordered;
    for (const RECORD& record : records)
    {
        const std::string& section = sections[record.section];
        ordered[section + record.name] =
            &copies.emplace_back(CFG_USER_VALUE_STRUCT{section, record.name, record.value});
    }
    std::ostringstream text;
    for (const SECTION_GROUP& group : groups_to_write(ordered))
        write_group(text, group);
    return std::move(text).str();
}

std::vector<PREFERENCE_RECORDS::SECTION_FATE> PREFERENCE_RECORDS::fates_of_sections() const
{
    std::vector<SECTION_FATE> fates(sections.size());
    for (const RECORD& record : records)
    {
        fates[record.section].written |= !record.value.empty();
        fates[record.section].emptied |= record.value_before && !record.value_before->empty();
    }
    std::map<std::string, std::size_t, LESS_IGNORING_CASE> headers;
    for (std::size_t i = 0; i < sections.size(); ++i)
    {
        if (!fates[i].written)
            continue;
        std::size_t& header = headers.try_emplace(sections[i], i).first->second;
        if (sections[i] < sections[header])
            header = i;
    }
    for (std::size_t i = 0; i < sections.size(); ++i)
    {
        if (fates[i].written)
            fates[i].header = headers.at(sections[i]);
    }
    return fates;
}

std::optional<LOSS> PREFERENCE_RECORDS::fate_of(const LINE& line, const std::vector<SECTION_FATE>& fates) const
{
    if (line.lost)
        return line.lost;
    const SECTION_FATE& section = fates[line.section];
    if (line.record == none)
    {
        if (!section.written)
            return section.emptied ? std::nullopt : std::optional(LOSS::EMPTY_SECTION);
        return section.header == line.section ? std::nullopt : std::optional(LOSS::MERGED_SECTION);
    }
    const RECORD& record = records[line.record];
    if (record.value_before && (record.value.empty() || record.value != record.value_before))
        return std::nullopt; // as was asked for
    if (record.value.empty())
        return LOSS::EMPTY_VALUE;
    if (section.header != line.section)
        return LOSS::MERGED_SECTION;
    if (!behind_zero_byte(line.text).empty())
        return LOSS::ZERO_BYTE;
    return reads_back(record.value) ? std::nullopt : std::optional(LOSS::CHANGED_VALUE);
}

bool PREFERENCE_RECORDS::loses_value(const LINE& line, LOSS reason) const
{
    if (reason == LOSS::MERGED_SECTION && line.record == none)
        return false; // its key lines do
    if (reason == LOSS::ZERO_BYTE)
        return behind_zero_byte(line.text).find_first_not_of(std::string_view("\0 \t\r", 4)) != std::string_view::npos;
    if (!line.has_value || reason != LOSS::SECOND_LINE)
        return line.has_value;
    // The first line says the same of the same key, or did before it was changed. Section and key count as one word: a
    // line of another section may have the place too.
    const RECORD& first = records[line.record];
    const std::string value = classify_preference_line(line.text).value;
    return first.section != line.section || (value != first.value && value != first.value_before);
}

std::vector<LOST_LINE> PREFERENCE_RECORDS::lost_lines() const
{
    const std::vector<SECTION_FATE> fates = fates_of_sections();
    std::vector<LOST_LINE> lost;
    for (const LINE& line : lines)
    {
        const std::optional<LOSS> reason = fate_of(line, fates);
        if (!reason)
            continue;
        LOST_LINE& result = lost.emplace_back(
            LOST_LINE{line.number, std::string(line.text), *reason, loses_value(line, *reason), 0, {}, {}});
        if (line.section != none)
            result.section = sections[line.section];
        if (*reason == LOSS::SECOND_LINE)
        {
            const RECORD& first = records[line.record];
            result.other_line = first.line;
            if (first.section != line.section)
                result.section_in_its_place = sections[first.section];
        }
        if (*reason == LOSS::MERGED_SECTION)
            result.section_in_its_place = sections[fates[line.section].header];
    }
    return lost;
}

// --- Words ---

const char* loss_word(LOSS reason)
{
    switch (reason)
    {
    case LOSS::NO_PREFERENCE:
        break;
    case LOSS::TOO_SHORT:
        return "too-short";
    case LOSS::MALFORMED_HEADER:
        return "malformed-header";
    case LOSS::BRACKET_IN_VALUE:
        return "bracket-in-value";
    case LOSS::EMPTY_HEADER:
        return "empty-header";
    case LOSS::EMPTY_SECTION:
        return "empty-section";
    case LOSS::BESIDE_HEADER:
        return "beside-header";
    case LOSS::BEFORE_SECTION:
        return "before-section";
    case LOSS::BELOW_EMPTY_HEADER:
        return "below-empty-header";
    case LOSS::SECOND_LINE:
        return "duplicate";
    case LOSS::EMPTY_VALUE:
        return "empty-value";
    case LOSS::MERGED_SECTION:
        return "merged-section";
    case LOSS::ZERO_BYTE:
        return "zero-byte";
    case LOSS::CHANGED_VALUE:
        return "changed-value";
    }
    return "not-kept";
}

std::string loss_as_text(const LOST_LINE& line)
{
    switch (line.reason)
    {
    case LOSS::NO_PREFERENCE:
        break;
    case LOSS::TOO_SHORT:
        return "a line of fewer than 3 characters is ignored, and a save drops it";
    case LOSS::MALFORMED_HEADER:
        return "a line with a \"[\" is taken for a section header; without \"]\" it is ignored, and a save drops it";
    case LOSS::BRACKET_IN_VALUE:
        return "a line with a \"[\" is taken for a section header" +
               (line.section.empty() ? std::string("; it sets nothing")
                                     : ": the section " + in_single_quotes(line.section) + " begins here") +
               ", and a save drops the key";
    case LOSS::EMPTY_HEADER:
        return "a header without a name: the lines below it are ignored, and a save drops them";
    case LOSS::EMPTY_SECTION:
        return "a section without a value, which a save drops";
    case LOSS::BESIDE_HEADER:
        return "a save keeps the header, and drops the text beside it";
    case LOSS::BEFORE_SECTION:
        return "a key line before any section is ignored, and a save drops it";
    case LOSS::BELOW_EMPTY_HEADER:
        return "a key line below a header without a name is ignored, and a save drops it";
    case LOSS::SECOND_LINE:
        return "line " + std::to_string(line.other_line) +
               (line.section_in_its_place.empty()
                    ? std::string(" sets this key of this section already")
                    : ", in [" + line.section_in_its_place +
                          "], has this section and this key, written as one word, already") +
               ": the first one counts, and a save drops this one";
    case LOSS::EMPTY_VALUE:
        return "an empty value counts as none, and a save drops the line";
    case LOSS::MERGED_SECTION:
        return "the section [" + line.section + "] differs from [" + line.section_in_its_place +
               "] in letter case only, and a save writes both below that header";
    case LOSS::ZERO_BYTE:
        return "the text behind a zero byte is ignored, and a save drops it";
    case LOSS::CHANGED_VALUE:
        return "a save keeps these quotes, and the load behind it removes them";
    }
    return "this line says nothing, and a save drops it";
}
