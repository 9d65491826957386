// Works out the new text of a settings file when a variable is set or unset in it.
//
// The text is walked once, line by line, and each line is parsed by the library's rule. What is written is parsed by it
// too before it is accepted, so that nothing here has to know what begins a comment or ends a name.
//
// Invariants:
// - What an edit writes reads back as the name and the value that were asked for.
// - Lines that are not written read as before. They are left alone but for one case: a last line without a newline gets
//   one when a line is added behind it. A carriage return goes with it only where that does not change what the line
//   sets: "a=" is too short to set anything, and "a=" with a carriage return sets the empty text.
//
// Cost: O(n) time for n bytes, and the new text. A comment is parsed a second time, without its signs. To unset a
// variable takes one parse of each line and a list of the lines that go.
#include "tools/velmar-cfg/settings/settings_edit.h"

#include <algorithm>
#include <utility>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/base/text_edits.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
constexpr std::string_view white_space = " \t\n\v\f\r"; // as the library trims values
constexpr std::string_view blanks = " \t";

std::string_view without(std::string_view characters, std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
    return text;
}

// What a line sets.
struct SET_BY_LINE
{
    std::string name;
    std::string value;

    bool operator==(const SET_BY_LINE&) const = default;
};

std::optional<SET_BY_LINE> set_by(std::string_view line)
{
    LINE_PARTS parts;
    if (outcome_of_line(line, parts) != OUTCOME::STORED)
        return std::nullopt;
    return SET_BY_LINE{std::string(parts.name), std::string(parts.value)};
}

bool sets(std::string_view line, std::string_view name)
{
    LINE_PARTS parts;
    return outcome_of_line(line, parts) == OUTCOME::STORED && same_name(parts.name, name);
}

// Whether the line is a comment, and would set the variable if it were none.
bool would_set(std::string_view line, std::string_view name)
{
    std::string_view rest = without(white_space, line);
    const std::size_t all = rest.size();
    for (std::size_t size = rest.size() + 1; rest.size() < size;)
    {
        size = rest.size();
        rest = without(";#", without(white_space, rest));
        if (rest.starts_with("//"))
            rest.remove_prefix(2);
    }
    return rest.size() < all && sets(rest, name);
}

std::string assignment(std::string_view name, std::string_view value)
{
    return std::string(name) + (value.empty() ? " =" : " = ") + std::string(value);
}

// --- Values in their lines ---

// The line, which has no value, with the value behind its "=": behind one blank, or where the value stands of lines
// that have one, with a blank before a comment.
std::string with_first_value(std::string_view line, std::string_view value)
{
    const std::size_t behind = line.find('=') + 1;
    const std::string_view gap =
        line.substr(behind, std::min(line.find_first_not_of(blanks, behind), line.size()) - behind);
    const bool comment = length_without_comment(line) == behind + gap.size() && behind + gap.size() < line.size();
    const std::size_t kept = comment ? std::min<std::size_t>(1, gap.size()) : gap.size();
    const bool apart = gap.empty() && behind > 1 && blanks.find(line[behind - 2]) != std::string_view::npos;
    const bool glued = comment && kept == gap.size();
    return std::string(line.substr(0, behind + kept)) + (apart ? " " : "") + std::string(value) + (glued ? " " : "") +
           std::string(line.substr(behind + kept));
}

// The line, which is an assignment, with another value; all around it stays.
std::string with_value(std::string_view line, std::string_view value)
{
    const std::size_t equals = line.find('=');
    const std::string_view kept = line.substr(0, length_without_comment(line));
    const std::size_t begin = kept.find_first_not_of(white_space, equals + 1);
    if (begin == std::string_view::npos)
        return with_first_value(line, value);
    const std::size_t end = kept.find_last_not_of(white_space) + 1;
    std::string changed = std::string(line.substr(0, begin)) + std::string(value) + std::string(line.substr(end));
    if (value.empty() && !set_by(changed))
        changed.insert(equals, " "); // "a=" is too short
    return changed;
}

// --- The lines of a file ---

struct FILE_LINE
{
    std::size_t number = 0; // counted from 1; 0 for none
    std::size_t offset = 0;
    std::string_view text = {}; // without the newline
    bool ended = false;         // by a newline

    std::size_t end() const
    {
        return offset + text.size() + (ended ? 1 : 0);
    }

    // With the carriage return that belongs to it for most programs.
    std::string_view line_end() const
    {
        return text.ends_with('\r') ? "\r\n" : "\n";
    }
};

template <typename TAKE>
void for_each_line(std::string_view text, TAKE take)
{
    FILE_LINE line;
    while (line.end() < text.size())
    {
        line.offset = line.end();
        ++line.number;
        line.text = text.substr(line.offset, text.find('\n', line.offset) - line.offset);
        line.ended = line.offset + line.text.size() < text.size();
        take(line);
    }
}

// What a new line goes by.
struct LINES_FOUND
{
    FILE_LINE deciding; // the last line that sets the variable
    FILE_LINE comment;  // the last one that would
    FILE_LINE last;     // of all
    FILE_LINE last_ended;
};

