// First and alone: the header needs no other before it.
#include "cfg_ini/cfg_settings_sources.h"

#include "tests/support/isolated_test.h"

static_assert(__cplusplus == 201703L, "compiled as C++17");

namespace
{
using SETTINGS_SOURCES_HEADER_TEST = ISOLATED_TEST;

// Through the shared library alone.
TEST_F(SETTINGS_SOURCES_HEADER_TEST, lists_what_was_loaded)
{
    cfg_close_ini_file();
    EXPECT_TRUE(cfg_get_settings_sources().applied.empty());
    write_file(temporary.path("cwd/velmar.ini"), "max_fanout = 12\n");
    cfg_read_ini_file("velmar.ini");
    cfg_process_ini_string("mode=fast", false);
    cfg_is_on("never_set", false);
    const CFG_SETTINGS_SOURCES sources = cfg_get_settings_sources();
    ASSERT_EQ(sources.applied.size(), 2U);
    EXPECT_EQ(sources.applied[0].role, CFG_SETTINGS_ROLE::MAIN_FILE);
    EXPECT_EQ(sources.applied[0].path, temporary.path("cwd/velmar.ini"));
    EXPECT_EQ(sources.applied[0].size, 16U);
    EXPECT_EQ(sources.applied[1].role, CFG_SETTINGS_ROLE::PROGRAM_TEXT);
    EXPECT_EQ(sources.applied[1].text, "mode=fast");
    EXPECT_EQ(sources.empty_variables, std::vector<std::string>{"never_set"});
    cfg_close_ini_file();
}
}
