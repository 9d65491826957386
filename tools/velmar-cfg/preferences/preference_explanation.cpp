// A lookup asks for one record after the other: of the running release's section, of each release's in turn, and of the
// section without a release. The answer, and the line that gives it, are those of the model of lookups (preferences.h).
// This file tells why the other lines do not count, in two walks over the preference file. The first finds the first
// line of each record that a lookup may ask for, and the header that keeps older releases from being asked. The second
// compares each line that names the key, in any spelling, with those.
//
// Section and key count as one word, as in the store: a line of another section and name may be the record, and is
// shown then.
//
// Cost: O(n r) time for n lines and r releases. Only the lines that are explained are kept.
#include "tools/velmar-cfg/preferences/preference_explanation.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/settings/library_rules.h"

using namespace zon_cfg;

namespace
{
// What stands before the first "=", as the reader trims it.
std::string name_in(std::string_view text)
{
    text = text.substr(0, text.find('\0'));
    return trimmed(text.substr(0, text.find('=')));
}

std::string_view without_comment_sign(std::string_view name)
{
    return name.substr(std::min(name.find_first_not_of("#; \t"), name.size()));
}

class LINE_EXPLAINER
{
public:
    LINE_EXPLAINER(std::string_view the_bytes, const PREFERENCE& the_preference)
        : bytes(the_bytes), preference(the_preference)
    {
        add_candidate(released_section(preference.section, ver_get_version()));
        for (const std::string& release : ver_get_all_versions())
            add_candidate(released_section(preference.section, release));
        add_candidate(preference.section);
        for_each_preference_line(bytes, [this](std::size_t number, std::string_view, const PREFERENCE_LINE& line,
                                               const std::string& section) { find_candidate(number, line, section); });
    }

    std::vector<EXPLAINED_PREFERENCE_LINE> explained() const
    {
        std::vector<EXPLAINED_PREFERENCE_LINE> lines;
        std::optional<std::string> current_section;
        for_each_preference_line(
            bytes,
            [&](std::size_t number, std::string_view text, const PREFERENCE_LINE& line, const std::string& section)
            {
                EXPLAINED_PREFERENCE_LINE explained;
                explained.number = number;
                explained.section = current_section; // of a line that begins a section, the one that it ends
                explained.name = name_in(text);
                explained.value = line.value;
                explained.old_name = line.old_name_converted;
                if (line.kind == PREFERENCE_LINE_KIND::KEY ? explain_key(line, explained)
                                                           : explain_header(line, text, explained))
                    lines.push_back(std::move(explained));
                if (line.kind == PREFERENCE_LINE_KIND::HEADER)
                    current_section = section;
            });
        return lines;
    }

private:
    // A record that a lookup may ask for.
    struct CANDIDATE
    {
        std::string section;
        std::size_t line = 0; // the first one of it; 0 for none
    };

    void add_candidate(std::string section)
    {
        if (std::ranges::find(candidates, section, &CANDIDATE::section) == candidates.end())
            candidates.push_back({std::move(section)});
    }

    bool is_record(const CANDIDATE& candidate, const PREFERENCE_LINE& line, const std::string& section) const
    {
        return line.kind == PREFERENCE_LINE_KIND::KEY && !section.empty() &&
               section + line.name == candidate.section + preference.key;
    }

    void find_candidate(std::size_t number, const PREFERENCE_LINE& line, const std::string& section)
    {
        if (line.kind == PREFERENCE_LINE_KIND::HEADER && running_section == 0 && section == candidates.front().section)
            running_section = number;
        for (CANDIDATE& candidate : candidates)
        {
            if (candidate.line == 0 && is_record(candidate, line, section))
                candidate.line = number;
        }
    }

    // These set the fate, and return whether the line has anything to do with the key.
    bool explain_header(const PREFERENCE_LINE& line, std::string_view text, EXPLAINED_PREFERENCE_LINE& explained) const
    {
        if (!line.bracket_after_equals || !names_key(explained.name))
            return false;
        explained.fate = LINE_FATE::TAKEN_FOR_HEADER;
        explained.value = trimmed(text.substr(text.find('=') + 1));
        explained.old_name = cfg_convert_from_old_to_new(explained.name) != explained.name;
        return true;
    }

