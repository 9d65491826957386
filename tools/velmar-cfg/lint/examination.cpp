// Runs the rules of lint over one statement: here those for a whole line or item, in assignment_rules.cpp those for an
// assignment.
//
// Each rule is a function that adds its findings with their offsets. UTF-16, a carriage return that divides a line and
// a byte order mark come first and end the examination: all other findings would only follow from them. At the end the
// findings are sorted by column; of those in one column, the rule that ran first stays first.
//
// No rule decides what becomes of the statement. Its outcome, its name and its value are what the library makes of it.
// Nothing is kept from one statement to the next. Cost: O(n) time for n bytes, a few searches among the known names
// and, in some rules, one of the table of namesakes.
#include "tools/velmar-cfg/lint/examination.h"

#include <algorithm>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/lint/intentions.h"
#include "tools/velmar-cfg/lint/written_form.h"
#include "tools/velmar-cfg/settings/library_rules.h"

FINDING separator_finding(const INPUT_FILE& source, std::size_t offset)
{
    const bool colon = separator_of_items(source.bytes) == ':';
    return {source.path,
            {},
            {},
            offset + 1,
            SEVERITY::WARNING,
            "separator",
            std::string("the first of \":\" and \";\" separates all items, here ") +
                (colon ? "\":\", so that the \";\"" : "\";\", so that the \":\"") + " separates nothing",
            "begin the text with the sign that separates items, and write it between all of them",
            std::nullopt};
}

EXAMINATION::EXAMINATION(const LAYERS& layers, const NAMESAKES& all_namesakes, const STATEMENT& the_statement,
                         const STANDING& the_standing)
    : namesakes(all_namesakes), statement(the_statement), standing(the_standing), layer(layers[the_statement.layer]),
      text(the_statement.text),
      kept_length(is_file(layer.kind) && the_statement.outcome != OUTCOME::TOO_SHORT ? length_without_comment(text)
                                                                                     : text.size())
{
}

std::vector<NOTICE> EXAMINATION::notices()
{
    if (layer.literals != nullptr)
        examine_assignment(); // no rule for lines or items is applied to it
    else if (is_file(layer.kind))
        examine_line();
    else
        examine_item();
    std::ranges::stable_sort(found, {}, [](const NOTICE& notice) { return notice.finding.column; });
    return std::move(found);
}

void EXAMINATION::add(std::size_t offset, SEVERITY severity, const char* reason, const std::string& message,
                      const std::string& instead, const char* condition)
{
    FINDING finding{layer.source->path, {}, {}, offset + 1, severity, reason, message, instead};
    (is_file(layer.kind) ? finding.line : finding.item) = statement.position;
    found.push_back({std::move(finding), condition});
}

std::size_t EXAMINATION::first_visible(std::string_view part)
{
    return static_cast<std::size_t>(std::ranges::find_if_not(part, is_white) - part.begin());
}

// ---------------------------------------------------------------------------------------------------------------------
// Lines of a file
// ---------------------------------------------------------------------------------------------------------------------

void EXAMINATION::examine_line()
{
    if (utf_16() || carriage_return() || byte_order_mark_before_text())
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
        examine_assignment();
    }
}

bool EXAMINATION::utf_16()
{
    if (!is_utf_16(layer.source->bytes))
        return false;
    if (statement.position == 1)
        found.push_back({utf_16_finding(layer.source->path), nullptr});
    return true;
}

bool EXAMINATION::carriage_return()
{
    if (text.find('\r') >= text.size() - 1) // none, or the last of the line, as most files that have them
        return false;
    const std::size_t at = dividing_carriage_return(text);
    if (at == std::string_view::npos)
        return false;
    add(at, SEVERITY::ERROR, "carriage-return",
        "a carriage return alone ends no line: what follows it belongs to this line", "end every line with a newline",
        nullptr);
    return true;
}

void EXAMINATION::too_short()
{
    const std::string_view line = without_outer_white(text.substr(0, length_without_comment(text)));
    if (line.empty())
        return;
    add(first_visible(text), SEVERITY::ERROR, "too-short", "a line of fewer than 3 characters is ignored",
        line.find('=') == std::string_view::npos ? "write a name, \"=\" and a value" : "write a name before the \"=\"",
        line.find('=') == std::string_view::npos ? "" : " to set the empty text");
}

void EXAMINATION::no_equals_sign()
{
    const std::string_view line = without_outer_white(kept());
    if (line.empty())
        return;
    if (text.find('=', kept_length) != std::string_view::npos)
        add(kept_length, SEVERITY::ERROR, "comment-cut", "the comment begins before the \"=\", so the line is ignored",
            "take the comment sign away, or put \"#\" before " + in_single_quotes(line) + " to make it all a comment");
    else if (line.starts_with('[') && line.ends_with(']'))
        add(first_visible(text), SEVERITY::ERROR, "no-equals-sign",
            "a settings file has no sections: a line without \"=\" is ignored", "remove it");
    else
        add(first_visible(text), SEVERITY::ERROR, "no-equals-sign", "a line without \"=\" is ignored",
            "write \"=\" and a value behind the name");
}

