// A host that links the library statically and has functions of its own under names that the library uses inside.
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini.h"

// Without the library's namespace each of these would be defined twice, or would replace the library's own.
int hash_name(std::string_view)
{
    return 1;
}
void discard_store() {}
bool equal_names(std::string_view, std::string_view)
{
    return false;
}
int store_mutex = 0;
int name_cache = 0;
bool mark_had_valid_read(std::string_view)
{
    return false;
}
void reserve_records(std::size_t) {}
void refresh_callbacks_in_registry(std::string_view) {}
void reset_callbacks() {}
void load_settings_if_no_store() {}
std::string settings_file_name(bool)
{
    return "host.ini";
}
const char* inline_settings()
{
    return "host = 1";
}
void refuse_null_text() {}
class SETTINGS_LINES
{
public:
    explicit SETTINGS_LINES(const std::string&) {}
    bool next(std::string_view&);
};
bool SETTINGS_LINES::next(std::string_view&)
{
    return false;
}

TEST(STATIC_HOST_NAMES, BelongToTheHostAndTheLibraryKeepsItsOwn)
{
    cfg_read_ini_file("");
    cfg_set_value("Some_Name", "5");
    EXPECT_EQ(5, cfg_get_int_value("SOME_NAME", 0));
    cfg_close_ini_file();
    EXPECT_EQ(7, cfg_get_int_value("some_name", 7));
    EXPECT_EQ(1, hash_name("x"));
    EXPECT_EQ("host.ini", settings_file_name(true));
}
