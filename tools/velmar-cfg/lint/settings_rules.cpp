#include "tools/velmar-cfg/lint/settings_rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/library_rules.h"

using namespace zon_cfg;

namespace
{
constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

bool is_white(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

std::size_t first_visible(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::find_if_not(text, is_white) - text.begin());
}

// Something a person would take for a variable's name.
bool looks_like_a_name(std::string_view text)
{
    return !text.empty() &&
           std::ranges::all_of(text,
                               [](char c) { return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0; });
}

// Whether `text`, taken for a line of its own, sets a variable whose name looks like one.
bool looks_like_an_assignment(std::string_view text)
{
    LINE_PARTS parts;
    return outcome_of_line(text, parts) == OUTCOME::STORED &&
           looks_like_a_name(trimmed(text.substr(0, text.find('='))));
}

// One statement under examination. Columns are handed over as offsets into its text.
class EXAMINATION
{
public:
    EXAMINATION(const SETTINGS& the_settings, const STATEMENT& the_statement, ASSIGNMENT_INDEX assignment)
        : settings(the_settings), statement(the_statement), own_assignment(assignment),
          layer(the_settings.layers()[the_statement.layer]), text(the_statement.text),
          kept_length(is_file(layer.kind) && the_statement.outcome != OUTCOME::TOO_SHORT ? length_without_comment(text)
                                                                                         : text.size())
    {
    }

    std::vector<FINDING> findings()
    {
        if (is_file(layer.kind))
            examine_line();
        else
            examine_item();
        std::ranges::stable_sort(found, {}, &FINDING::column);
        return std::move(found);
    }

private:
    void add(std::size_t offset, SEVERITY severity, const char* reason, const std::string& message,
             const std::string& instead)
    {
        FINDING finding{layer.source->path, {}, {}, offset + 1, severity, reason, message, instead};
        (is_file(layer.kind) ? finding.line : finding.item) = statement.position;
        found.push_back(std::move(finding));
    }

    void examine_line();
    void examine_item();
    void examine_assignment();

    void too_short();
    void no_equals_sign();
    bool byte_order_mark_before_text();
    void comment();
    void slashes();
    void unclosed_quote();
    void blanks_in_name();

    void separator();

    void name_characters();
    void quotes_kept();
    void known_variable(const KNOWN_VARIABLE& known);
    void almost_known();
    void letter_case();
    void overridden();

    // The text without its comment.
    std::string_view kept() const
    {
        return text.substr(0, kept_length);
    }

    // The offset of the value, or where it would stand.
    std::size_t value_offset() const
    {
        const std::size_t behind = text.find('=') + 1;
        return behind + first_visible(kept().substr(behind));
    }

    std::string assignment_of(std::string_view name, std::string_view value) const
    {
        return in_single_quotes(std::string(name) + " = " + std::string(value));
    }

    const SETTINGS& settings;
    const STATEMENT& statement;
    const ASSIGNMENT_INDEX own_assignment; // for a statement that is stored
    const LAYER& layer;
    const std::string_view text;
    const std::size_t kept_length; // of the text without its comment
    std::vector<FINDING> found;
};

// ---------------------------------------------------------------------------------------------------------------------
// Lines of a file
// ---------------------------------------------------------------------------------------------------------------------

void EXAMINATION::examine_line()
{
    if (byte_order_mark_before_text())
        return;
    if (statement.outcome == OUTCOME::TOO_SHORT)
        too_short();
    else if (statement.outcome == OUTCOME::NO_EQUALS_SIGN)
        no_equals_sign();
    else
    {
        comment();
        slashes();
        unclosed_quote();
        blanks_in_name();
        examine_assignment();
    }
}

void EXAMINATION::too_short()
{
    const std::string line = trimmed(text.substr(0, length_without_comment(text)));
    if (line.empty())
        return;
    const std::string name = trimmed(line.substr(0, line.find('=')));
    add(first_visible(text), SEVERITY::ERROR, "too-short", "a line of fewer than 3 characters is ignored",
        line.find('=') == std::string::npos ? "write " + assignment_of(name, "VALUE")
        : name.empty()                      ? "write a name before the '='"
                                            : "write " + in_single_quotes(name + " =") + " to set the empty text");
}

void EXAMINATION::no_equals_sign()
{
    const std::string line = trimmed(kept());
    if (line.empty())
        return;
    if (text.find('=', kept_length) != std::string_view::npos)
    {
        add(kept_length, SEVERITY::ERROR, "comment-cut", "the comment begins before the \"=\", so the line is ignored",
            "take the comment sign away, or put \"#\" before " + in_single_quotes(line) + " to make it all a comment");
        return;
    }
    const std::size_t colon = line.find(':');
    add(first_visible(text), SEVERITY::ERROR, "no-equals-sign", "a line without \"=\" is ignored",
        colon == std::string::npos || colon == 0
            ? "write " + assignment_of(line, "VALUE") + ", or put \"#\" before it to make it a comment"
            : "write " + assignment_of(trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1))));
}

