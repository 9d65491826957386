// A program as a user of the installed package writes it. Run in a directory with settings, it prints what they answer.
#include <iostream>
#include <map>
#include <string>

#include "cfg_ini/cfg_cached_value.h"
#include "cfg_ini/cfg_ini.h"

namespace
{
// Counts the stores under its name.
class FANOUT_WATCH : public CFG_INI_CALLBACK
{
public:
    FANOUT_WATCH() : CFG_INI_CALLBACK("max_fanout") {}
    void refresh() override
    {
        ++stores;
    }

    int stores = 0;
};
}

int main()
{
    FANOUT_WATCH watch;
    std::cout << "new_router " << cfg_is_on("new_router", false) << '\n'
              << "max_fanout " << cfg_get_int_value("max_fanout", 0) << '\n'
              << "license " << cfg_get_value_as<std::string>("license").value_or("none") << '\n'
              << "absent " << cfg_get_value_as<double>("absent").has_value() << '\n';
    const CFG_CACHED_VALUE fanout("max_fanout", 0);
    cfg_set_int_value("max_fanout", fanout.get() + 8);
    std::cout << "max_fanout " << fanout.get() << " after " << watch.stores << " stores\n";

    std::map<std::string, std::string> used;
    cfg_get_used_variable_value_map(&used);
    for (const auto& [name, value] : used)
        std::cout << "used " << name << '=' << value << '\n';
}
