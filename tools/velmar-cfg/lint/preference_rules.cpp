#include "tools/velmar-cfg/lint/preference_rules.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"
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
        const std::vector<std::string> versions = ver_get_all_versions();
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
        return SEVERITY::NOTE;
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

std::string instead_of(const LOST_LINE& line)
{
    const std::string header = "'[" + released_section("General", ver_get_version()) + "]'";
    switch (line.reason)
    {
    case LOSS::NO_PREFERENCE:
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
    explicit EXAMINATION(const std::string& path_of_file) : path(path_of_file) {}

    std::vector<FINDING> findings(std::string_view bytes)
    {
        const std::vector<LOST_LINE> lost_lines = PREFERENCE_RECORDS(bytes).lost_lines();
        auto lost = lost_lines.begin();
        for_each_preference_line(bytes,
                                 [&](std::size_t line_number, std::string_view line_text,
                                     const PREFERENCE_LINE& classified, const std::string& its_section)
                                 {
                                     number = line_number;
                                     text = line_text;
                                     line = classified;
                                     section = its_section;
                                     std::optional<LOSS> loss;
                                     if (lost != lost_lines.end() && lost->number == number)
                                     {
                                         loss = lost->reason;
                                         add(severity_of(*lost), loss_word(*loss), loss_as_text(*lost),
                                             instead_of(*lost), offset_of(*lost));
                                         ++lost;
                                     }
                                     examine(loss);
                                 });
        return std::move(found);
    }

private:
    void add(SEVERITY severity, const char* reason, const std::string& message, const std::string& instead,
             std::size_t offset = std::string_view::npos)
    {
        const std::size_t first = std::min(text.find_first_not_of(" \t\r\v\f"), text.size());
        found.push_back({path,
                         number,
                         {},
                         offset_before_hiding(text, offset == std::string_view::npos ? first : offset) + 1,
                         severity,
                         reason,
                         message,
                         instead});
    }

    void examine(std::optional<LOSS> loss);
    void examine_header();
    void examine_key();
    void examine_known_key(CFG_USER_INI_ENUMS preference);
    void unknown_key();

    const std::string path;
    const KNOWN_SECTIONS known_sections;
    const NAME_CANDIDATES known_keys = NAME_CANDIDATES(all_preference_keys());

    std::string_view text; // the line, and
    std::size_t number = 0;
    PREFERENCE_LINE line; // what the reader takes from it, and
    std::string section;  // the section that holds
    std::vector<FINDING> found;
};

// Whether the line takes effect, so that there is more to say about it.
bool takes_effect(std::optional<LOSS> loss)
{
    return !loss || *loss == LOSS::EMPTY_SECTION || *loss == LOSS::BESIDE_HEADER || *loss == LOSS::EMPTY_VALUE ||
           *loss == LOSS::MERGED_SECTION || *loss == LOSS::ZERO_BYTE || *loss == LOSS::CHANGED_VALUE;
}

void EXAMINATION::examine(std::optional<LOSS> loss)
{
    if (!takes_effect(loss))
        return;
    if (line.kind == PREFERENCE_LINE_KIND::HEADER)
        examine_header();
    else if (line.kind == PREFERENCE_LINE_KIND::KEY)
        examine_key();
}

void EXAMINATION::examine_header()
{
    if (known_sections.contains(section))
        return;
    const std::string* const nearest = known_sections.nearest(section);
    add(SEVERITY::WARNING, "unknown-section",
        "no lookup gets to the section " + in_single_quotes(section) + "; letter case counts",
        nearest != nullptr ? "write '[" + *nearest + "]'" : "write the section, a blank, a release and \"_pro\"",
        text.find('['));
}

void EXAMINATION::examine_key()
{
    if (line.old_name_converted)
        add(SEVERITY::NOTE, "old-name", "the old name of " + line.name + ", converted by the next save",
            "write " + in_single_quotes(line.name + " = " + line.value));
    const CFG_USER_INI_ENUMS preference = find_preference(line.name.c_str());
    if (preference == CFG_USER_INI_ENUMS_END)
        unknown_key();
    else
        examine_known_key(preference);
}

void EXAMINATION::unknown_key()
{
    if (line.name.starts_with('#') || line.name.starts_with(';'))
    {
        add(SEVERITY::WARNING, "no-comment",
            "there are no comments: this is kept as a preference " + in_single_quotes(line.name), "remove the line");
        return;
    }
    const std::string* const nearest = known_keys.nearest(line.name);
    add(SEVERITY::WARNING, "unknown-key",
        "there is no preference " + in_single_quotes(line.name) + "; the line is kept, unused",
        nearest != nullptr ? "write " + in_single_quotes(*nearest + " = " + line.value) : "remove the line");
}

void EXAMINATION::examine_known_key(CFG_USER_INI_ENUMS preference)
{
    const std::string key = cfg_get_user_ini_ini_string(preference);
    const std::string bare_section = preference_triples(preference).front().section;
    if (line.name != key)
        add(SEVERITY::ERROR, "letter-case", "a value is found only under the key's own spelling",
            "write " + in_single_quotes(key + " = " + line.value));
    if (section != bare_section && !section.starts_with(bare_section + " "))
        add(SEVERITY::ERROR, "wrong-section",
            key + " is looked for in sections " + in_single_quotes(bare_section) + " only",
            "move it below '[" + released_section(bare_section, ver_get_version()) + "]'");
    if (!line.value.empty() && find_fitting_triple(preference, line.value.c_str()) == nullptr)
    {
        std::string allowed;
        for (const PREFERENCE_TRIPLE& triple : preference_triples(preference))
            allowed += (allowed.empty() ? "" : ", ") + std::string(triple.value);
        const std::size_t behind = text.find('=') + 1;
        add(SEVERITY::ERROR, "not-allowed", in_single_quotes(line.value) + " is not allowed for " + key,
            "write one of " + allowed, text.find_first_not_of(" \t", behind));
    }
}
}

std::vector<FINDING> lint_preferences(const INPUT_FILE& file, SECRETS& secrets)
{
    const std::optional<std::string> hidden = hide_in_preference_text(file.whole_lines(), secrets);
    return EXAMINATION(file.path).findings(hidden ? *hidden : file.whole_lines());
}
