// The lists and the table by name are made from the library's own tables when they are first asked for.
#include "tools/velmar-cfg/settings/known_variables.h"

#include <unordered_map>

#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "tools/velmar-cfg/settings/library_rules.h"

using namespace zon_cfg;

const std::vector<KNOWN_VARIABLE>& known_variables()
{
    static const std::vector<KNOWN_VARIABLE> variables = []
    {
        std::vector<KNOWN_VARIABLE> all;
        for (const auto& [name, default_text] : catalogued_variables())
            all.push_back({name, KNOWN_VARIABLE::KIND::SWITCH, default_text});
        for (const char* const name : own_switches())
            all.push_back({name, KNOWN_VARIABLE::KIND::SWITCH, ""});
        for (const char* const name : own_integers())
            all.push_back({name, KNOWN_VARIABLE::KIND::INTEGER, ""});
        return all;
    }();
    return variables;
}

const std::vector<std::string>& known_variable_names()
{
    static const std::vector<std::string> names = []
    {
        std::vector<std::string> all;
        for (const KNOWN_VARIABLE& variable : known_variables())
            all.push_back(variable.name);
        return all;
    }();
    return names;
}

const KNOWN_VARIABLE* find_known_variable(std::string_view name)
{
    static const std::unordered_map<std::string_view, const KNOWN_VARIABLE*, NAME_HASH, NAME_EQUAL> by_name = []
    {
        std::unordered_map<std::string_view, const KNOWN_VARIABLE*, NAME_HASH, NAME_EQUAL> all;
        for (const KNOWN_VARIABLE& variable : known_variables())
            all.emplace(variable.name, &variable);
        return all;
    }();
    const auto found = by_name.find(name);
    return found == by_name.end() ? nullptr : found->second;
}
