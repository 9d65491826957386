// The reasons of findings. They name findings, and select them.
#ifndef TOOLS_VELMAR_CFG_LINT_REASONS_H
#define TOOLS_VELMAR_CFG_LINT_REASONS_H

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct REASON
{
    const char* name;
    const char* meaning; // a sentence, as the manual page has it
};

// The reasons for settings and for preferences, each in the byte order of names. Some names are in both.
std::span<const REASON> reasons_of_settings();
std::span<const REASON> reasons_of_preferences();

// Every name once, in byte order.
const std::vector<std::string>& reason_names();

// What findings of that name mean, for settings and for preferences.
std::string meaning_of_reason(std::string_view name);

using REASONS = std::set<std::string>;

// The names as a set. Throws TOOL_ERROR(USAGE) for an unknown name, with a suggestion.
REASONS checked_reasons(const std::vector<std::string>& names);

#endif
