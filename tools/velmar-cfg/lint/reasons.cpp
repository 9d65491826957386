// The tables of reasons, each in the byte order of its names. Lists of reasons, completion and the rules of SARIF
// documents are made of them.
#include "tools/velmar-cfg/lint/reasons.h"

#include <algorithm>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr REASON of_settings[] = {
    {"almost-known", "The name is nearly that of a known variable."},
    {"blanks-in-name",
     "White space within a name, removed from a line and kept in an item; or a word such as 'export' before the name."},
    {"boolean-word", "A word such as 'yes', which means on or off to people but is no boolean to any reader."},
    {"byte-order-mark", "The file begins with a byte order mark, which becomes part of the first name; or the file is "
                        "in UTF-16, which the library does not understand."},
    {"carriage-return", "A carriage return without a newline ends no line."},
    {"comment-cut", "A comment begins within the value, or before the equals sign."},
    {"disables-nothing", "VELMAR_INI_DISABLED looks as if it disabled the search, but only 1 does."},
    {"double-equals", "A second equals sign directly follows the first and is part of the value."},
    {"empty-name", "There is no name before the equals sign."},
    {"empty-value", "An item without a value is skipped."},
    {"hexadecimal", "A number such as 0x10 is no integer to any reader."},
    {"letter-case", "The same variable is spelt in another letter case elsewhere."},
    {"missing-directory", "VELMAR_INI names a directory that does not exist."},
    {"missing-file", "APPENDED_VELMAR_INI names a file that does not exist."},
    {"no-boolean", "A known switch has another value than on, off, 1, 0, true and false."},
    {"no-directory", "VELMAR_INI names a file."},
    {"no-equals-sign", "A line or an item without an equals sign is ignored."},
    {"no-integer", "The value of a known number is no integer, or is out of range."},
    {"no-settings-file", "No settings file was found, and VELMAR_INI_VARS is not set: no settings were checked."},
    {"odd-character", "A byte of the name is no ASCII character, or is a control character."},
    {"operator-in-name", "A sign before the equals sign, as in '+=', is part of the name."},
    {"overridden", "A later line of the same file, or a later item, sets the variable again."},
    {"quoted-name", "Quotes around a name are part of it."},
    {"quotes-kept", "Quotes around a value are part of it."},
    {"second-assignment", "A line holds another assignment, which is a comment or part of the value."},
    {"separator", "The first of ':' and ';' separates all items; the other one was meant to separate too."},
    {"slashes-in-value", "Two slashes behind a value look like a comment and are part of it."},
    {"too-short", "A line of fewer than three characters is ignored."},
    {"trailing-comma", "A comma behind a boolean or a number is part of the value."},
    {"unclosed-quote", "A double quote is not closed, so no comment begins after it."},
    {"white-space-kept", "A tab or a newline at the end of an item's name or value is part of it."},
};

constexpr REASON of_preferences[] = {
    {"before-section", "A key line before any section is ignored."},
    {"below-empty-header", "A key line below a section header without a name is ignored."},
    {"beside-header", "Text on the line of a section header; the next save drops it."},
    {"bracket-in-value", "A line with a '[' in its value is taken for a section header."},
    {"byte-order-mark", "The file is in UTF-16, which the library does not understand."},
    {"changed-value", "Quotes within quotes: the next save keeps the inner ones, and the load after it removes them."},
    {"duplicate", "The section has the key already; the first line counts."},
    {"empty-header", "A section header without a name: the lines below it are ignored."},
    {"empty-section", "A section without a value; the next save drops it."},
    {"empty-value", "An empty value counts as none."},
    {"letter-case", "The key is spelt in another letter case, so lookups do not find it."},
    {"malformed-header", "A section header that is not closed is ignored."},
    {"merged-section",
     "The section differs from another one in letter case only; the next save writes both below one header."},
    {"no-comment", "A line that looks like a comment is kept as a preference."},
    {"no-preference-file", "No preference file was found: nothing was checked."},
    {"not-allowed", "The preference does not allow this value."},
    {"not-kept", "The next save drops the line."},
    {"old-name", "The old name of a preference; the next save converts it."},
    {"too-short", "A line of fewer than three characters is ignored."},
    {"unknown-key", "There is no such preference."},
    {"unknown-section", "No lookup searches the section."},
    {"wrong-section", "The preference is looked for in another section."},
    {"zero-byte", "The text after a zero byte is ignored; the next save drops it."},
};

const REASON* find(std::span<const REASON> reasons, std::string_view name)
{
    const auto found = std::ranges::find(reasons, name, &REASON::name);
    return found == reasons.end() ? nullptr : &*found;
}

std::vector<std::string> all_names()
{
    REASONS names;
    for (const std::span<const REASON> reasons : {reasons_of_settings(), reasons_of_preferences()})
    {
        for (const REASON& reason : reasons)
            names.emplace(reason.name);
    }
    return {names.begin(), names.end()};
}
}

std::span<const REASON> reasons_of_settings()
{
    return of_settings;
}

std::span<const REASON> reasons_of_preferences()
{
    return of_preferences;
}

const std::vector<std::string>& reason_names()
{
    static const std::vector<std::string> names = all_names();
    return names;
}

std::string meaning_of_reason(std::string_view name)
{
    const REASON* const setting = find(of_settings, name);
    const REASON* const preference = find(of_preferences, name);
    if (setting == nullptr || preference == nullptr)
        return (setting == nullptr ? preference : setting)->meaning;
    const std::string meaning = setting->meaning;
    return meaning == preference->meaning ? meaning : meaning + " Of preferences: " + preference->meaning;
}

REASONS checked_reasons(const std::vector<std::string>& names)
{
    const std::vector<std::string>& known = reason_names();
    for (const std::string& name : names)
    {
        if (!std::ranges::binary_search(known, name))
            throw TOOL_ERROR(EXIT_CODE::USAGE, "no finding has the reason " + in_single_quotes(name) +
                                                   did_you_mean(name, known) + "; see velmar-cfg lint --list-reasons");
    }
    return {names.begin(), names.end()};
}
