// A library that comes and goes while its program runs, with a callback among its static objects. Each of the plugins
// is built of this file, so that they differ in nothing but their names.
#include <unistd.h>

#include "cfg_ini/cfg_ini.h"

namespace
{
class COUNTER : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;

    ~COUNTER() override
    {
        // Looks up while the library is unloaded, or the process ends.
        if (check_at_end && cfg_get_int_value("at_end", -1) != 12)
            _exit(3);
    }

    void refresh() override
    {
        ++refreshes;
    }

    void reset_to_default() override
    {
        ++resets;
    }

    int refreshes = 0;
    int resets = 0;
    bool check_at_end = false;
};

COUNTER counter("watched");
}

extern "C"
{
    __attribute__((visibility("default"))) int plugin_refreshes()
    {
        return counter.refreshes;
    }

    __attribute__((visibility("default"))) int plugin_resets()
    {
        return counter.resets;
    }

    __attribute__((visibility("default"))) void plugin_check_at_end()
    {
        counter.check_at_end = true;
    }
}
