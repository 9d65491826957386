// What the tool's model of the preferences answers, beside what the store answers that has loaded the same file.
#include "tools/velmar-cfg/preferences/preferences.h"

#include <gmock/gmock.h>

#include "platform/ver/ver.h"
#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/settings_generator.h"

using namespace zon_cfg;

namespace
{
class PREFERENCES_MODEL : public ISOLATED_TEST
{
protected:
    ~PREFERENCES_MODEL() override
    {
        cfg_close_user_ini_file();
    }
};

constexpr CFG_USER_INI_ENUMS generated_preferences[] = {HDL_PREFERENCE, SHOW_MESSAGE_ID};

// A file with sections of several releases and keys of few preferences, spelt in several ways.
std::string generated_file(SETTINGS_GENERATOR& generate)
{
    static const std::vector<std::string> sections = []
    {
        std::vector<std::string> all = {"general", "", "Unknown", "General 1.0_pro"};
        for (const CFG_USER_INI_ENUMS number : generated_preferences)
        {
            const std::string section = preference_triples(number).front().section;
            all.push_back(section);
            for (const std::string& release : ver_get_all_versions())
                all.push_back(released_section(section, release));
        }
        return all;
    }();
    static const std::vector<std::string> keys = {"HDL_PREFERENCE", "hdl_preference", "SHOW_MESSAGE_ID",
                                                  "UNKNOWN",        "# note",         ""};
    static const std::vector<std::string> values = {
        "VHDL", "KHDL", "\"VHDL\"", "\"\"", "", " ", "no such value", "on", "a[b", std::string("on\0x", 4)};
    std::string text = "[" + generate.pick(sections) + "]\n";
    for (std::size_t i = generate.below(14); i > 0; --i)
    {
        const std::size_t kind = generate.below(10);
        text += kind < 3   ? "[" + generate.pick(sections) + "]"
                : kind < 9 ? generate.one_of_each({keys, {"=", " = ", "= "}, values})
                           : generate.pick({"", "x", "[open", "nothing", "\r"});
        text += generate.pick({"\n", "\n", "\r\n"});
    }
    return text;
}

TEST_F(PREFERENCES_MODEL, answers_as_a_store_does_over_generated_files)
{
    int set_in_file = 0;
    for (unsigned int seed = 1; seed <= 1000; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        SETTINGS_GENERATOR generate(seed);
        const std::string bytes = generated_file(generate);
        write_file("user/velmar2.ini", bytes);
        environment.set("VELMAR2_INI", "user");
        cfg_close_user_ini_file();

        const PREFERENCES preferences(bytes);
        const bool all = seed % 50 == 0;
        for (const CFG_USER_INI_ENUMS number :
             all ? all_preference_numbers()
                 : std::vector<CFG_USER_INI_ENUMS>(std::begin(generated_preferences), std::end(generated_preferences)))
        {
            const PREFERENCE preference = preferences.look_up(number);
            // The origin first: a lookup leaves a copy of what it carries over.
            const PREFERENCE_ORIGIN origin = preference_origin(number);
            ASSERT_EQ(preference.origin.source, origin.source) << preference.key;
            ASSERT_EQ(preference.origin.section, origin.section) << preference.key;
            ASSERT_EQ(preference.value, cfg_get_user_ini_value(number)) << preference.key;
            set_in_file += origin.section.empty() ? 0 : 1;
        }
    }
    EXPECT_GT(set_in_file, 150);
}

TEST_F(PREFERENCES_MODEL, is_all_defaults_without_a_file)
{
    environment.set("VELMAR2_INI", temporary.path());
    INPUT_FILES files;
    EXPECT_EQ(preference_file_in_use(files), nullptr);
    SECRETS secrets;
    const PREFERENCE preference = load_preferences(files, secrets).look_up(preference_number("hdl_preference"));
    EXPECT_EQ(preference.value, "Verilog");
    EXPECT_EQ(preference.origin.source, PREFERENCE_SOURCE::DEFAULT);
    EXPECT_EQ(preference.release, "");
}
}
