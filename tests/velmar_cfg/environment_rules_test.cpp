// What lint says of the environment variables that choose settings files.
#include "tools/velmar-cfg/lint/environment_rules.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class ENVIRONMENT_RULES : public ISOLATED_TEST
{
protected:
    // "VARIABLE severity reason: message; instead [replacement]" of each finding.
    static std::vector<std::string> found()
    {
        SECRETS secrets;
        std::vector<std::string> texts;
        for (const FINDING& finding : lint_environment(secrets))
        {
            EXPECT_EQ(finding.item, 1U);
            EXPECT_EQ(finding.column, 1U);
            EXPECT_EQ(finding.line, std::nullopt);
            texts.push_back(finding.file + " " + severity_word(finding.severity) + " " + finding.reason + ": " +
                            finding.message + "; " + finding.instead +
                            (finding.replacement ? " [" + *finding.replacement + "]" : ""));
        }
        return texts;
    }
};

TEST_F(ENVIRONMENT_RULES, say_nothing_without_variables)
{
    EXPECT_THAT(found(), IsEmpty());
    for (const char* const name : {"VELMAR_INI", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI"})
        environment.set(name, "");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(ENVIRONMENT_RULES, know_what_looks_like_a_yes)
{
    for (const char* const value :
         {"on", "ON", "true", "True", "yes", "enable", "enabled", "2", "-1", "01", "+1", "x", "1 ", " 1", "1\t", "on "})
    {
        environment.set("VELMAR_INI_DISABLED", value);
        EXPECT_THAT(found(), ElementsAre("VELMAR_INI_DISABLED warning disables-nothing: '" + std::string(value) +
                                         "' disables nothing: only '1' does; write '1' [1]"))
            << value;
    }
    for (const char* const value :
         {"1", "0", "00", "-0", "off", "OFF", "false", "no", "No", "disable", "disabled", " ", "\t", "off ", " 0"})
    {
        environment.set("VELMAR_INI_DISABLED", value);
        EXPECT_THAT(found(), IsEmpty()) << value;
    }
}

TEST_F(ENVIRONMENT_RULES, want_a_directory)
{
    write_file("set/velmar.ini", "a=1\n");
    write_file("set/other.ini", "a=1\n");
    write_file("set/my_velmar.ini", "a=1\n");
    write_file("velmar.ini", "a=1\n");
    std::filesystem::create_directory("set/below");
    write_file("set/below/velmar.ini", "a=1\n");
    ASSERT_EQ(symlink("set", "link"), 0);
    ASSERT_EQ(symlink("nowhere", "dangling"), 0);
    ASSERT_EQ(symlink("circle", "circle"), 0);
    const std::string absolute = temporary.path("cwd/set");
    struct ROW
    {
        std::string value;
        std::string finding; // behind "VELMAR_INI "; empty for none
    };
    const auto is_file = [](const std::string& value, const std::string& rest) {
        return "error no-directory: " + in_single_quotes(value) + " is a file: no settings are looked for in it; " +
               rest;
    };
    const std::string name_one = "name the directory of a file velmar.ini";
    const ROW rows[] = {
        {"set", ""},
        {"set/", ""},
        {"link", ""},
        {".", ""},
        {"set/velmar.ini", is_file("set/velmar.ini", "write 'set' [set]")},
        {"link/velmar.ini", is_file("link/velmar.ini", "write 'link' [link]")},
        {"set/below/velmar.ini", is_file("set/below/velmar.ini", "write 'set/below' [set/below]")},
        {"velmar.ini", is_file("velmar.ini", "write '.' [.]")},
        {"./velmar.ini", is_file("./velmar.ini", "write '.' [.]")},
        {absolute + "/velmar.ini",
         is_file(absolute + "/velmar.ini", "write " + in_single_quotes(absolute) + " [" + absolute + "]")},
        {"set/other.ini", is_file("set/other.ini", name_one)},
        {"set/my_velmar.ini", is_file("set/my_velmar.ini", name_one)},
        {"/dev/null", is_file("/dev/null", name_one)},
        {"nowhere", "warning missing-directory: there is no directory 'nowhere'; check the path"},
        {"dangling", "warning missing-directory: there is no directory 'dangling'; check the path"},
        {"velmar.ini/x", "warning missing-directory: there is no directory 'velmar.ini/x'; check the path"},
        // It cannot be told what is there.
        {"circle", ""},
        {std::string(5000, 'x'), ""},
    };
    for (const ROW& row : rows)
    {
        environment.set("VELMAR_INI", row.value);
        EXPECT_EQ(found(), row.finding.empty() ? std::vector<std::string>()
                                               : std::vector<std::string>{"VELMAR_INI " + row.finding})
            << row.value;
    }
}

TEST_F(ENVIRONMENT_RULES, want_the_appended_file_to_be_there)
{
    write_file("more.ini", "");
    std::filesystem::create_directory("directory");
    for (const char* const value : {"more.ini", "./more.ini", "directory"})
    {
        environment.set("APPENDED_VELMAR_INI", value);
        EXPECT_THAT(found(), IsEmpty()) << value;
    }
    environment.set("APPENDED_VELMAR_INI", "nothing.ini");
    EXPECT_THAT(found(),
                ElementsAre("APPENDED_VELMAR_INI error missing-file: there is no file 'nothing.ini', so nothing is "
                            "appended; check the path, or remove the variable"));
}

TEST_F(ENVIRONMENT_RULES, are_told_in_one_order)
{
    environment.set("APPENDED_VELMAR_INI", "nothing.ini");
    environment.set("VELMAR_INI_DISABLED", "yes");
    environment.set("VELMAR_INI", "nowhere");
    SECRETS secrets;
    std::vector<std::string> files;
    for (const FINDING& finding : lint_environment(secrets))
        files.push_back(finding.file);
    EXPECT_THAT(files, ElementsAre("VELMAR_INI", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI"));
}

TEST_F(ENVIRONMENT_RULES, tell_that_there_is_nothing_to_check)
{
    const FINDING settings = no_settings_file();
    EXPECT_EQ(settings.file, "velmar.ini");
    EXPECT_EQ(settings.reason, "no-settings-file");
    EXPECT_EQ(settings.message, "no settings file found");
    EXPECT_EQ(settings.instead, "'velmar-cfg paths' shows where it is looked for");
    environment.set("VELMAR_INI_DISABLED", "1");
    EXPECT_EQ(no_settings_file().message, "no settings file found, since VELMAR_INI_DISABLED is 1");
    environment.set("VELMAR_INI_DISABLED", "yes");
    EXPECT_EQ(no_settings_file().message, "no settings file found");
    const FINDING preferences = no_preference_file();
    EXPECT_EQ(preferences.file, "velmar2.ini");
    EXPECT_EQ(preferences.reason, "no-preference-file");
    EXPECT_EQ(preferences.message, "no preference file found");
    EXPECT_EQ(preferences.instead, "'velmar-cfg prefs path' shows where it is looked for");
    for (const FINDING& finding : {settings, preferences})
    {
        EXPECT_EQ(finding.severity, SEVERITY::WARNING);
        EXPECT_FALSE(finding.line || finding.item || finding.column || finding.replacement);
    }
}
}