LINES_FOUND lines_for(std::string_view text, std::string_view name)
{
    LINES_FOUND found;
    for_each_line(text,
                  [&](const FILE_LINE& line)
                  {
                      found.last = line;
                      if (line.ended)
                          found.last_ended = line;
                      if (sets(line.text, name))
                          found.deciding = line;
                      else if (would_set(line.text, name))
                          found.comment = line;
                  });
    return found;
}

// What ends a last line that had no end.
std::string_view end_for(std::string_view line, std::string_view line_end)
{
    return line.ends_with('\r') || set_by(std::string(line) + '\r') != set_by(line) ? "\n" : line_end;
}

SETTINGS_PLAN with_new_line(std::string_view before, const LINES_FOUND& found, const SETTINGS_CHANGE& change)
{
    const FILE_LINE& front = found.comment.number != 0 ? found.comment : found.last;
    const std::string_view line_end = (front.ended ? front : found.last_ended).line_end();
    const std::string_view indentation =
        found.comment.text.substr(0, std::min(found.comment.text.find_first_not_of(blanks), found.comment.text.size()));
    std::string text(front.number == 0 || front.ended ? "" : end_for(front.text, line_end));
    text.append(indentation).append(assignment(change.name, *change.value)).append(line_end);
    return {with_edits(before, {{front.end(), 0, std::move(text)}}), {{front.number + 1, LINE_CHANGE::ADDED}}};
}

SETTINGS_PLAN with_changed_line(const std::string& path, std::string_view before, const FILE_LINE& line,
                                const std::string& value)
{
    const std::optional<SET_BY_LINE> old = set_by(line.text);
    if (old->value == value)
        return {std::string(before), {}};
    std::string text = with_value(line.text, value);
    if (set_by(text) != SET_BY_LINE{old->name, value})
        throw TOOL_ERROR(EXIT_CODE::REFUSED,
                         path + ":" + std::to_string(line.number) +
                             ": the comment in this line would become part of the value, whose quote is not closed; "
                             "put the comment on a line of its own first");
    return {with_edits(before, {{line.offset, line.text.size(), std::move(text)}}),
            {{line.number, LINE_CHANGE::REPLACED}}};
}

SETTINGS_PLAN without_lines_for(std::string_view before, std::string_view name)
{
    SETTINGS_PLAN plan;
    std::vector<TEXT_EDIT> edits;
    for_each_line(before,
                  [&](const FILE_LINE& line)
                  {
                      if (!sets(line.text, name))
                          return;
                      edits.push_back({line.offset, line.end() - line.offset, {}});
                      plan.lines.push_back({line.number, LINE_CHANGE::REMOVED});
                  });
    plan.after = with_edits(before, edits);
    return plan;
}

// --- What a line can hold ---

void check_name(const SETTINGS_CHANGE& change)
{
    if (change.name.empty() && change.value)
        throw TOOL_ERROR(EXIT_CODE::REFUSED, "the name is empty; give the name of a variable");
    const bool ends_line = change.name.find('\n') != std::string::npos;
    const std::optional<SET_BY_LINE> read_back = set_by(assignment(change.name, "1"));
    if (!ends_line && read_back && *read_back == SET_BY_LINE{change.name, "1"})
        return;
    throw TOOL_ERROR(EXIT_CODE::REFUSED, "no line of a settings file can set " + in_single_quotes(change.name) +
                                             (ends_line   ? ": a newline ends the line"
                                              : read_back ? ": it would set " + in_single_quotes(read_back->name)
                                                          : ": it would be ignored, as a comment") +
                                             "; leave out white space, '=', and what begins a comment");
}

void check_value(const std::string& name, const std::string& value)
{
    const std::string first_line = value.substr(0, value.find('\n'));
    const std::optional<SET_BY_LINE> read_back = set_by(assignment(name, first_line));
    const std::string held = read_back ? read_back->value : "";
    if (held == value)
        return;
    const char* const reason = first_line != value       ? "a newline ends the line"
                               : trimmed(value) != value ? "white space at its ends does not count"
                                                         : "outside double quotes, ';' or '#' begins a comment";
    throw TOOL_ERROR(EXIT_CODE::REFUSED, "a line of a settings file cannot hold this value: it would be read back as " +
                                             (held.empty() ? "nothing" : in_single_quotes(held)) + "; " + reason);
}
}

const char* line_change_word(LINE_CHANGE change)
{
    return change == LINE_CHANGE::REPLACED ? "replaced" : change == LINE_CHANGE::ADDED ? "added" : "removed";
}

void check_settings_change(const SETTINGS_CHANGE& change)
{
    check_name(change);
    if (change.value)
        check_value(change.name, *change.value);
}

SETTINGS_PLAN plan_settings_change(const std::string& path, std::string_view before, const SETTINGS_CHANGE& change)
{
    if (!change.value)
        return without_lines_for(before, change.name);
    const LINES_FOUND found = lines_for(before, change.name);
    if (found.deciding.number != 0)
        return with_changed_line(path, before, found.deciding, *change.value);
    return with_new_line(before, found, change);
}

std::vector<std::string> names_set_in(std::string_view text)
{
    std::vector<std::string> names;
    for_each_line(text,
                  [&](const FILE_LINE& line)
                  {
                      if (std::optional<SET_BY_LINE> set = set_by(line.text))
                          names.push_back(std::move(set->name));
                  });
    return names;
}
