// A library that is loaded and unloaded while its program runs, with a cached variable among its static objects.
#include "cfg_ini/cfg_cached_value.h"

namespace
{
const CFG_CACHED_VALUE<std::string> plugin_mode("plugin_mode", "plain");
}

extern "C" __attribute__((visibility("default"))) int plugin_mode_is(const char* text)
{
    return plugin_mode.get() == text ? 1 : 0;
}
