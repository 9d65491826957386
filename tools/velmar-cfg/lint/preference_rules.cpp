// The model of a save (preference_save.h) says of each line what the reader takes from it and whether a save loses it,
// so that a file is parsed once. A lost line is a finding. The rules below look at the lines that take effect: headers
// that no lookup gets to, keys and values that the catalogue does not have.
//
// Findings are handed over line by line, and none is kept. Cost: that of the model, and for each odd name a search
// among the catalogue's names.
#include "tools/velmar-cfg/lint/preference_rules.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/preferences/preference_save.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/library_rules.h"

using namespace zon_cfg;

namespace
{
// The sections that lookups get to: of each section of the catalogue the one without a release, then those with one.
class KNOWN_SECTIONS
{
public:
    KNOWN_SECTIONS() : candidates(all_names())
    {
        for (std::string& name : all_names())
        {
            spellings.try_emplace(name, name);
            exact.insert(std::move(name));
        }
    }

    bool contains(const std::string& section) const
    {
        return exact.contains(section);
    }

    // The section that was probably meant, if there is one: first of all the same in other letter case.
    const std::string* nearest(const std::string& section) const
    {
        const auto other_case = spellings.find(section);
        return other_case != spellings.end() ? &other_case->second : candidates.nearest(section);
    }

private:
    static std::vector<std::string> all_names()
    {
        std::vector<std::string> sections;
        // A host may forget the running release among those that it knows; the library reads its sections all the same.
        std::vector<std::string> versions = ver_get_all_versions();
        if (std::string running = ver_get_version(); std::ranges::find(versions, running) == versions.end())
            versions.push_back(std::move(running));
        for (const CFG_USER_INI_ENUMS preference : all_preference_numbers())
        {
            const std::string bare = preference_triples(preference).front().section;
            if (std::ranges::find(sections, bare) != sections.end())
                continue;
            sections.push_back(bare);
            for (const std::string& version : versions)
                sections.push_back(released_section(bare, version));
        }
        return sections;
    }

    const NAME_CANDIDATES candidates;
    std::unordered_map<std::string, std::string, NAME_HASH, NAME_EQUAL> spellings; // by name, letter case ignored
    std::unordered_set<std::string> exact;
};

SEVERITY severity_of(const LOST_LINE& line)
{
    switch (line.reason)
    {
    case LOSS::NO_PREFERENCE:
    case LOSS::EMPTY_SECTION:
    case LOSS::BESIDE_HEADER:
        return line.value_lost ? SEVERITY::ERROR : SEVERITY::NOTE;
    case LOSS::EMPTY_VALUE:
    case LOSS::ZERO_BYTE:
    case LOSS::CHANGED_VALUE:
        return SEVERITY::WARNING;
    default:
        return SEVERITY::ERROR;
    }
}

// `header` is one to give as an example.
std::string instead_of(const LOST_LINE& line, const std::string& header)
{
    switch (line.reason)
    {
    case LOSS::NO_PREFERENCE:
        if (line.value_lost)
            return "remove the zero byte";
        break;
    case LOSS::TOO_SHORT:
        return "write 'KEY = VALUE'";
    case LOSS::MALFORMED_HEADER:
        return "close the header with \"]\"";
    case LOSS::BRACKET_IN_VALUE:
        return "write a value without \"[\"";
    case LOSS::EMPTY_HEADER:
        return "write " + header;
    case LOSS::EMPTY_SECTION:
        return "write a key with a value below it, or remove the line";
    case LOSS::BESIDE_HEADER:
        return line.value_lost ? "write the key into a line of its own" : "keep comments elsewhere";
    case LOSS::BEFORE_SECTION:
    case LOSS::BELOW_EMPTY_HEADER:
        return "put it below a header such as " + header;
    case LOSS::SECOND_LINE:
        return "remove one of the two";
    case LOSS::EMPTY_VALUE:
        return "give a value or remove the line";
    case LOSS::MERGED_SECTION:
        return "rename one of the two sections";
    case LOSS::ZERO_BYTE:
        return "remove the zero byte";
    case LOSS::CHANGED_VALUE:
        return "remove the inner quotes";
    }
    return "keep comments elsewhere; for a preference write 'KEY = VALUE'";
}

// The byte of the line that the loss is about; npos for its beginning.
std::size_t offset_of(const LOST_LINE& line)
{
    switch (line.reason)
    {
    case LOSS::MALFORMED_HEADER:
    case LOSS::BRACKET_IN_VALUE:
        return line.text.find('[');
    case LOSS::EMPTY_VALUE:
        return line.text.find('=');
    case LOSS::ZERO_BYTE:
        return line.text.find('\0');
    default:
        return std::string::npos;
    }
}

// One file under examination, line by line. The lines that a save loses come from the model that edits go by.
class EXAMINATION
{
public:
    EXAMINATION(const std::string& path, const std::function<void(const FINDING&)>& take_findings) : take(take_findings)
    {
        finding.file = path;
    }

    void run(std::string_view bytes)
    {
        PREFERENCE_RECORDS(bytes).for_each_line(
            [this](EXAMINED_LINE&& examined)
            {
                line = std::move(examined);
                if (line.loss)
                    add(severity_of(*line.loss), loss_word(line.loss->reason), loss_as_text(*line.loss),
                        instead_of(*line.loss, usual_header), offset_of(*line.loss));
                examine();
            });
    }

private:
    void add(SEVERITY severity, const char* reason, std::string message, std::string instead,
             std::size_t offset = std::string_view::npos)
    {
        const std::size_t first = std::min(line.text.find_first_not_of(" \t\r\v\f"), line.text.size());
        finding.line = line.number;
        finding.column = column_before_hiding(line.text, offset == std::string_view::npos ? first : offset);
        finding.severity = severity;
        finding.reason = reason;
        finding.message = std::move(message);
        finding.instead = std::move(instead);
        take(finding);
    }

