// Cached variables as static objects of a library that comes and goes, over the shared library as hosts link it.
#include <dlfcn.h>

#include "cfg_ini/cfg_ini.h"
#include "tests/support/isolated_test.h"

namespace
{
class PLUGIN
{
public:
    PLUGIN() : handle(dlopen(ZON_TEST_PLUGIN, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(nullptr, handle) << dlerror();
    }

    ~PLUGIN()
    {
        EXPECT_EQ(0, dlclose(handle));
        EXPECT_EQ(nullptr, dlopen(ZON_TEST_PLUGIN, RTLD_NOW | RTLD_NOLOAD)) << "it must really be gone";
    }

    PLUGIN(const PLUGIN&) = delete;
    PLUGIN& operator=(const PLUGIN&) = delete;

    bool mode_is(const char* text) const
    {
        return reinterpret_cast<int (*)(const char*)>(dlsym(handle, "plugin_mode_is"))(text) == 1;
    }

private:
    void* const handle;
};

using CACHED_VALUE_PLUGIN = ISOLATED_TEST;

TEST_F(CACHED_VALUE_PLUGIN, LoadingReadsNothing)
{
    write_file(temporary.path("cwd/velmar.ini"), "plugin_mode = loud\n");
    EXPECT_IN_FRESH_PROCESS({
        const PLUGIN plugin;
        EXPECT_STREQ("", cfg_get_ini_file_path_name());
        EXPECT_TRUE(plugin.mode_is("loud"));
    });
}

TEST_F(CACHED_VALUE_PLUGIN, ComesAndGoesWhileTheSettingsChange)
{
    cfg_read_ini_file("");
    for (int round = 0; round < 3; ++round)
    {
        cfg_set_value("plugin_mode", "early");
        {
            const PLUGIN plugin;
            EXPECT_TRUE(plugin.mode_is("early"));
            cfg_set_value("plugin_mode", "later");
            EXPECT_TRUE(plugin.mode_is("later"));
        }
        cfg_set_value("plugin_mode", "nobody listens");
        cfg_read_ini_file("");
    }
}

TEST_F(CACHED_VALUE_PLUGIN, StillLoadedAtTheEndOfTheProcess)
{
    EXPECT_IN_FRESH_PROCESS({
        static const PLUGIN* const never_unloaded = new PLUGIN;
        cfg_set_value("plugin_mode", "last");
        EXPECT_TRUE(never_unloaded->mode_is("last"));
    });
}
}
