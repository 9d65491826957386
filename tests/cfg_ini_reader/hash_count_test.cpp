// How often a call hashes its name: the hash is half of what a lookup of a long name costs. The linker puts a counting
// function in its place (CMakeLists.txt), which works only for calls from one object of this program to another.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "tests/support/faked_test.h"

using namespace zon_cfg;

#ifdef _LIBCPP_VERSION
#define SYMBOL_OF_HASH_NAME "_ZN7zon_cfg9hash_nameENSt3__117basic_string_viewIcNS0_11char_traitsIcEEEE"
#else
#define SYMBOL_OF_HASH_NAME "_ZN7zon_cfg9hash_nameESt17basic_string_viewIcSt11char_traitsIcEE"
#endif
std::size_t hash_name_itself(std::string_view name) asm("__real_" SYMBOL_OF_HASH_NAME);
std::size_t count_hash(std::string_view name) asm("__wrap_" SYMBOL_OF_HASH_NAME);

namespace
{
long hashes = 0;
}

std::size_t count_hash(std::string_view name)
{
    ++hashes;
    return hash_name_itself(name);
}

namespace
{
using HASH_COUNT_TEST = FAKED_TEST;

void look_up_new_names(int number)
{
    for (int i = 0; i < number; ++i)
        cfg_is_on("a_name_in_use_" + std::to_string(i), false);
}

struct HASH_COUNT
{
    const char* call;
    std::function<void()> make;
    long expected;
};
}

TEST_F(HASH_COUNT_TEST, a_call_hashes_its_name_at_most_once)
{
    const std::string cached = "a_name_in_the_cache";
    const std::string known = "a_known_name";
    const std::string long_name(CACHED_NAME::longest + 1, 'n');
    const std::string fresh = "a_fresh_name";
    const std::string long_fresh(CACHED_NAME::longest + 1, 'f');
    const SCOPED_POINT_LOCALE locale;
    write_file(temporary.path("velmar.ini"), cached + "=1\n" + known + "=1\n" + long_name + "=2.5\n");
    write_file(temporary.path("regtest.ini"), known + "=2\n" + fresh + "=2\n");
    int number = 0;
    const HASH_COUNT rows[] = {
        {"lookup, cached", [&] { cfg_is_on(cached, false); }, 0},
        {"lookup by default, cached", [&] { cfg_is_on(cached); }, 0},
        {"assignment, cached", [&] { cfg_set_value(cached, "2"); }, 0},
        {"number, cached", [&] { cfg_get_double_value(cached, 0); }, 0},
        {"lookup", [&] { cfg_is_on(known, false); }, 1},
        {"lookup, created", [&] { cfg_is_on(fresh, false); }, 1},
        {"lookup, long", [&] { cfg_is_on(long_name, false); }, 1},
        {"lookup, long, created", [&] { cfg_is_on(long_fresh, false); }, 1},
        {"lookup by default, long, created", [&] { cfg_is_on(long_fresh); }, 1},
        {"lookup by position, created", [&] { cfg_is_on(CFG_INI_VAR_MSG_SQLITE); }, 1},
        {"text, long", [&] { cfg_get_value(long_name); }, 1},
        {"number, long, which is marked afterwards", [&] { cfg_get_double_value(long_name, 0); }, 1},
        {"late bound, long", [&] { cfg_dyn_get_int_value(long_name.c_str(), &number, 0); }, 1},
        {"external, long", [&] { cfg_ini_is_external(long_name); }, 1},
        {"assignment", [&] { cfg_set_value(known, "2"); }, 1},
        {"assignment, created", [&] { cfg_set_value(fresh, "2"); }, 1},
        {"assignment, long", [&] { cfg_set_value(long_name, "2"); }, 1},
        {"assignment, long, created", [&] { cfg_set_int_value(long_fresh, 2); }, 1},
        {"inline text", [&] { cfg_process_ini_string(known + "=2;" + fresh + "=2", false); }, 2},
        {"file", [&] { cfg_read_regtest_ini_file(temporary.path("regtest.ini")); }, 2},
        {"many that make the table grow", [&] { look_up_new_names(5'000); }, 5'000},
    };
    for (const HASH_COUNT& row : rows)
    {
        cfg_read_ini_file(temporary.path("velmar.ini"));
        cfg_is_on(cached, false);
        hashes = 0;
        row.make();
        EXPECT_EQ(hashes, row.expected) << row.call;
    }
}