bool EXAMINATION::byte_order_mark_before_text()
{
    if (statement.position != 1 || !text.starts_with(byte_order_mark))
        return false;
    const std::string_view behind = text.substr(byte_order_mark.size());
    const std::string line = trimmed(behind.substr(0, length_without_comment(behind)));
    if (!line.empty())
        add(0, SEVERITY::ERROR, "byte-order-mark",
            "the file begins with a byte order mark, which belongs to the first line",
            "save the file without a byte order mark, beginning with " + in_single_quotes(line));
    return true;
}

void EXAMINATION::comment()
{
    if (kept_length == text.size())
        return;
    const std::size_t sign = kept_length;
    const std::string_view behind = text.substr(sign + 1);
    if (text[sign] == ';' && looks_like_an_assignment(behind))
    {
        add(sign, SEVERITY::ERROR, "second-assignment",
            "a line holds one assignment: what follows the \";\" is a comment and is ignored",
            "write " + in_single_quotes(trimmed(behind)) + " on a line of its own");
        return;
    }
    const bool looks_like_a_comment = is_white(text[sign - 1]) && !statement.value.empty();
    if (!looks_like_a_comment)
        add(sign, SEVERITY::WARNING, "comment-cut",
            "the value is cut off at the \"" + std::string(1, text[sign]) + "\", where a comment begins",
            "write " + assignment_of(statement.name, "\"" + trimmed(text.substr(value_offset())) + "\"") +
                " (the quotes become part of the value), or a blank before the comment");
}

void EXAMINATION::slashes()
{
    const std::size_t value = value_offset();
    for (std::size_t at = kept().find("//", value + 1); at != std::string_view::npos; at = kept().find("//", at + 1))
    {
        if (!is_white(text[at - 1]))
            continue;
        add(at, SEVERITY::WARNING, "slashes-in-value",
            "behind the \"=\" a \"//\" begins no comment: it belongs to the value",
            "write " + in_single_quotes(trimmed(text.substr(0, at)) + " # " + trimmed(kept().substr(at + 2))));
        return;
    }
}

void EXAMINATION::unclosed_quote()
{
    if (std::ranges::count(kept(), '"') % 2 == 0)
        return;
    add(kept().rfind('"'), SEVERITY::WARNING, "unclosed-quote",
        "the quote is not closed, so that a \";\" or \"#\" behind it begins no comment",
        "close the quote, or take it away; quotes are part of the value");
}

void EXAMINATION::blanks_in_name()
{
    const std::string written = trimmed(text.substr(0, text.find('=')));
    if (written == statement.name)
        return;
    std::string with_underscores;
    for (const char c : written)
    {
        if (!is_white(c))
            with_underscores += c;
        else if (!with_underscores.ends_with('_'))
            with_underscores += '_';
    }
    add(first_visible(text), SEVERITY::WARNING, "blanks-in-name",
        "white space in a name is removed: this sets " + in_single_quotes(statement.name),
        "write " + assignment_of(with_underscores, statement.value) + " if that is the variable, else " +
            assignment_of(statement.name, statement.value));
}

// ---------------------------------------------------------------------------------------------------------------------
// Items of the inline text
// ---------------------------------------------------------------------------------------------------------------------

void EXAMINATION::examine_item()
{
    const std::string item = trimmed(text);
    if (statement.outcome == OUTCOME::STORED)
    {
        separator();
        if (statement.name.find(' ') != std::string_view::npos)
            add(first_visible(text), SEVERITY::WARNING, "blanks-in-name",
                "blanks in a name are kept here, while a settings file removes them: this sets " +
                    in_single_quotes(statement.name),
                "write the name without blanks");
        examine_assignment();
    }
    else if (statement.outcome == OUTCOME::NO_EQUALS_SIGN && !item.empty())
        add(first_visible(text), SEVERITY::ERROR, "no-equals-sign", "an item without \"=\" is skipped",
            "write " + in_single_quotes(item + "=VALUE"));
    else if (statement.outcome == OUTCOME::EMPTY_NAME)
        add(first_visible(text), SEVERITY::ERROR, "empty-name", "an item without a name is skipped",
            "write a name before the \"=\"");
    else if (statement.outcome == OUTCOME::EMPTY_VALUE)
        add(first_visible(text), SEVERITY::ERROR, "empty-value", "an item without a value is skipped",
            "give a value, or set the empty text in a settings file");
}

void EXAMINATION::separator()
{
    const char used = separator_of_items(layer.source->bytes);
    const char other = used == ';' ? ':' : ';';
    const std::size_t at = text.find(other);
    if (at == std::string_view::npos || text.find('=', at) == std::string_view::npos)
        return;
    const std::string used_sign = std::string("\"") + used + "\"";
    const std::string other_sign = std::string("\"") + other + "\"";
    add(at, SEVERITY::WARNING, "separator",
        "the first of \":\" and \";\" separates all items, here " + used_sign + ", so that the " + other_sign +
            " separates nothing",
        "write " + used_sign + " between all items, and first of all");
}

// ---------------------------------------------------------------------------------------------------------------------
// Assignments of both
// ---------------------------------------------------------------------------------------------------------------------