    bool explain_key(const PREFERENCE_LINE& line, EXPLAINED_PREFERENCE_LINE& explained) const
    {
        const std::string section = explained.section.value_or("");
        const auto candidate = std::ranges::find_if(candidates, [&](const CANDIDATE& of_lookup)
                                                    { return is_record(of_lookup, line, section); });
        if (candidate == candidates.end() && !names_key(explained.name))
            return false;
        if (candidate != candidates.end())
            explain_record(*candidate, explained);
        else
            explained.fate = fate_outside(line, explained);
        return true;
    }

    // In any letter case, by an old name, or in what looks like a comment.
    bool names_key(std::string_view name) const
    {
        return same_name(cfg_convert_from_old_to_new(std::string(without_comment_sign(name))), preference.key);
    }

    LINE_FATE fate_outside(const PREFERENCE_LINE& line, const EXPLAINED_PREFERENCE_LINE& explained) const
    {
        if (!same_name(line.name, preference.key))
            return LINE_FATE::COMMENT;
        if (!explained.section)
            return LINE_FATE::BEFORE_SECTION;
        const std::string& section = *explained.section;
        if (section.empty())
            return LINE_FATE::BELOW_EMPTY_HEADER;
        const auto is_looked_into = [&section](const CANDIDATE& candidate) { return candidate.section == section; };
        const auto is_so_but_for_case = [&section](const CANDIDATE& candidate)
        { return same_name(candidate.section, section); };
        if (std::ranges::any_of(candidates, is_looked_into))
            return LINE_FATE::LETTER_CASE;
        if (std::ranges::any_of(candidates, is_so_but_for_case))
            return LINE_FATE::SECTION_LETTER_CASE;
        return section.starts_with(preference.section + " ") ? LINE_FATE::UNKNOWN_RELEASE : LINE_FATE::OTHER_SECTION;
    }

    void explain_record(const CANDIDATE& candidate, EXPLAINED_PREFERENCE_LINE& explained) const
    {
        const auto set = [&explained](LINE_FATE fate, std::size_t other_line = 0)
        {
            explained.fate = fate;
            explained.other_line = other_line;
        };
        if (explained.number != candidate.line)
            return set(LINE_FATE::SECOND_LINE, candidate.line);
        if (explained.number == preference.line)
            return set(find_fitting_triple(preference.number, preference.value.c_str()) != nullptr
                           ? LINE_FATE::COUNTS
                           : LINE_FATE::COUNTS_UNALLOWED);
        const CANDIDATE& running = candidates.front();
        if (&candidate == &running)
            return set(LINE_FATE::EMPTY_VALUE);
        if (running_section != 0 || running.line != 0)
            return set(LINE_FATE::RUNNING_RELEASE, running_section != 0 ? running_section : running.line);
        const auto first = std::ranges::find_if(candidates, [](const CANDIDATE& other) { return other.line != 0; });
        // The section without a release is asked last, and also where an empty value has ended the walk over releases.
        const std::size_t before = &candidate == &candidates.back() ? preference.line : first->line;
        if (before == 0 || before == explained.number)
            return set(LINE_FATE::EMPTY_VALUE);
        set(LINE_FATE::OTHER_RELEASE_FIRST, before);
    }

    const std::string_view bytes;
    const PREFERENCE& preference;
    std::vector<CANDIDATE> candidates; // in the order in which a lookup asks for them
    std::size_t running_section = 0;   // the line of its first header; 0 for none
};

void write_line(JSON_WRITER& out, const EXPLAINED_PREFERENCE_LINE& line, const PREFERENCE& preference)
{
    const char* const reason = fate_word(line.fate);
    out.begin_object();
    out.field("line", line.number);
    out.field("section", line.section);
    out.field("name", line.name);
    out.field("value", line.value);
    out.field("old_name", line.old_name);
    out.field("counts", line.counts());
    out.field_or_null("reason", reason == nullptr ? "" : reason);
    out.field_or_null("why", fate_as_text(line, preference));
    out.field("other_line", line.other_line == 0 ? std::nullopt : std::optional(line.other_line));
    out.end_object();
}
}

