// Guesses from the form of a line or an item what the person who wrote it meant. What the library does with the text
// does not matter here.
#ifndef TOOLS_VELMAR_CFG_LINT_WRITTEN_FORM_H
#define TOOLS_VELMAR_CFG_LINT_WRITTEN_FORM_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/settings/known_variables.h"

// White space in the sense of the library's trimming.
bool is_white(char c);

// `text` without the white space at its ends, as a view of it.
std::string_view without_outer_white(std::string_view text);

// The words of a text, which white space separates.
std::vector<std::string_view> words_of(std::string_view text);

// Whether a person would take the text for a variable's name: letters, digits and "_".
bool looks_like_a_name(std::string_view text);

// Whether `text`, as a line of its own, sets a variable whose name looks like one.
bool looks_like_an_assignment(std::string_view text);

// Whether both separators stand in an inline text.
bool mixes_separators(std::string_view text);

// --- A statement with an "=", taken apart ---

// Put together, the parts are the text again.
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

// The text before the "=", with what does not belong to the name set apart.
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

// Whether the value is a boolean word or a number.
bool is_scalar(std::string_view value);

// The value without the comma or semicolon that ends it, if the rest is a scalar; else nothing.
std::optional<std::string_view> without_comma(std::string_view value);

// "on" or "off" for a word that means it, such as "yes", but is no boolean to the library; else nothing.
std::optional<std::string> boolean_meant_by(std::string_view value);

// The decimal digits for an integer written otherwise, such as 0x10; nothing for what is an integer already, or is out
// of range.
std::optional<std::string> hexadecimal_meant_by(std::string_view value);

// The same, also for +5, 2.0 and 1e3.
std::optional<std::string> integer_meant_by(std::string_view value);

// Divides a value that holds further assignments, such as "1 h=2" of the line "g=1 h=2", into the value itself and the
// assignments, each as a line. Empty for any other value.
std::vector<std::string> assignments_in_value(std::string_view value);

// The value in the form that readers of `known`, which may be null, need; the value itself if nothing else is meant.
std::string value_meant_by(std::string_view value, const KNOWN_VARIABLE* known);

#endif
