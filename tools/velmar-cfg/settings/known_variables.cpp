#include "tools/velmar-cfg/settings/known_variables.h"

#include <algorithm>
#include <iterator>

#include "cfg_ini/cfg_ini_reader/own_variables.h"
#include "cfg_ini/cfg_ini_reader/variable_catalogue.h"
#include "tools/velmar-cfg/settings/variable_name.h"

using namespace zon_cfg;

const std::vector<KNOWN_VARIABLE>& known_variables()
{
    static const std::vector<KNOWN_VARIABLE> variables = []
    {
        std::vector<KNOWN_VARIABLE> all;
        all.reserve(std::size(cfg_enum_based_defaults) + std::size(OWN_VARIABLE::switches) +
                    std::size(OWN_VARIABLE::integers));
        for (const auto& [name, default_text] : cfg_enum_based_defaults)
            all.push_back({name, KNOWN_VARIABLE::KIND::SWITCH, default_text});
        for (const char* const name : OWN_VARIABLE::switches)
            all.push_back({name, KNOWN_VARIABLE::KIND::SWITCH, ""});
        for (const char* const name : OWN_VARIABLE::integers)
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

const KNOWN_VARIABLE* find_known_variable(const std::string& name)
{
    const auto found = std::ranges::find_if(known_variables(), [&](const KNOWN_VARIABLE& variable)
                                            { return same_name(variable.name, name); });
    return found == known_variables().end() ? nullptr : &*found;
}