void EXAMINATION::examine_assignment()
{
    name_characters();
    quotes_kept();
    if (const KNOWN_VARIABLE* const known = find_known_variable(statement.name); known != nullptr)
        known_variable(*known);
    else
        almost_known();
    letter_case();
    overridden();
}

void EXAMINATION::name_characters()
{
    if (statement.name.empty())
    {
        add(0, SEVERITY::WARNING, "empty-name", "this sets the variable of empty name",
            "write a name before the \"=\"");
        return;
    }
    const auto odd =
        std::ranges::find_if(text.substr(0, text.find('=')),
                             [](char c) { return static_cast<unsigned char>(c) >= 0x7f || (c < ' ' && !is_white(c)); });
    const auto offset = static_cast<std::size_t>(odd - text.begin());
    if (offset >= text.find('='))
        return;
    std::array<char, 5> byte;
    std::snprintf(byte.data(), byte.size(), "0x%02x", static_cast<unsigned int>(static_cast<unsigned char>(*odd)));
    add(offset, SEVERITY::WARNING, "odd-character",
        std::string("the byte ") + byte.data() + ", no ASCII letter or blank, is part of the name",
        "write the name in ASCII letters, digits and \"_\"");
}

void EXAMINATION::quotes_kept()
{
    const std::string_view value = statement.value;
    const bool in_quotes = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    // Quotes that keep a comment sign in the value have a reason to be there.
    if (in_quotes && (value.find_first_of(";#") == std::string_view::npos || !is_file(layer.kind)))
        add(text.find('"', text.find('=')), SEVERITY::NOTE, "quotes-kept", "the quotes are part of the value",
            "write " + assignment_of(statement.name, value.substr(1, value.size() - 2)) +
                " unless the reader of the variable takes them off");
}

void EXAMINATION::known_variable(const KNOWN_VARIABLE& known)
{
    const std::string value(statement.value);
    if (known.kind == KNOWN_VARIABLE::KIND::SWITCH && !as_boolean(value))
        add(value_offset(), SEVERITY::ERROR, "no-boolean",
            in_single_quotes(statement.value) + " is no boolean, so readers of " + in_single_quotes(known.name) +
                " take their default",
            "write " + assignment_of(statement.name, "on") + " or " + assignment_of(statement.name, "off"));
    if (known.kind == KNOWN_VARIABLE::KIND::INTEGER && !as_integer(value))
        add(value_offset(), SEVERITY::ERROR, "no-integer",
            in_single_quotes(statement.value) + " is no integer, so readers of " + in_single_quotes(known.name) +
                " take their default",
            "write decimal digits only, such as " + assignment_of(statement.name, "2"));
}

void EXAMINATION::almost_known()
{
    static const NAME_CANDIDATES known_names(known_variable_names());
    if (const std::string* const nearest = known_names.nearest(statement.name))
        add(first_visible(text), SEVERITY::WARNING, "almost-known",
            "no variable " + in_single_quotes(statement.name) + " is known, but " + in_single_quotes(*nearest) + " is",
            "write " + assignment_of(*nearest, statement.value) + " if that is the variable");
}

void EXAMINATION::letter_case()
{
    const ASSIGNMENT& first = settings.assignments()[settings.find(statement.name)->first];
    const KNOWN_VARIABLE* const known = find_known_variable(statement.name);
    const std::string_view expected = known != nullptr ? std::string_view(known->name) : first.name;
    if (statement.name == expected)
        return;
    const std::string whence = known != nullptr ? "" : " at " + location_as_text(settings.location_of(first));
    add(first_visible(text), SEVERITY::WARNING, "letter-case",
        "the same variable as " + in_single_quotes(expected) + whence +
            ", but objects registered under that spelling are not told of this one",
        "write " + assignment_of(expected, statement.value));
}

void EXAMINATION::overridden()
{
    const ASSIGNMENT_INDEX next = settings.assignments()[own_assignment].next_to_same;
    if (next == no_assignment || settings.assignments()[next].layer != statement.layer)
        return;
    const ASSIGNMENT& later = settings.assignments()[next];
    const bool same = later.value == statement.value;
    add(first_visible(text), same ? SEVERITY::NOTE : SEVERITY::WARNING, "overridden",
        location_as_text(settings.location_of(later)) + " sets " + in_single_quotes(statement.name) + " again" +
            (same ? ", to the same value" : ""),
        "remove one of the two");
}
}

std::vector<FINDING> lint_statement(const SETTINGS& settings, const STATEMENT& statement, ASSIGNMENT_INDEX assignment)
{
    return EXAMINATION(settings, statement, assignment).findings();
}

std::vector<FINDING> lint_settings(const SETTINGS& settings)
{
    std::vector<FINDING> findings;
    STATEMENTS statements(settings.layers());
    STATEMENT statement{};
    for (ASSIGNMENT_INDEX assignment = 0; statements.next(statement);)
    {
        for (FINDING& finding : lint_statement(settings, statement, assignment))
            findings.push_back(std::move(finding));
        if (statement.outcome == OUTCOME::STORED)
            ++assignment;
    }
    return findings;
}
