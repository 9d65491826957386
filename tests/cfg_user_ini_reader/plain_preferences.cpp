#include "tests/cfg_user_ini_reader/plain_preferences.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "tests/cfg_user_ini_reader/expected_preferences.h"

namespace
{
// The C locale of the tests folds A to Z alone.
bool same_letter(char a, char b)
{
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

bool same(const std::string& a, const std::string& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_letter);
}

std::string trimmed(std::string text)
{
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())) != 0)
        text.pop_back();
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())) != 0)
        text.erase(text.begin());
    return text;
}

std::string current_name(const std::string& name)
{
    for (const auto& [current, old] : expected_old_names())
    {
        if (same(old, name))
            return current;
    }
    return name;
}

// Empty when the name is unknown or the value (any for a null pointer) not allowed.
std::string section_of(const std::string& name, const std::string* value)
{
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        for (const std::string& allowed : preference.values)
        {
            if (same(preference.key, name) && (value == nullptr || allowed.empty() || same(allowed, *value)))
                return preference.section;
        }
    }
    return "";
}
}

PLAIN_PREFERENCES::PLAIN_PREFERENCES(const std::string& file, std::string running, std::vector<std::string> known)
    : running_release(std::move(running)), known_releases(std::move(known))
{
    std::istringstream lines(file);
    std::string section;
    for (std::string line; std::getline(lines, line);)
        read_line(line.c_str(), section); // up to the first NUL
    value("USER_LIBRARIES", true);
    value("USER_IP_SEARCH_PATHS", true);
}

void PLAIN_PREFERENCES::read_line(const std::string& line, std::string& section)
{
    if (line.size() < 3)
        return;
    const std::size_t bracket = line.find('[');
    const std::size_t equals = line.find('=');
    if (bracket != std::string::npos)
    {
        const std::size_t end = line.find(']', bracket);
        if (end == std::string::npos)
            return;
        section = line.substr(bracket + 1, end - (bracket + 1));
        sections.insert(section);
    }
    else if (equals != std::string::npos && !section.empty())
    {
        const std::string name = current_name(trimmed(line.substr(0, equals)));
        std::string value = trimmed(line.substr(equals + 1));
        if (value.size() > 2 && value.front() == '"' && value.back() == '"')
            value = trimmed(value.substr(1, value.size() - 2));
        records.insert({section + name, {section, name, value}});
    }
}

std::string PLAIN_PREFERENCES::released(const std::string& section, const std::string& version) const
{
    return section + " " + version + "_pro";
}

std::string PLAIN_PREFERENCES::value(const std::string& name, bool use_default)
{
    std::string result;
    const std::string section = section_of(name, nullptr);
    if (!section.empty())
    {
        const std::string current = released(section, running_release);
        if (records.count(current + name) != 0)
            result = records.at(current + name).value;
        else if (sections.count(current) == 0)
            result = carried_over(section, name);
    }
    if (result.empty() && use_default)
    {
        for (const EXPECTED_PREFERENCE& preference : expected_preferences())
        {
            if (same(preference.key, name))
                return preference.default_value;
        }
    }
    return result;
}

std::string PLAIN_PREFERENCES::carried_over(const std::string& section, const std::string& name)
{
    std::string result;
    for (const std::string& version : known_releases)
    {
        const auto found = records.find(released(section, version) + name);
        if (found != records.end())
        {
            result = found->second.value;
            assign(name, result);
            break;
        }
    }
    if (result.empty() && records.count(section + name) != 0)
    {
        result = records.at(section + name).value;
        assign(name, result);
    }
    return result;
}

bool PLAIN_PREFERENCES::assign(const std::string& name, const std::string& value)
{
    const std::string section = section_of(name, &value);
    if (section.empty())
        return false;
    const std::string current = released(section, running_release);
    records.insert({current + name, {current, name, ""}}).first->second.value = value;
    return true;
}

std::string PLAIN_PREFERENCES::saved() const
{
    std::vector<RECORD> pending;
    for (const auto& [key, record] : records)
    {
        if (!record.value.empty())
            pending.push_back(record);
    }
    std::string bytes;
    while (!pending.empty())
    {
        const std::string section = pending.front().section;
        bytes += "\n[" + section + "]\n";
        std::vector<RECORD> others;
        for (const RECORD& record : pending)
        {
            if (same(record.section, section))
                bytes += record.name + " = " + record.value + "\n";
            else
                others.push_back(record);
        }
        pending = others;
    }
    return bytes;
}