    void examine();
    void examine_header();
    void examine_key();
    void examine_known_key(CFG_USER_INI_ENUMS preference);
    void value_not_allowed(CFG_USER_INI_ENUMS preference, std::string_view key);
    void unknown_key();

    const std::function<void(const FINDING&)>& take;
    const KNOWN_SECTIONS known_sections;
    const NAME_CANDIDATES known_keys = NAME_CANDIDATES(all_preference_keys());
    const std::string usual_header = "'[" + released_section("General", ver_get_version()) + "]'";

    EXAMINED_LINE line;
    std::string name;  // of the line's record, and
    std::string value; // its value: with the zero bytes behind them that the library wants
    FINDING finding;   // the last one
};

// Whether the line takes effect, so that there is more to say about it.
bool takes_effect(const std::optional<LOST_LINE>& loss)
{
    if (!loss)
        return true;
    switch (loss->reason)
    {
    case LOSS::EMPTY_SECTION:
    case LOSS::BESIDE_HEADER:
    case LOSS::EMPTY_VALUE:
    case LOSS::MERGED_SECTION:
    case LOSS::ZERO_BYTE:
    case LOSS::CHANGED_VALUE:
        return true;
    default:
        return false;
    }
}

std::string advice_to_write(std::string_view name, std::string_view value)
{
    return "write " + in_single_quotes(std::string(name).append(" = ").append(value));
}

void EXAMINATION::examine()
{
    if (!takes_effect(line.loss))
        return;
    if (line.is_header)
        examine_header();
    else if (line.makes_record)
        examine_key();
}

void EXAMINATION::examine_header()
{
    const std::string section(line.section);
    if (known_sections.contains(section))
        return;
    const std::string* const nearest = known_sections.nearest(section);
    add(SEVERITY::WARNING, "unknown-section",
        "no lookup searches the section " + in_single_quotes(section) + "; letter case counts",
        nearest != nullptr ? "write '[" + *nearest + "]'" : "write a section of the catalogue, such as " + usual_header,
        line.text.find('['));
}

void EXAMINATION::examine_key()
{
    name = line.name;
    value = line.value;
    if (line.old_name_converted)
        add(SEVERITY::NOTE, "old-name", "the old name of " + name + ", converted by the next save",
            advice_to_write(name, value));
    const CFG_USER_INI_ENUMS preference = find_preference(name.c_str());
    if (preference == CFG_USER_INI_ENUMS_END)
        unknown_key();
    else
        examine_known_key(preference);
}

void EXAMINATION::unknown_key()
{
    if (name.starts_with('#') || name.starts_with(';'))
    {
        add(SEVERITY::WARNING, "no-comment",
            "there are no comments: this is kept as a preference " + in_single_quotes(name), "remove the line");
        return;
    }
    const std::string* const nearest = known_keys.nearest(name);
    add(SEVERITY::WARNING, "unknown-key",
        "there is no preference " + in_single_quotes(name) + "; the line has no effect",
        nearest != nullptr ? advice_to_write(*nearest, value) : "remove the line");
}

void EXAMINATION::examine_known_key(CFG_USER_INI_ENUMS preference)
{
    const std::string_view key = cfg_user_ini_ini_names[preference_position(preference)];
    const std::string_view bare_section = preference_sections[preference_position(preference)];
    if (name != key)
        add(SEVERITY::ERROR, "letter-case", "a value is found only under the key's own spelling",
            advice_to_write(key, value));
    const std::string_view release = line.section.substr(std::min(bare_section.size(), line.section.size()));
    if (!line.section.starts_with(bare_section) || !(release.empty() || release.starts_with(' ')))
        add(SEVERITY::ERROR, "wrong-section",
            std::string(key) + " is looked for in sections " + in_single_quotes(bare_section) + " only",
            "move it below '[" + released_section(std::string(bare_section), ver_get_version()) + "]'");
    if (!value.empty() && find_fitting_triple(preference, value.c_str()) == nullptr)
        value_not_allowed(preference, key);
}

void EXAMINATION::value_not_allowed(CFG_USER_INI_ENUMS preference, std::string_view key)
{
    std::string allowed;
    for (const PREFERENCE_TRIPLE& triple : preference_triples(preference))
        allowed += (allowed.empty() ? "" : ", ") + std::string(triple.value);
    const std::size_t behind = line.text.find('=') + 1;
    add(SEVERITY::ERROR, "not-allowed", in_single_quotes(value) + " is not allowed for " + std::string(key),
        "write one of " + allowed, line.text.find_first_not_of(" \t", behind));
}
}

void lint_preferences(const INPUT_FILE& file, SECRETS& secrets, const std::function<void(const FINDING&)>& take)
{
    if (is_utf_16(file.bytes))
    {
        take(utf_16_finding(file.path));
        return;
    }
    const std::optional<std::string> hidden = hide_in_preference_text(file.whole_lines(), secrets);
    EXAMINATION(file.path, take).run(hidden ? *hidden : file.whole_lines());
}