bool EXAMINATION::byte_order_mark_before_text()
{
    if (statement.position != 1 || !text.starts_with(byte_order_mark))
        return false;
    const std::string_view behind = text.substr(byte_order_mark.size());
    const std::string_view line = without_outer_white(behind.substr(0, length_without_comment(behind)));
    if (!line.empty())
        add(0, SEVERITY::ERROR, "byte-order-mark",
            "the file begins with a byte order mark, which belongs to the first line",
            "save the file without a byte order mark, beginning with " + in_single_quotes(line), nullptr);
    return true;
}

// A comment that follows a value at once is perhaps none. It is one all the same behind a blank, behind a boolean or a
// number, and where nothing of note is cut off; in the place of the value, where a blank follows its sign.
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
            "write " + in_single_quotes(without_outer_white(behind)) + " on a line of its own");
        return;
    }
    const std::string_view visible = without_outer_white(behind);
    const bool nothing_cut = visible.empty() || visible.find_first_of(";#") == 0 || visible.starts_with("//");
    const bool behind_scalar =
        is_scalar(statement.value) && !behind.empty() && (is_white(behind.front()) || text[sign] == '#');
    const bool behind_blank = !statement.value.empty() && is_white(text[sign - 1]);
    const bool for_value = statement.value.empty() && !behind.empty() && is_white(behind.front());
    if (nothing_cut || behind_blank || behind_scalar || for_value)
        return;
    add(sign, SEVERITY::WARNING, "comment-cut",
        "the value is cut off at the \"" + std::string(1, text[sign]) + "\", where a comment begins",
        "put a blank before the comment if it is one; a value that has this sign needs double quotes, which become "
        "part "
        "of it");
}

void EXAMINATION::slashes()
{
    const std::size_t at = slashes_in_value(kept(), value_offset());
    if (at != std::string_view::npos)
        add(at, SEVERITY::WARNING, "slashes-in-value",
            "behind the \"=\" a \"//\" begins no comment: it belongs to the value",
            "begin the comment with \"#\", outside quotes");
}

void EXAMINATION::unclosed_quote()
{
    if (std::ranges::count(kept(), '"') % 2 == 0)
        return;
    add(kept().rfind('"'), SEVERITY::WARNING, "unclosed-quote",
        "the quote is not closed, so that a \";\" or \"#\" behind it begins no comment",
        "close the quote, or take it away; quotes are part of the value");
}

// ---------------------------------------------------------------------------------------------------------------------
// Items of the inline text
// ---------------------------------------------------------------------------------------------------------------------

void EXAMINATION::examine_item()
{
    const std::string_view item = without_outer_white(text);
    if (statement.outcome == OUTCOME::STORED)
    {
        separator();
        white_space();
        examine_assignment();
    }
    else if (statement.outcome == OUTCOME::NO_EQUALS_SIGN && !item.empty())
        add(first_visible(text), SEVERITY::ERROR, "no-equals-sign", "an item without \"=\" is skipped",
            "write \"=\" and a value behind the name");
    else if (statement.outcome == OUTCOME::EMPTY_NAME)
        add(first_visible(text), SEVERITY::ERROR, "empty-name", "an item without a name is skipped",
            "write a name before the \"=\"");
    else if (statement.outcome == OUTCOME::EMPTY_VALUE)
        add(first_visible(text), SEVERITY::ERROR, "empty-value", "an item without a value is skipped",
            "give a value, or set the empty text in a settings file");
}

void EXAMINATION::separator()
{
    const char other = separator_of_items(layer.source->bytes) == ';' ? ':' : ';';
    const std::size_t at = text.find(other);
    if (at == std::string_view::npos || text.find('=', at) == std::string_view::npos)
        return;
    FINDING finding = separator_finding(*layer.source, at);
    finding.item = statement.position;
    found.push_back({std::move(finding), ""});
}

void EXAMINATION::white_space()
{
    const auto ends_in_white = [](std::string_view part)
    { return !part.empty() && (is_white(part.front()) || is_white(part.back())); };
    const bool in_name = ends_in_white(statement.name);
    if (in_name || ends_in_white(statement.value))
        add(in_name ? 0 : text.find('='), SEVERITY::WARNING, "white-space-kept",
            std::string("a tab or a newline at the end of a ") + (in_name ? "name" : "value") +
                " is part of it: only blanks are removed here",
            "write the item without it");
}
