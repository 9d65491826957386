// Guesses the text that a person meant to write in the place of a line, or of an item of VELMAR_INI_VARS.
//
// Everything odd about a line is corrected at once, so all its findings suggest the same text. The rules then check
// whether that text is free of the findings.
#ifndef TOOLS_VELMAR_CFG_LINT_INTENTIONS_H
#define TOOLS_VELMAR_CFG_LINT_INTENTIONS_H

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/lint/namesakes.h"

class INTENTIONS
{
public:
    // `all_namesakes` tell how a name is spelt elsewhere. They must outlive this.
    explicit INTENTIONS(const NAMESAKES& all_namesakes) : namesakes(all_namesakes) {}

    // The line that was meant, or several with newlines between them. A carriage return at its end stays. Nothing if a
    // person must decide.
    std::optional<std::string> of_line(std::string_view line, bool is_first) const;

    // The item that was meant, or several with separators between them. Nothing if a person must decide.
    std::optional<std::string> of_item(std::string_view item, char separator) const;

    // The spelling that was meant: that of the known variable, else the nearest known name, else as the first
    // assignment spells it.
    std::string spelt(std::string_view name) const;

private:
    std::optional<std::string> of_ignored_line(std::string_view line) const;
    std::optional<std::string> of_assignment(std::string_view line) const;
    std::optional<std::string> of_two_words(std::string_view line, std::span<const std::string_view> words) const;
    std::optional<std::string> of_colon(std::string_view line) const;
    std::optional<std::string> name_meant_by(std::string_view written) const;

    const NAMESAKES& namesakes;
};

// The known variable nearest to the name, which is itself not known. Null for none.
const std::string* nearest_known_name(std::string_view name);

// Makes a line a comment when put before it.
inline constexpr std::string_view comment_sign = "# ";

// The bytes with which some programs begin a text.
inline constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

// The offset of a carriage return that divides the text but ends no line. npos if there is none, or if it only divides
// comments.
std::size_t dividing_carriage_return(std::string_view line);

// The offset of a "//" that looks like the beginning of a comment but belongs to the value; npos for none. `kept` is
// the line without its comment, and the value begins at `value_offset`.
std::size_t slashes_in_value(std::string_view kept, std::size_t value_offset);

#endif
