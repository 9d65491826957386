// What a person who wrote a line or an item most probably meant by it, told from its form alone. What the library does
// with the text is not decided here.
#ifndef TOOLS_VELMAR_CFG_LINT_WRITTEN_FORM_H
#define TOOLS_VELMAR_CFG_LINT_WRITTEN_FORM_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/library_rules.h"

// White space in the sense of the library's trimming.
bool is_white(char c);

// `text` without the white space at its ends, as a part of it.
std::string_view without_outer_white(std::string_view text);

// The words of a text, white space between them.
std::vector<std::string_view> words_of(std::string_view text);

// Something a person would take for a variable's name: letters, digits and "_".
bool looks_like_a_name(std::string_view text);

// Whether `text`, taken for a line of its own, sets a variable whose name looks like one.
bool looks_like_an_assignment(std::string_view text);

// Whether both separators stand in an inline text.
bool mixes_separators(std::string_view text);

// --- A statement with an "=", taken apart ---

// The parts put together are the text again.
struct WRITTEN_ASSIGNMENT
{
    std::string_view indentation;
    std::string_view name;   // as written
    std::string_view equals; // the first "=" with the white space around it
    std::string_view value;
    std::string_view rest; // white space and comment

    std::string put_together() const;
};

// `kept_length` is the length of the text without its comment.
WRITTEN_ASSIGNMENT taken_apart(std::string_view text, std::size_t kept_length);

// --- Names ---

// What stands before the "=" and belongs to no name.
struct WRITTEN_NAME
{
    std::string_view core;          // the name itself
    std::string_view operator_sign; // as ":" of ":=", "+" of "+="; empty for none
    bool exported;                  // "export" or "set" stands before it, as in a shell's script
    bool quoted;                    // quotes stood around it
};

WRITTEN_NAME name_as_written(std::string_view name);

// Whether "NAME op= VALUE" means no more than "NAME = VALUE".
bool only_assigns(std::string_view operator_sign);

// --- Values ---

// The text between the quotes, double or single, when they enclose the whole value and nothing else.
std::optional<std::string_view> between_quotes(std::string_view value);

// A boolean word or a number: what no text variable needs.
bool is_scalar(std::string_view value);

// The value without a comma or semicolon that ends it, when the rest is a scalar.
std::optional<std::string_view> without_comma(std::string_view value);

// "on" or "off" for a word that means it, such as "yes", and is no boolean of the library.
std::optional<std::string> boolean_meant_by(std::string_view value);

// The decimal digits for an integer written otherwise, such as 0x10; nothing for what is an integer already, or is out
// of range.
std::optional<std::string> hexadecimal_meant_by(std::string_view value);

// The same for +5, 2.0 and 1e3 too.
std::optional<std::string> integer_meant_by(std::string_view value);

// "1 h=2" of the line "g=1 h=2": the value and the further assignments, each as a line. Empty for any other value.
std::vector<std::string> assignments_in_value(std::string_view value);

// The value as a reader of such a variable needs it; the value itself when nothing else is meant.
std::string value_meant_by(std::string_view value, const KNOWN_VARIABLE* known);

#endif
