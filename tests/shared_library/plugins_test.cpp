// Libraries with static callbacks, loaded and unloaded in every order, and lookups while the process ends. The program
// is linked to the shared library, as hosts are.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <numeric>
#include <unistd.h>

#include "cfg_ini/cfg_ini.h"
#include "tests/support/isolated_test.h"

namespace
{
constexpr std::array plugin_paths = {ZON_TEST_PLUGIN_1, ZON_TEST_PLUGIN_2, ZON_TEST_PLUGIN_3};
constexpr std::size_t plugin_count = plugin_paths.size();
using ORDER = std::array<std::size_t, plugin_count>;

class PLUGIN
{
public:
    void load(const char* path)
    {
        handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle, nullptr) << dlerror();
    }

    void unload(const char* path)
    {
        ASSERT_EQ(dlclose(handle), 0);
        handle = nullptr;
        EXPECT_EQ(dlopen(path, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it must really be gone";
    }

    bool is_loaded() const
    {
        return handle != nullptr;
    }

    template <typename RESULT = int>
    RESULT call(const char* name) const
    {
        return reinterpret_cast<RESULT (*)()>(dlsym(handle, name))();
    }

private:
    void* handle = nullptr;
};

class PLUGINS_TEST : public ISOLATED_TEST
{
protected:
    PLUGINS_TEST()
    {
        cfg_read_ini_file("");
    }

    ~PLUGINS_TEST() override
    {
        cfg_close_ini_file();
    }

    // Stores once, empties once; those that are loaded are told, each of its own.
    void change_and_expect_told()
    {
        for (std::size_t i = 0; i < plugin_count; ++i)
            before[i] = plugins[i].is_loaded() ? plugins[i].call("plugin_refreshes") : 0;
        cfg_set_value("watched", "1");
        cfg_read_ini_file("");
        for (std::size_t i = 0; i < plugin_count; ++i)
        {
            if (plugins[i].is_loaded())
            {
                EXPECT_EQ(plugins[i].call("plugin_refreshes"), before[i] + 1) << plugin_paths[i];
                EXPECT_EQ(plugins[i].call("plugin_resets"), before[i] + 1) << plugin_paths[i];
            }
        }
    }

    std::array<PLUGIN, plugin_count> plugins;
    std::array<int, plugin_count> before = {};
};

TEST_F(PLUGINS_TEST, come_and_go_in_every_order)
{
    ORDER loading = {};
    std::iota(loading.begin(), loading.end(), 0U);
    do
    {
        ORDER unloading = {};
        std::iota(unloading.begin(), unloading.end(), 0U);
        do
        {
            for (const std::size_t i : loading)
            {
                plugins[i].load(plugin_paths[i]);
                change_and_expect_told();
            }
            for (const std::size_t i : unloading)
            {
                plugins[i].unload(plugin_paths[i]);
                change_and_expect_told();
            }
        } while (std::ranges::next_permutation(unloading).found);
    } while (std::ranges::next_permutation(loading).found);
}

TEST_F(PLUGINS_TEST, one_that_comes_again_starts_afresh)
{
    plugins[0].load(plugin_paths[0]);
    change_and_expect_told();
    plugins[0].unload(plugin_paths[0]);
    plugins[0].load(plugin_paths[0]);
    EXPECT_EQ(plugins[0].call("plugin_refreshes"), 0);
    change_and_expect_told();
    plugins[0].unload(plugin_paths[0]);
}

TEST_F(PLUGINS_TEST, a_static_callback_may_look_up_while_its_library_is_unloaded)
{
    cfg_set_value("at_end", "12");
    plugins[0].load(plugin_paths[0]);
    plugins[0].call<void>("plugin_check_at_end");
    plugins[0].unload(plugin_paths[0]); // ends the process should the lookup fail
}

// --- The end of the process ---

bool answers_are_right()
{
    return cfg_get_int_value("at_end", -1) == 12 && cfg_is_on(CFG_INI_VAR_MSG_SQLITE) &&
           cfg_get_ini_var_enum_from_string("msg_sqlite") == CFG_INI_VAR_MSG_SQLITE && !cfg_is_jtag_server_mode();
}

void look_up_at_exit()
{
    if (!answers_are_right())
        _exit(3);
}

bool look_up_after_everything = false;

// Registered before any library was initialised, so that it runs when all of them have destroyed their static objects:
// the store was emptied, and is read in again.
void look_up_at_the_very_end()
{
    if (!look_up_after_everything)
        return;
    look_up_at_exit();
    _exit(7); // says that it was here
}

void register_first()
{
    std::atexit(look_up_at_the_very_end);
}

__attribute__((section(".preinit_array"), used)) void (*const before_the_libraries)() = register_first;

class PROCESS_END_TEST : public ISOLATED_TEST
{
protected:
    PROCESS_END_TEST()
    {
        write_file(temporary.path("settings/velmar.ini"), "at_end = 12\n");
        environment.set("VELMAR_INI", temporary.path("settings/"));
    }

    std::array<PLUGIN, plugin_count> plugins;
};

TEST_F(PROCESS_END_TEST, an_exit_handler_that_was_registered_before_the_first_lookup_may_look_up)
{
    EXPECT_IN_FRESH_PROCESS(std::atexit(look_up_at_exit); EXPECT_TRUE(answers_are_right()));
}

TEST_F(PROCESS_END_TEST, an_exit_handler_that_was_registered_after_the_first_lookup_may_look_up)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_TRUE(answers_are_right()); std::atexit(look_up_at_exit));
}

TEST_F(PROCESS_END_TEST, an_exit_handler_may_make_the_first_lookup)
{
    EXPECT_IN_FRESH_PROCESS(std::atexit(look_up_at_exit));
}

TEST_F(PROCESS_END_TEST, a_handler_that_outlives_all_static_objects_may_look_up)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            look_up_after_everything = true;
            std::exit(answers_are_right() ? 0 : 1);
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(PROCESS_END_TEST, a_library_that_is_still_loaded_may_look_up_and_unregister)
{
    EXPECT_IN_FRESH_PROCESS({
        for (std::size_t i = 0; i < plugin_count; ++i)
        {
            plugins[i].load(plugin_paths[i]);
            plugins[i].call<void>("plugin_check_at_end");
        }
        cfg_set_value("watched", "1");
    });
}
}
