// Hands questions on to the internals of the variable store. There is no rule of the tool's own in this file.
#include "tools/velmar-cfg/settings/library_rules.h"

#include <cstdlib>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/own_variables.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"
#include "cfg_ini/cfg_ini_reader/variable_catalogue.h"
#include "platform/fio/fio.h"

using namespace zon_cfg;

OUTCOME outcome_of_line(std::string_view line, LINE_PARTS& parts)
{
    switch (parse_settings_line(line, parts))
    {
    case SETTINGS_LINE::TOO_SHORT:
        return OUTCOME::TOO_SHORT;
    case SETTINGS_LINE::NO_EQUALS_SIGN:
        return OUTCOME::NO_EQUALS_SIGN;
    case SETTINGS_LINE::ASSIGNMENT:
        break;
    }
    return OUTCOME::STORED;
}

std::size_t length_without_comment(std::string_view line)
{
    // Most lines have nothing that could begin a comment, and need no copy.
    if (line.find_first_of(";#/") == std::string_view::npos)
        return line.size();
    std::string kept(line);
    cfg_remove_commented_portion(&kept);
    return kept.size();
}

bool INLINE_ITEMS::next(OUTCOME& outcome, std::string& name, std::string& value)
{
    INLINE_ITEM kind{};
    if (!items.next(kind, name, value))
        return false;
    switch (kind)
    {
    case INLINE_ITEM::NO_EQUALS_SIGN:
        outcome = OUTCOME::NO_EQUALS_SIGN;
        break;
    case INLINE_ITEM::EMPTY_NAME:
        outcome = OUTCOME::EMPTY_NAME;
        break;
    case INLINE_ITEM::EMPTY_VALUE:
        outcome = OUTCOME::EMPTY_VALUE;
        break;
    case INLINE_ITEM::ASSIGNMENT:
        outcome = OUTCOME::STORED;
        break;
    }
    return true;
}

char separator_of_items(const std::string& text)
{
    return cfg_find_separator_in_ini_string(text);
}

std::span<const std::pair<const char*, const char*>> catalogued_variables()
{
    return cfg_enum_based_defaults;
}

std::span<const char* const> own_switches()
{
    return OWN_VARIABLE::switches;
}

std::span<const char* const> own_integers()
{
    return OWN_VARIABLE::integers;
}

std::optional<bool> as_boolean(const std::string& text)
{
    bool value = false;
    return cfg_ini_convert_to_bool(text.c_str(), &value) ? std::optional(value) : std::nullopt;
}

std::optional<int> as_integer(const std::string& text)
{
    int value = 0;
    return cfg_ini_convert_to_int(text.c_str(), &value) ? std::optional(value) : std::nullopt;
}

std::optional<unsigned int> as_unsigned(const std::string& text)
{
    unsigned int value = 0;
    return cfg_ini_convert_to_uint(text.c_str(), &value) ? std::optional(value) : std::nullopt;
}

double as_floating(const std::string& text, bool* whole)
{
    return convert_to_double(text.c_str(), whole);
}

std::string settings_file_of(const std::string& project, bool regtest)
{
    return project.empty() ? cfg_get_default_ini_file(regtest) : find_project_settings(project.c_str(), regtest);
}

std::string own_settings_file(const std::string& project)
{
    return project.empty() ? settings_file_name(false) : project_settings_path(project.c_str(), false).fullpath();
}

std::string appended_file()
{
    return appended_settings_path();
}

std::string named_appended_file()
{
    const char* const named = std::getenv("APPENDED_VELMAR_INI");
    return named == nullptr ? "" : named;
}

const char* inline_text()
{
    return inline_settings();
}
