// Settings text made up from a fixed seed: the same bytes on every machine, so that figures can be compared.
#ifndef BENCHMARKS_GENERATED_SETTINGS_H
#define BENCHMARKS_GENERATED_SETTINGS_H

#include <cstddef>
#include <string>
#include <vector>

enum class VALUE_KIND
{
    BOOLEAN_WORD, // on, off, 0, 1, true, false
    INTEGER,
    REAL, // with a decimal point
    TEXT,
    PATH,
};

struct GENERATED_VARIABLE
{
    std::string name; // 6 to 35 characters: lower case letters, digits and "_"; unique
    std::string value;
    VALUE_KIND kind;
    bool has_comment; // a comment follows on the same line; stores without trailing comments take it into the value
};

// Lines "name = value", one in ten a comment, one assignment in ten with a comment behind it. The first line is the
// section head "[settings]", which some stores need and the others skip.
struct GENERATED_SETTINGS
{
    std::vector<GENERATED_VARIABLE> variables; // in the order of the lines
    std::string text;
    std::size_t lines = 0; // without the section head
};

// In every text below, this name has the value "1", which is a value of every type.
inline constexpr const char* hot_name = "router_max_fanout_goal";

// So many lines, comments included.
GENERATED_SETTINGS generate_lines(std::size_t lines);

// So many variables, and the comments between them.
GENERATED_SETTINGS generate_variables(std::size_t variables);

// `count` names, unlike each other and unlike every generated one.
std::vector<std::string> generate_unknown_names(std::size_t count);

// `count` names of variables of this kind, in random order. Leaves out lines with a trailing comment, and the booleans
// "on" and "off", which not every store knows.
std::vector<std::string> shuffled_names(const GENERATED_SETTINGS& settings, VALUE_KIND kind, std::size_t count);

// The names of all variables in random order.
std::vector<std::string> shuffled_names(const GENERATED_SETTINGS& settings);

#endif