PREFERENCE_EXPLANATION explain_preference(const INPUT_FILE* file, CFG_USER_INI_ENUMS number, SECRETS& secrets)
{
    if (file == nullptr)
        return {PREFERENCES("").look_up(number), {}, {}};
    const std::optional<std::string> hidden = hide_in_preference_text(file->whole_lines(), secrets);
    const std::string_view bytes = hidden ? *hidden : file->whole_lines();
    PREFERENCE_EXPLANATION explanation{PREFERENCES(bytes).look_up(number), file->path, {}};
    explanation.lines = LINE_EXPLAINER(bytes, explanation.preference).explained();
    return explanation;
}

const char* fate_word(LINE_FATE fate)
{
    switch (fate)
    {
    case LINE_FATE::COUNTS:
        break;
    case LINE_FATE::COUNTS_UNALLOWED:
        return "not-allowed";
    case LINE_FATE::COMMENT:
        return "no-comment";
    case LINE_FATE::TAKEN_FOR_HEADER:
        return "bracket-in-value";
    case LINE_FATE::BEFORE_SECTION:
        return "before-section";
    case LINE_FATE::BELOW_EMPTY_HEADER:
        return "below-empty-header";
    case LINE_FATE::OTHER_SECTION:
        return "wrong-section";
    case LINE_FATE::UNKNOWN_RELEASE:
        return "unknown-release";
    case LINE_FATE::SECTION_LETTER_CASE:
        return "section-letter-case";
    case LINE_FATE::LETTER_CASE:
        return "letter-case";
    case LINE_FATE::SECOND_LINE:
        return "duplicate";
    case LINE_FATE::EMPTY_VALUE:
        return "empty-value";
    case LINE_FATE::RUNNING_RELEASE:
        return "running-release";
    case LINE_FATE::OTHER_RELEASE_FIRST:
        return "other-release-first";
    }
    return nullptr;
}

std::string fate_as_text(const EXPLAINED_PREFERENCE_LINE& line, const PREFERENCE& preference)
{
    const std::string other_line = "line " + std::to_string(line.other_line);
    const std::string running = "[" + released_section(preference.section, ver_get_version()) + "]";
    switch (line.fate)
    {
    case LINE_FATE::COUNTS:
        break;
    case LINE_FATE::COUNTS_UNALLOWED:
        return "the catalogue does not allow this value; programs get it all the same";
    case LINE_FATE::COMMENT:
        return "a comment, which is kept as a preference of that name";
    case LINE_FATE::TAKEN_FOR_HEADER:
        return "a line with a \"[\" is taken for a section header";
    case LINE_FATE::BEFORE_SECTION:
        return "a key line before any section is ignored";
    case LINE_FATE::BELOW_EMPTY_HEADER:
        return "a key line below a header without a name is ignored";
    case LINE_FATE::OTHER_SECTION:
        return preference.key + " is looked for in sections " + in_single_quotes(preference.section) + " only";
    case LINE_FATE::UNKNOWN_RELEASE:
        return "no lookup searches this section: it names no release that is known here";
    case LINE_FATE::SECTION_LETTER_CASE:
        return "no lookup searches this section: letter case counts";
    case LINE_FATE::LETTER_CASE:
        return "a value is found only under the key's own spelling";
    case LINE_FATE::SECOND_LINE:
        return other_line + " has this section and this key already: the first one counts";
    case LINE_FATE::EMPTY_VALUE:
        return "an empty value counts as none";
    case LINE_FATE::RUNNING_RELEASE:
        return "the running release has its own section " + running + ", at " + other_line +
               ": nothing older is looked for";
    case LINE_FATE::OTHER_RELEASE_FIRST:
        return other_line + " is found first";
    }
    return {};
}

void write_fields(JSON_WRITER& out, const PREFERENCE_EXPLANATION& explanation)
{
    write_preference_fields(out, explanation.preference);
    out.field_or_null("path", explanation.path);
    out.key("lines");
    out.begin_list();
    for (const EXPLAINED_PREFERENCE_LINE& line : explanation.lines)
        write_line(out, line, explanation.preference);
    out.end_list();
}
