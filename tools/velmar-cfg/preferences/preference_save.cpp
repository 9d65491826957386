// A line has one of three fates. Some lines are lost whatever the records are: what the reader passes over, and a key's
// second line. A header stays if its section has a record to write, and no other section whose name differs in letter
// case alone stands before it in the file's order. A key line stays if its record has a value, its section keeps its
// header, and the value reads back as it is.
//
// Invariants:
// - A saved record reads back as itself, except below the header of another section (letter case) and where a value
//   keeps a pair of quotes. For names are trimmed and hold no "=", names and values hold no "[", values are trimmed,
//   and sections hold no "]". What is assigned is checked by its caller.
// - Of sections that differ in letter case alone, the first in byte order gives the header: no key comes into it, for
//   such sections differ before their ends.
// - What a line, a section or a record says is a part of the file's bytes wherever the reader changes nothing, and
//   takes no memory of its own. Sections and records go by their positions.
//
// Cost: a file is read once; a line costs the reader's look at it and a search in a hash table. n log n for the saved
// text, which is ordered.
#include "tools/velmar-cfg/preferences/preference_save.h"

#include <algorithm>
#include <deque>
#include <sstream>
#include <utility>

#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"
#include "tools/velmar-cfg/settings/library_rules.h"

using namespace zon_cfg;

