// What it makes of a settings file to set a variable in it, or to unset it. Text in, text out; no file is touched.
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
    std::string after;               // what the file becomes; the same bytes where it says already what is wanted
    std::vector<CHANGED_LINE> lines; // in their order
};

// Throws TOOL_ERROR(REFUSED) for a name or a value that no line of a settings file can hold, by the library's rules,
// with what the line would be instead; and for setting the variable of empty name.
void check_settings_change(const SETTINGS_CHANGE& change);

// The file after the change, which was checked. To set a variable, the line that decides on it in this file is changed
// in its value alone. Where there is none, a line is added: behind the last line that would set the variable if it were
// no comment, else at the end, with the line end of the line before it. To unset it, every line that sets it goes.
// No other variable is set otherwise than before. `path` is for messages. Throws TOOL_ERROR(REFUSED) where the line
// that decides cannot hold the value because of the comment behind it.
SETTINGS_PLAN plan_settings_change(const std::string& path, std::string_view before, const SETTINGS_CHANGE& change);

// The names that the lines of the text set, each once for each line.
std::vector<std::string> names_set_in(std::string_view text);

#endif
