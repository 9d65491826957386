// Where a preference's value stands.
#include <ostream>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/preference_test.h"

namespace zon_cfg
{
bool operator==(const PREFERENCE_ORIGIN& a, const PREFERENCE_ORIGIN& b)
{
    return a.source == b.source && a.section == b.section;
}

void PrintTo(const PREFERENCE_ORIGIN& origin, std::ostream* out)
{
    *out << "source " << static_cast<int>(origin.source) << " [" << origin.section << "]";
}
}

using namespace zon_cfg;

namespace
{
constexpr auto running_release = PREFERENCE_SOURCE::RUNNING_RELEASE;
constexpr auto older_release = PREFERENCE_SOURCE::OLDER_RELEASE;
constexpr auto unversioned_section = PREFERENCE_SOURCE::UNVERSIONED_SECTION;
constexpr auto of_the_catalogue = PREFERENCE_SOURCE::DEFAULT;
constexpr auto nowhere = PREFERENCE_SOURCE::NOWHERE;

struct CASE
{
    const char* name;
    const char* file;
    CFG_USER_INI_ENUMS preference;
    PREFERENCE_ORIGIN origin;
};

void PrintTo(const CASE& row, std::ostream* out)
{
    *out << row.name;
}

// SHOW_MESSAGE_ID has the default "on", WEB_BROWSER none. The running release is 23.4, older ones are 23.3 and 23.2.
const CASE cases[] = {
    {"no_file_but_a_default", "", SHOW_MESSAGE_ID, {of_the_catalogue, ""}},
    {"neither_value_nor_default", "", WEB_BROWSER, {nowhere, ""}},
    {"no_such_preference", "[Messages 23.4_pro]\nx = 1\n", CFG_USER_INI_ENUMS_END, {nowhere, ""}},
    {"running_release",
     "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n",
     SHOW_MESSAGE_ID,
     {running_release, "Messages 23.4_pro"}},
    {"running_section_without_the_key",
     "[Messages 23.4_pro]\nx = 1\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n[Messages]\nSHOW_MESSAGE_ID = off\n",
     SHOW_MESSAGE_ID,
     {of_the_catalogue, ""}},
    {"running_section_with_an_empty_value",
     "[Messages 23.4_pro]\nSHOW_MESSAGE_ID =\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n",
     SHOW_MESSAGE_ID,
     {of_the_catalogue, ""}},
    {"running_section_with_an_empty_value_and_no_default",
     "[Internet Connectivity 23.4_pro]\nWEB_BROWSER =\n[Internet Connectivity 23.3_pro]\nWEB_BROWSER = b\n",
     WEB_BROWSER,
     {nowhere, ""}},
    {"newest_of_the_older_releases",
     "[Messages 23.2_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n",
     SHOW_MESSAGE_ID,
     {older_release, "Messages 23.3_pro"}},
    {"older_release_of_two",
     "[Messages 23.2_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.3_pro]\nx = 1\n",
     SHOW_MESSAGE_ID,
     {older_release, "Messages 23.2_pro"}},
    {"older_release_before_no_release",
     "[Messages 23.2_pro]\nSHOW_MESSAGE_ID = off\n[Messages]\nSHOW_MESSAGE_ID = off\n",
     SHOW_MESSAGE_ID,
     {older_release, "Messages 23.2_pro"}},
    {"empty_value_of_an_older_release_ends_the_walk",
     "[Messages 23.2_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID =\n",
     SHOW_MESSAGE_ID,
     {of_the_catalogue, ""}},
    {"empty_value_of_an_older_release_and_a_section_without",
     "[Messages 23.3_pro]\nSHOW_MESSAGE_ID =\n[Messages]\nSHOW_MESSAGE_ID = off\n",
     SHOW_MESSAGE_ID,
     {unversioned_section, "Messages"}},
    {"section_without_release",
     "[Messages]\nSHOW_MESSAGE_ID = off\n",
     SHOW_MESSAGE_ID,
     {unversioned_section, "Messages"}},
    {"empty_value_without_release", "[Messages]\nSHOW_MESSAGE_ID =\n", SHOW_MESSAGE_ID, {of_the_catalogue, ""}},
    {"unknown_release", "[Messages 22.1_pro]\nSHOW_MESSAGE_ID = off\n", SHOW_MESSAGE_ID, {of_the_catalogue, ""}},
};

class PREFERENCE_ORIGIN_TEST : public PREFERENCE_TEST, public testing::WithParamInterface<CASE>
{
};

TEST_P(PREFERENCE_ORIGIN_TEST, is_told_before_and_after_the_lookup)
{
    const auto& [name, file, preference, origin] = GetParam();
    write_preferences(file);
    EXPECT_EQ(preference_origin(preference), origin);
    const RECORDS loaded = records();
    EXPECT_EQ(preference_origin(preference), origin);
    EXPECT_EQ(records(), loaded) << "to ask changes nothing";
    cfg_get_user_ini_value(preference);
    EXPECT_EQ(preference_origin(preference), origin) << "a copy made by a lookup is not in the file";
}

INSTANTIATE_TEST_SUITE_P(Files, PREFERENCE_ORIGIN_TEST, testing::ValuesIn(cases),
                         [](const auto& row) { return std::string(row.param.name); });

using PREFERENCE_ORIGIN_OF_ASSIGNMENTS = PREFERENCE_TEST;

TEST_F(PREFERENCE_ORIGIN_OF_ASSIGNMENTS, are_seen_only_where_the_file_has_the_running_releases_section)
{
    cfg_set_user_ini_value(WEB_BROWSER, "b");
    EXPECT_EQ(preference_origin(WEB_BROWSER), (PREFERENCE_ORIGIN{nowhere, ""}));
    cfg_close_user_ini_file();
    write_preferences("[Internet Connectivity 23.4_pro]\nx = 1\n");
    cfg_set_user_ini_value(WEB_BROWSER, "b");
    EXPECT_EQ(preference_origin(WEB_BROWSER), (PREFERENCE_ORIGIN{running_release, "Internet Connectivity 23.4_pro"}));
}
}