namespace
{
bool is_comment(std::string_view trimmed_text)
{
    return trimmed_text.starts_with('#') || trimmed_text.starts_with(';');
}

// Without white space at the ends, as the reader trims.
std::string_view trimmed_part(std::string_view text)
{
    constexpr std::string_view white_space = " \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(white_space), text.size()));
    return text.substr(0, text.find_last_not_of(white_space) + 1);
}

// Two quotes around a value go at each load; a value that keeps such a pair loses it at the load after the save.
bool reads_back(std::string_view value)
{
    return value.front() != '"' || classify_preference_line("KEY = " + std::string(value)).value == value;
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

// FNV-1a, so that the hash of two texts run together is that of the first one gone on with.
std::uint64_t hash_of(std::string_view text, std::uint64_t hash = 0xcbf29ce484222325U)
{
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    return hash;
}

// Whether two pairs of texts, each run together, are the same text.
bool same_run_together(std::string_view a, std::string_view behind_a, std::string_view b, std::string_view behind_b)
{
    if (a.size() > b.size())
        return same_run_together(b, behind_b, a, behind_a);
    const std::string_view rest = b.substr(a.size());
    return a.size() + behind_a.size() == b.size() + behind_b.size() && b.starts_with(a) && behind_a.starts_with(rest) &&
           behind_a.substr(rest.size()) == behind_b;
}
}

// --- The load ---

PREFERENCE_RECORDS::PREFERENCE_RECORDS(std::string_view bytes)
{
    for_each_preference_line(
        bytes,
        [this](std::size_t number, std::string_view text, const PREFERENCE_LINE& read, const std::string&)
        {
            const std::string_view content = trimmed_part(text);
            if (content.empty())
                return;
            LINE line;
            line.text = text;
            line.number = static_cast<INDEX>(number);
            switch (read.kind)
            {
            case PREFERENCE_LINE_KIND::HEADER:
                return add_header(line, read);
            case PREFERENCE_LINE_KIND::KEY:
                return add_key(line, read);
            case PREFERENCE_LINE_KIND::MALFORMED_HEADER:
                line.lost = is_comment(content)         ? LOSS::NO_PREFERENCE
                            : read.bracket_after_equals ? LOSS::BRACKET_IN_VALUE
                                                        : LOSS::MALFORMED_HEADER;
                line.has_value = !is_comment(content) && content.find('=') != std::string_view::npos;
                break;
            case PREFERENCE_LINE_KIND::TOO_SHORT:
                line.lost = is_comment(content) ? LOSS::NO_PREFERENCE : LOSS::TOO_SHORT;
                line.has_value = cuts_off_assignment(text);
                break;
            case PREFERENCE_LINE_KIND::OTHER:
                line.lost = LOSS::NO_PREFERENCE;
                line.has_value = cuts_off_assignment(text);
                break;
            }
            lines.push_back(line);
        });
}

// What was read, as the part of the file that it is; a copy where the reader has made something else of it.
std::string_view PREFERENCE_RECORDS::kept(std::string_view part, std::string_view read)
{
    return part == read ? part : texts.keep(read);
}

PREFERENCE_RECORDS::INDEX PREFERENCE_RECORDS::section_named(std::string_view name)
{
    const std::uint64_t hash = hash_of(name);
    const auto found = section_positions.find(hash, [&](INDEX section) { return sections[section].name == name; });
    if (found)
        return *found;
    const auto section = static_cast<INDEX>(sections.size());
    sections.push_back({name, hash});
    section_positions.add(hash, section);
    return section;
}

void PREFERENCE_RECORDS::add_header(LINE line, const PREFERENCE_LINE& read)
{
    const std::size_t opening = line.text.find('[');
    const std::size_t closing = line.text.find(']', opening);
    const std::string_view before = trimmed_part(line.text.substr(0, opening));
    const std::string_view behind = trimmed_part(line.text.substr(closing + 1));
    line.section = section_named(kept(line.text.substr(opening + 1, closing - opening - 1), read.section));
    current_section = line.section;
    if (read.bracket_after_equals && !is_comment(before))
    {
        line.lost = LOSS::BRACKET_IN_VALUE;
        line.has_value = true;
    }
    else if (read.section.empty())
        line.lost = LOSS::EMPTY_HEADER;
    else if (!before.empty() || !behind.empty())
        line.lost = LOSS::BESIDE_HEADER;
    line.has_value |= !is_comment(before) && !is_comment(behind) && behind.find('=') != std::string_view::npos;
    lines.push_back(line);
}

void PREFERENCE_RECORDS::add_key(LINE line, const PREFERENCE_LINE& read)
{
    const bool comment = is_comment(read.name);
    line.has_value = !read.value.empty() && !comment;
    line.old_name_converted = read.old_name_converted;
    const bool before_section = current_section == none;
    if (before_section || sections[current_section].name.empty())
    {
        line.lost = comment ? LOSS::NO_PREFERENCE : before_section ? LOSS::BEFORE_SECTION : LOSS::BELOW_EMPTY_HEADER;
        lines.push_back(line);
        return;
    }
    line.section = current_section;
    const SECTION& section = sections[current_section];
    const std::uint64_t hash = hash_of(read.name, section.hash);
    if (const std::optional<INDEX> first = find_record(hash, section.name, read.name))
    {
        line.record = *first;
        line.lost = LOSS::SECOND_LINE;
        lines.push_back(line);
        return;
    }
    const std::string_view text = line.text.substr(0, line.text.find('\0'));
    const std::size_t equals = text.find('=');
    std::string_view value = trimmed_part(text.substr(equals + 1));
    if (read.quotes_removed)
        value = trimmed_part(value.substr(1, value.size() - 2));
    line.record = static_cast<INDEX>(records.size());
    records.push_back(
        {kept(trimmed_part(text.substr(0, equals)), read.name), kept(value, read.value), current_section, line.number});
    record_positions.add(hash, line.record);
    lines.push_back(line);
}

std::optional<PREFERENCE_RECORDS::INDEX> PREFERENCE_RECORDS::find_record(std::uint64_t hash, std::string_view section,
                                                                         std::string_view name) const
{
    return record_positions.find(hash,
                                 [&](INDEX found)
                                 {
                                     const RECORD& record = records[found];
                                     return same_run_together(sections[record.section].name, record.name, section,
                                                              name);
                                 });
}

// --- Changes ---

void PREFERENCE_RECORDS::assign(CFG_USER_INI_ENUMS number, const std::string& value)
{
    if (const std::optional<INDEX> found = current_record(number))
    {
        RECORD& record = records[*found];
        if (record.change == none)
        {
            record.change = static_cast<INDEX>(values_before.size());
            values_before.push_back(record.value);
        }
        record.value = texts.keep(value);
        return;
    }
    const std::string key = cfg_get_user_ini_ini_string(number);
    const INDEX section = section_named(texts.keep(cfg_get_section_for_name(key.c_str(), nullptr, true)));
    record_positions.add(hash_of(key, sections[section].hash), static_cast<INDEX>(records.size()));
    records.push_back({texts.keep(key), texts.keep(value), section, 0});
}

void PREFERENCE_RECORDS::clear(CFG_USER_INI_ENUMS number)
{
    if (current_record(number))
        assign(number, {});
}

std::optional<PREFERENCE_RECORDS::INDEX> PREFERENCE_RECORDS::current_record(CFG_USER_INI_ENUMS number) const
{
    const std::string key = cfg_get_user_ini_ini_string(number);
    const std::string section = cfg_get_section_for_name(key.c_str(), nullptr, true);
    return find_record(hash_of(key, hash_of(section)), section, key);
}

// --- The save ---

std::string PREFERENCE_RECORDS::saved() const
{
    std::deque<CFG_USER_VALUE_STRUCT> copies;
    CFG_USER_VALUE_MAP ordered;
    for (const RECORD& record : records)
    {
        const CFG_USER_VALUE_STRUCT copy{std::string(sections[record.section].name), std::string(record.name),
                                         std::string(record.value)};
        ordered[copy.section + copy.name] = &copies.emplace_back(copy);
    }
    std::ostringstream text;
    for (const SECTION_GROUP& group : groups_to_write(ordered))
        write_group(text, group);
    return std::move(text).str();
}

std::optional<std::string_view> PREFERENCE_RECORDS::value_before(const RECORD& record) const
{
    return record.change == none ? std::nullopt : std::optional(values_before[record.change]);
}

std::vector<PREFERENCE_RECORDS::SECTION_FATE> PREFERENCE_RECORDS::fates_of_sections() const
{
    std::vector<SECTION_FATE> fates(sections.size());
    for (const RECORD& record : records)
    {
        fates[record.section].written |= !record.value.empty();
        fates[record.section].emptied |= !value_before(record).value_or("").empty();
    }
    HASH_INDEX groups;
    for (INDEX i = 0; i < sections.size(); ++i)
    {
        if (!fates[i].written)
            continue;
        const std::string_view name = sections[i].name;
        const std::size_t hash = hash_of_name(name);
        const auto group = groups.find(hash, [&](INDEX other) { return same_name(sections[other].name, name); });
        if (!group)
            groups.add(hash, i);
        fates[i].group = group.value_or(i);
        SECTION_FATE& first = fates[fates[i].group];
        if (!group || name < sections[first.header].name)
            first.header = i;
    }
    return fates;
}

// Only of a section that is written.
PREFERENCE_RECORDS::INDEX PREFERENCE_RECORDS::header_of(INDEX section, const std::vector<SECTION_FATE>& fates)
{
    return fates[fates[section].group].header;
}

std::optional<LOSS> PREFERENCE_RECORDS::fate_of(const LINE& line, const std::vector<SECTION_FATE>& fates) const
{
    if (line.lost)
        return line.lost;
    const SECTION_FATE& section = fates[line.section];
    const bool is_merged = section.written && header_of(line.section, fates) != line.section;
    if (line.record == none)
    {
        if (!section.written)
            return section.emptied ? std::nullopt : std::optional(LOSS::EMPTY_SECTION);
        return is_merged ? std::optional(LOSS::MERGED_SECTION) : std::nullopt;
    }
    const RECORD& record = records[line.record];
    if (const auto before = value_before(record); before && (record.value.empty() || record.value != *before))
        return std::nullopt; // as was asked for
    if (record.value.empty())
        return LOSS::EMPTY_VALUE;
    if (is_merged)
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
    return first.section != line.section || (value != first.value && value != value_before(first));
}

EXAMINED_LINE PREFERENCE_RECORDS::examined(const LINE& line, const std::vector<SECTION_FATE>& fates) const
{
    EXAMINED_LINE result;
    result.number = line.number;
    result.text = line.text;
    if (line.section != none)
        result.section = sections[line.section].name;
    result.is_header = line.section != none && line.record == none;
    result.makes_record = line.record != none && line.lost != LOSS::SECOND_LINE;
    if (result.makes_record)
    {
        result.name = records[line.record].name;
        result.value = records[line.record].value;
        result.old_name_converted = line.old_name_converted;
    }
    const std::optional<LOSS> reason = fate_of(line, fates);
    if (!reason)
        return result;
    LOST_LINE loss{line.number, std::string(line.text),      *reason, loses_value(line, *reason),
                   0,           std::string(result.section), {}};
    if (*reason == LOSS::SECOND_LINE)
    {
        const RECORD& first = records[line.record];
        loss.other_line = first.line;
        if (first.section != line.section)
            loss.section_in_its_place = sections[first.section].name;
    }
    if (*reason == LOSS::MERGED_SECTION)
        loss.section_in_its_place = sections[header_of(line.section, fates)].name;
    result.loss = std::move(loss);
    return result;
}

std::vector<LOST_LINE> PREFERENCE_RECORDS::lost_lines() const
{
    std::vector<LOST_LINE> lost;
    for_each_line(
        [&lost](EXAMINED_LINE&& line)
        {
            if (line.loss)
                lost.push_back(std::move(*line.loss));
        });
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
        if (line.value_lost)
            return "a zero byte ends this line before the \"=\", and a save drops it";
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
                          "], sets the same preference, since the store joins section and key to one name") +
               ": the first one counts, and a save drops this one";
    case LOSS::EMPTY_VALUE:
        return "an empty value counts as none, and a save drops the line";
    case LOSS::MERGED_SECTION:
        return "the section [" + line.section + "] differs from [" + line.section_in_its_place +
               "] in letter case only, and a save writes both below that header";
    case LOSS::ZERO_BYTE:
        return "the text behind a zero byte is ignored, and a save drops it";
    case LOSS::CHANGED_VALUE:
        return "a save keeps these quotes, and the load after it removes them";
    }
    return "this line sets nothing, and a save drops it";
}
