// The text that a person meant to write: what takes the place of a line, or of an item of VELMAR_INI_VARS.
//
// All that is odd about a line is put right at once, so that each of its findings suggests the same text. Whether that
// text is free of the findings is for the rules to check.
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
    // They tell how a name is spelt elsewhere, and must outlive this.
    explicit INTENTIONS(const NAMESAKES& all_namesakes) : namesakes(all_namesakes) {}

    // The line, or the lines with newlines between them; its carriage return stays. Nothing where a person must decide.
    std::optional<std::string> of_line(std::string_view line, bool is_first) const;

    // The item, or several with separators between them. Nothing where a person must decide.
    std::optional<std::string> of_item(std::string_view item, char separator) const;

    // The name as the product or the first assignment spells it, or the known one that is nearest.
    std::string spelt(std::string_view name) const;

private:
    std::optional<std::string> of_ignored_line(std::string_view line) const;
    std::optional<std::string> of_assignment(std::string_view line) const;
    std::optional<std::string> of_two_words(std::string_view line, std::span<const std::string_view> words) const;
    std::optional<std::string> of_colon(std::string_view line) const;
    std::optional<std::string> name_meant_by(std::string_view written) const;

    const NAMESAKES& namesakes;
};

// The known variable nearest to the name, which is none itself. Null for none.
const std::string* nearest_known_name(std::string_view name);

// What makes a comment of a line.
inline constexpr std::string_view comment_sign = "# ";

// The bytes with which some programs begin a text.
inline constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

// Where a carriage return that ends no line divides the text; npos when none does, or it only divides comments.
std::size_t dividing_carriage_return(std::string_view line);

// Where a "//" stands that looks like the beginning of a comment but belongs to the value, which begins at
// `value_offset`; npos for none. `kept` is the line without its comment.
std::size_t slashes_in_value(std::string_view kept, std::size_t value_offset);

#endif
