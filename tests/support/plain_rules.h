// The rules of names, lines, inline texts and values, each implemented plainly and slowly. Tests compare them with the
// library on random text. No function of the library is called here.
#ifndef TESTS_SUPPORT_PLAIN_RULES_H
#define TESTS_SUPPORT_PLAIN_RULES_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace plain
{
// Name and value.
using ASSIGNMENT = std::pair<std::string, std::string>;

std::uint64_t hash(const std::string& name);

// Two names are one variable when these are equal.
std::string folded_up_to_zero(const std::string& name);

void remove_comment(std::string& line);

// What a line of a settings file assigns; nothing for an ignored line.
std::optional<ASSIGNMENT> assignment(std::string line);

// What the lines of a settings file assign, in their order.
std::vector<ASSIGNMENT> assignments_of_file(const std::string& bytes);

// What an inline text assigns, in its order.
std::vector<ASSIGNMENT> assignments_of_inline_text(const std::string& text);

// T = int or unsigned int.
template <typename T>
std::optional<T> number(const std::string& text);

std::optional<bool> boolean(const std::string& text);
}

#endif
