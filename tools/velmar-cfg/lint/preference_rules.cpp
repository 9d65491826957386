#include "tools/velmar-cfg/lint/preference_rules.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/hash_index.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"
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

// The first line of each key of a file. A key is section and name run together, as in the store.
class FIRST_LINES
{
public:
    // The line that the key stood on before; nothing for a new one, which now stands on `line`.
    std::optional<std::size_t> find_or_add(std::string_view section, std::string_view name, std::size_t line)
    {
        const std::size_t begin = texts.size();
        texts.append(section).append(name);
        const std::string_view key = std::string_view(texts).substr(begin);
        const std::size_t hash = std::hash<std::string_view>()(key);
        const auto found = index.find(hash, [&](std::uint32_t entry) { return text_of(keys[entry]) == key; });
        if (found)
        {
            texts.resize(begin);
            return keys[*found].line;
        }
        index.add(hash, static_cast<std::uint32_t>(keys.size()));
        keys.push_back({begin, key.size(), line});
        return std::nullopt;
    }

private:
    struct KEY
    {
        std::size_t begin; // of its text
        std::size_t size;
        std::size_t line;
    };

    std::string_view text_of(const KEY& key) const
    {
        return std::string_view(texts).substr(key.begin, key.size);
    }

    std::string texts; // of all keys
    std::vector<KEY> keys;
    HASH_INDEX index;
};

// One file under examination, line by line.
class EXAMINATION
{
public:
    explicit EXAMINATION(const std::string& path_of_file) : path(path_of_file) {}

    std::vector<FINDING> findings(std::string_view bytes)
    {
        while (!bytes.empty())
        {
            text = bytes.substr(0, bytes.find('\n'));
            bytes.remove_prefix(std::min(text.size() + 1, bytes.size()));
            ++number;
            line = classify_preference_line(text);
            examine();
        }
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

    void examine();
    void examine_header();
    void examine_key();
    bool examine_place();
    void examine_known_key(CFG_USER_INI_ENUMS preference);
    void unknown_key();

    const std::string path;
    std::string_view text; // the line, and
    std::size_t number = 0;
    PREFERENCE_LINE line; // what the reader takes from it

    const KNOWN_SECTIONS known_sections;
    const NAME_CANDIDATES known_keys = NAME_CANDIDATES(all_preference_keys());

    std::string section;
    FIRST_LINES first_lines;
    std::vector<FINDING> found;
};

void EXAMINATION::examine()
{
    const bool blank = trimmed(text).empty();
    switch (line.kind)
    {
    case PREFERENCE_LINE_KIND::HEADER:
        examine_header();
        break;
    case PREFERENCE_LINE_KIND::KEY:
        examine_key();
        break;
    case PREFERENCE_LINE_KIND::TOO_SHORT:
        if (!blank)
            add(SEVERITY::ERROR, "too-short", "a line of fewer than 3 characters is ignored", "write 'KEY = VALUE'");
        break;
    case PREFERENCE_LINE_KIND::MALFORMED_HEADER:
        add(SEVERITY::ERROR, line.bracket_after_equals ? "bracket-in-value" : "malformed-header",
            "a line with a \"[\" is taken for a section header; without \"]\" it is ignored",
            line.bracket_after_equals ? "write a value without \"[\"" : "close the header with \"]\"", text.find('['));
        break;
    case PREFERENCE_LINE_KIND::OTHER:
        if (!blank)
            add(SEVERITY::NOTE, "not-kept", "this line says nothing, and the next save drops it",
                "keep comments elsewhere; for a preference write 'KEY = VALUE'");
        break;
    }
}

void EXAMINATION::examine_header()
{
    section = line.section;
    if (line.bracket_after_equals)
    {
        add(SEVERITY::ERROR, "bracket-in-value",
            "a line with a \"[\" is taken for a section header: the section " + in_single_quotes(section) +
                " begins here",
            "write a value without \"[\"", text.find('['));
        return;
    }
    if (section.empty())
    {
        add(SEVERITY::ERROR, "empty-header", "a header without a name: the lines below it are ignored",
            "write '[" + released_section("General", ver_get_version()) + "]'");
        return;
    }
    if (known_sections.contains(section))
        return;
    const std::string* const nearest = known_sections.nearest(section);
    add(SEVERITY::WARNING, "unknown-section",
        "no lookup gets to the section " + in_single_quotes(section) + "; letter case counts",
        nearest != nullptr ? "write '[" + *nearest + "]'" : "write the section, a blank, a release and \"_pro\"",
        text.find('['));
}

// Whether the key line takes effect at all.
bool EXAMINATION::examine_place()
{
    if (section.empty())
    {
        add(SEVERITY::ERROR, "before-section", "a key line before any section is ignored",
            "put it below a header such as '[" + released_section("General", ver_get_version()) + "]'");
        return false;
    }
    const std::optional<std::size_t> first = first_lines.find_or_add(section, line.name, number);
    if (!first)
        return true;
    add(SEVERITY::ERROR, "duplicate",
        "line " + std::to_string(*first) + " of this section sets " + in_single_quotes(line.name) +
            " already: the first one counts, this one is dropped",
        "remove one of the two");
    return false;
}

void EXAMINATION::examine_key()
{
    if (!examine_place())
        return;
    if (line.old_name_converted)
        add(SEVERITY::NOTE, "old-name", "the old name of " + line.name + ", converted by the next save",
            "write " + in_single_quotes(line.name + " = " + line.value));
    const CFG_USER_INI_ENUMS preference = find_preference(line.name.c_str());
    if (preference == CFG_USER_INI_ENUMS_END)
        unknown_key();
    else
        examine_known_key(preference);
    if (line.value.empty())
        add(SEVERITY::WARNING, "empty-value", "an empty value counts as none, and the next save drops the line",
            "give a value or remove the line", text.find('='));
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
