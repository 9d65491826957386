// Computes what a settings file becomes when a variable in it is set or unset. Works on texts; touches no file.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_EDIT_H
#define TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_EDIT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct SETTINGS_CHANGE
{
    std::string name;
    std::optional<std::string> value; // nothing: no line of the file is to set the variable
};

enum class LINE_CHANGE
{
    REPLACED,
    ADDED,
    REMOVED,
};

// "replaced", "added" or "removed": for JSON.
const char* line_change_word(LINE_CHANGE change);

struct CHANGED_LINE
{
    std::size_t number; // counted from 1, in the old file for a line that is removed, else in the new one
    LINE_CHANGE change;

    bool operator==(const CHANGED_LINE&) const = default;
};

struct SETTINGS_PLAN
{
    std::string after;               // the new text; the same bytes if there is nothing to change
    std::vector<CHANGED_LINE> lines; // in their order
};

// Throws TOOL_ERROR(REFUSED) for a name or a value that no line of a settings file can hold, by the library's rules;
// the message tells what would be read back. Throws it also if the name of a variable to be set is empty.
void check_settings_change(const SETTINGS_CHANGE& change);

// The file after the change, which must have been checked. No other variable changes. `path` is for messages.
//
// To set a variable, only the value changes in the line that decides on it in this file. If there is no such line, one
// is added: behind the last comment that would set the variable if it were none, else at the end. It gets the line end
// of the line before it. To unset a variable, every line that sets it is removed. Throws TOOL_ERROR(REFUSED) if the
// line that decides cannot hold the value because of the comment behind it.
SETTINGS_PLAN plan_settings_change(const std::string& path, std::string_view before, const SETTINGS_CHANGE& change);

// The names that the lines of the text set, one for each line that sets a variable.
std::vector<std::string> names_set_in(std::string_view text);

#endif
