// The rules of the model of preferences, one by one: lines and sections, lookups, names, words and places. What a store
// answers over generated files is compared elsewhere.
#include <filesystem>
#include <gmock/gmock.h>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/byte_sink.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"

using namespace zon_cfg;

namespace
{
using testing::ElementsAre;

// --- Lines ---

std::vector<std::string> lines_in_words(std::string_view bytes)
{
    std::vector<std::string> rows;
    for_each_preference_line(
        bytes,
        [&rows](std::size_t number, std::string_view text, const PREFERENCE_LINE& line, const std::string& section)
        { rows.push_back(std::to_string(number) + " <" + std::string(text) + "> [" + section + "] " + line.name); });
    return rows;
}

TEST(PREFERENCE_LINES, are_counted_from_one_and_end_with_a_line_feed_or_the_text)
{
    EXPECT_TRUE(lines_in_words("").empty());
    EXPECT_THAT(lines_in_words("a=1"), ElementsAre("1 <a=1> [] a"));
    EXPECT_THAT(lines_in_words("a=1\n"), ElementsAre("1 <a=1> [] a"));
    EXPECT_THAT(lines_in_words("\n\na=1\r\n"), ElementsAre("1 <> [] ", "2 <> [] ", "3 <a=1\r> [] a"));
}

TEST(PREFERENCE_LINES, have_the_section_of_the_last_header)
{
    EXPECT_THAT(lines_in_words("a=1\n[S]\nb=2\n[] \nc=3\n[open\n[T]"),
                ElementsAre("1 <a=1> [] a", "2 <[S]> [S] ", "3 <b=2> [S] b", "4 <[] > [] ", "5 <c=3> [] c",
                            "6 <[open> [] ", "7 <[T]> [T] "));
    // A header without its end, or of fewer than three characters, changes no section.
    EXPECT_THAT(lines_in_words("[S]\n[open\nb=2"), ElementsAre("1 <[S]> [S] ", "2 <[open> [S] ", "3 <b=2> [S] b"));
    EXPECT_THAT(lines_in_words("[S]\n[]\nb=2"), ElementsAre("1 <[S]> [S] ", "2 <[]> [S] ", "3 <b=2> [S] b"));
}

// --- Lookups ---

struct LOOKUP
{
    const char* title;
    const char* bytes;
    CFG_USER_INI_ENUMS number;
    const char* answer; // VALUE | SOURCE | SECTION | RELEASE
};

void PrintTo(const LOOKUP& row, std::ostream* stream)
{
    *stream << row.title;
}

class PREFERENCE_LOOKUPS : public testing::TestWithParam<LOOKUP>
{
};

TEST_P(PREFERENCE_LOOKUPS, answer)
{
    const PREFERENCE preference = PREFERENCES(GetParam().bytes).look_up(GetParam().number);
    EXPECT_EQ(preference.value + " | " + source_word(preference.origin.source) + " | " + preference.origin.section +
                  " | " + preference.release,
              GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    rules, PREFERENCE_LOOKUPS,
    testing::Values(
        LOOKUP{"no file", "", SHOW_MESSAGE_ID, "on | default |  | "},
        LOOKUP{"no file and no default", "", CLOUD_SERVER, " | none |  | "},
        LOOKUP{"the running release", "[Messages 23.4_pro]\nSHOW_MESSAGE_ID=off", SHOW_MESSAGE_ID,
               "off | running release | Messages 23.4_pro | 23.4"},
        LOOKUP{"the first line of a key counts", "[Messages 23.4_pro]\nSHOW_MESSAGE_ID=off\nSHOW_MESSAGE_ID=on",
               SHOW_MESSAGE_ID, "off | running release | Messages 23.4_pro | 23.4"},
        LOOKUP{"also where the section is told again",
               "[Messages 23.4_pro]\nSHOW_MESSAGE_ID=off\n[General]\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID=on",
               SHOW_MESSAGE_ID, "off | running release | Messages 23.4_pro | 23.4"},
        LOOKUP{"above the first header nothing counts", "SHOW_MESSAGE_ID=off\n", SHOW_MESSAGE_ID, "on | default |  | "},
        LOOKUP{"below an empty header nothing counts", "[Messages 23.4_pro]\n[] \nSHOW_MESSAGE_ID=off\n",
               SHOW_MESSAGE_ID, "on | default |  | "},
        LOOKUP{"another section", "[General 23.4_pro]\nSHOW_MESSAGE_ID=off\n", SHOW_MESSAGE_ID, "on | default |  | "},
        LOOKUP{"a key in another letter case is another", "[Messages 23.4_pro]\nshow_message_id=off\n", SHOW_MESSAGE_ID,
               "on | default |  | "},
        LOOKUP{"an older release", "[Messages 23.3_pro]\nSHOW_MESSAGE_ID=off", SHOW_MESSAGE_ID,
               "off | older release | Messages 23.3_pro | 23.3"},
        LOOKUP{"the newest of the older ones, wherever it stands",
               "[Cloud 22.4_pro]\nCLOUD_SERVER=c\n[Cloud 23.3_pro]\nCLOUD_SERVER=a\n[Cloud 23.1_pro]\nCLOUD_SERVER=b",
               CLOUD_SERVER, "a | older release | Cloud 23.3_pro | 23.3"},
        LOOKUP{"an older release that lacks the key is passed over",
               "[Cloud 23.3_pro]\nCLOUD_USER_ID=x\n[Cloud 22.4_pro]\nCLOUD_SERVER=c", CLOUD_SERVER,
               "c | older release | Cloud 22.4_pro | 22.4"},
        LOOKUP{"an empty value ends the walk over the releases",
               "[Cloud 23.3_pro]\nCLOUD_SERVER=\n[Cloud 22.4_pro]\nCLOUD_SERVER=c", CLOUD_SERVER, " | none |  | "},
        LOOKUP{"and the section without a release is next",
               "[Cloud 23.3_pro]\nCLOUD_SERVER=\n[Cloud 22.4_pro]\nCLOUD_SERVER=c\n[Cloud]\nCLOUD_SERVER=d",
               CLOUD_SERVER, "d | unversioned section | Cloud | "},
        LOOKUP{"an older release comes before the section without one",
               "[Cloud]\nCLOUD_SERVER=d\n[Cloud 22.4_pro]\nCLOUD_SERVER=c", CLOUD_SERVER,
               "c | older release | Cloud 22.4_pro | 22.4"},
        LOOKUP{"an empty value there is none", "[Cloud]\nCLOUD_SERVER=\n", CLOUD_SERVER, " | none |  | "},
        LOOKUP{"an empty value there is none, with a default", "[Messages]\nSHOW_MESSAGE_ID=\n", SHOW_MESSAGE_ID,
               "on | default |  | "},
        LOOKUP{"a release that nobody knows is no release", "[Cloud 1.0_pro]\nCLOUD_SERVER=z", CLOUD_SERVER,
               " | none |  | "},
        LOOKUP{"an empty value of the running release keeps older ones away",
               "[Cloud 23.4_pro]\nCLOUD_SERVER=\n[Cloud 23.3_pro]\nCLOUD_SERVER=a", CLOUD_SERVER, " | none |  | "},
        LOOKUP{"so does its section", "[Cloud 23.4_pro]\n[Cloud 23.3_pro]\nCLOUD_SERVER=a\n[Cloud]\nCLOUD_SERVER=d",
               CLOUD_SERVER, " | none |  | "},
        LOOKUP{"so does its section behind them", "[Cloud 23.3_pro]\nCLOUD_SERVER=a\n[Cloud 23.4_pro]\n", CLOUD_SERVER,
               " | none |  | "},
        LOOKUP{"not so in another letter case", "[cloud 23.4_pro]\n[Cloud 23.3_pro]\nCLOUD_SERVER=a\n", CLOUD_SERVER,
               "a | older release | Cloud 23.3_pro | 23.3"},
        LOOKUP{"a value that is not allowed is answered", "[Messages 23.4_pro]\nSHOW_MESSAGE_ID=perhaps",
               SHOW_MESSAGE_ID, "perhaps | running release | Messages 23.4_pro | 23.4"},
        // Section and key are one text in the store: where they run together otherwise, the first pair has the place.
        LOOKUP{"a section and a key that run together", "[Cloud 23.4_proCLOUD]\n_SERVER=x\n[Cloud 23.4_pro]\n",
               CLOUD_SERVER, "x | running release | Cloud 23.4_proCLOUD | "}));

TEST(PREFERENCE, says_what_the_catalogue_says)
{
    const PREFERENCE preference = PREFERENCES("").look_up(SHOW_MESSAGE_ID);
    EXPECT_EQ(preference.number, SHOW_MESSAGE_ID);
    EXPECT_EQ(preference.key, "SHOW_MESSAGE_ID");
    EXPECT_EQ(preference.section, "Messages");
    EXPECT_EQ(preference.default_value, "on");
    EXPECT_THAT(preference.allowed, ElementsAre("off", "on"));
    EXPECT_THAT(PREFERENCES("").look_up(CLOUD_SERVER).allowed, ElementsAre());
}

TEST(PREFERENCE, differs_from_its_default_but_for_letter_case)
{
    const auto differs = [](const char* value, const char* default_value)
    {
        PREFERENCE preference{};
        preference.value = value;
        preference.default_value = default_value;
        return preference.differs_from_default();
    };
    EXPECT_TRUE(differs("off", "on"));
    EXPECT_FALSE(differs("on", "on"));
    EXPECT_FALSE(differs("ON", "on"));
    EXPECT_TRUE(differs("", "on"));
    EXPECT_TRUE(differs("on", ""));
    EXPECT_FALSE(differs("", ""));
}

// --- The catalogue ---

TEST(PREFERENCE_CATALOGUE, is_listed_in_its_order_without_what_is_no_preference)
{
    const std::vector<CFG_USER_INI_ENUMS> numbers = all_preference_numbers();
    const std::vector<std::string> keys = all_preference_keys();
    EXPECT_EQ(numbers.size(), 121U);
    ASSERT_EQ(keys.size(), numbers.size());
    EXPECT_TRUE(std::ranges::is_sorted(numbers));
    EXPECT_EQ(std::ranges::adjacent_find(numbers), numbers.end());
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        EXPECT_NE(keys[i], "") << numbers[i];
        EXPECT_EQ(preference_number(keys[i]), numbers[i]) << keys[i];
        EXPECT_EQ(default_preference_value(numbers[i]), PREFERENCES("").look_up(numbers[i]).value) << keys[i];
    }
}

TEST(PREFERENCE_CATALOGUE, knows_what_is_allowed)
{
    EXPECT_THAT(allowed_preference_values(SHOW_MESSAGE_ID), ElementsAre("off", "on"));
    EXPECT_THAT(allowed_preference_values(HDL_PREFERENCE), testing::UnorderedElementsAre("KHDL", "VHDL", "Verilog"));
    EXPECT_THAT(allowed_preference_values(CLOUD_SERVER), ElementsAre());
    EXPECT_EQ(allowed_as_text({}), "any text");
    EXPECT_EQ(allowed_as_text({"on"}), "on");
    EXPECT_EQ(allowed_as_text({"off", "on", "0"}), "off, on, 0");
}

std::string complaint_about(const std::string& name)
{
    try
    {
        return std::to_string(preference_number(name));
    }
    catch (const TOOL_ERROR& error)
    {
        return std::to_string(static_cast<int>(error.exit_code)) + " " + error.what();
    }
}

TEST(PREFERENCE_NAMES, are_keys_in_any_letter_case_and_nothing_else)
{
    EXPECT_EQ(preference_number("SHOW_MESSAGE_ID"), SHOW_MESSAGE_ID);
    EXPECT_EQ(preference_number("Show_Message_Id"), SHOW_MESSAGE_ID);
    for (const auto& [name, complaint] : {
             std::pair{"QQQQQQQQ", "5 there is no preference 'QQQQQQQQ'; see velmar-cfg prefs list --all"},
             {"", "5 there is no preference ''; see velmar-cfg prefs list --all"},
             {"SHOW_MESSAGE_IDD", "5 there is no preference 'SHOW_MESSAGE_IDD' (did you mean 'SHOW_MESSAGE_ID'?); see "
                                  "velmar-cfg prefs list --all"},
             {"Generate HTML report file",
              "5 'Generate HTML report file' is an old name; the preference is called GENERATE_HTML_REPORT_FILES"},
             {"GENERATE html REPORT file",
              "5 'GENERATE html REPORT file' is an old name; the preference is called GENERATE_HTML_REPORT_FILES"},
         })
        EXPECT_EQ(complaint_about(name), complaint);
}

// --- Words ---

TEST(PREFERENCE_SOURCES, have_a_word_and_a_clause_each)
{
    struct ROW
    {
        PREFERENCE_SOURCE source;
        const char* word;
        const char* clause;
    };
    for (const auto& [source, word, clause] :
         {ROW{PREFERENCE_SOURCE::RUNNING_RELEASE, "running release", "set in section [S]"},
          ROW{PREFERENCE_SOURCE::OLDER_RELEASE, "older release", "carried over from an older release, section [S]"},
          ROW{PREFERENCE_SOURCE::UNVERSIONED_SECTION, "unversioned section",
              "carried over from section [S], which names no release"},
          ROW{PREFERENCE_SOURCE::DEFAULT, "default", "the default"},
          ROW{PREFERENCE_SOURCE::NOWHERE, "none", "not set, and there is no default"}})
    {
        EXPECT_STREQ(source_word(source), word);
        EXPECT_EQ(source_of_word(word), source) << word;
        EXPECT_EQ(origin_as_text({source, "S"}), clause);
    }
    for (const char* const word : {"", "None", "running", "running release ", "default\n"})
        EXPECT_EQ(source_of_word(word), std::nullopt) << word;
}

std::string fields_of(const PREFERENCE& preference)
{
    TEXT_SINK sink;
    {
        JSON_WRITER out(sink);
        out.begin_object();
        write_preference_fields(out, preference);
        out.end_object();
        out.finish();
    }
    std::erase_if(sink.text, [](char c) { return c == '\n'; });
    return sink.text;
}

TEST(PREFERENCE_FIELDS, are_seven_in_this_order)
{
    const char* const bytes = "[Cloud 23.3_pro]\nCLOUD_SERVER = \"a b\"\n";
    EXPECT_EQ(fields_of(PREFERENCES(bytes).look_up(CLOUD_SERVER)),
              R"({  "key": "CLOUD_SERVER",  "value": "a b",  "default": "",  "allowed": null,)"
              R"(  "source": "older release",  "section": "Cloud 23.3_pro",  "release": "23.3"})");
    EXPECT_EQ(fields_of(PREFERENCES(bytes).look_up(SHOW_MESSAGE_ID)),
              R"({  "key": "SHOW_MESSAGE_ID",  "value": "on",  "default": "on",  "allowed": [    "off",    "on"  ],)"
              R"(  "source": "default",  "section": null,  "release": null})");
}

// --- The file and its places ---

class PREFERENCE_PLACES : public ISOLATED_TEST
{
protected:
    PREFERENCE_PLACES()
    {
        environment.set("HOME", temporary.path("home"));
        write_file("file", "");
        write_file("user/velmar2.ini", "[Cloud]\nCLOUD_SERVER = a\nCLOUD_USERNAME = b");
    }

    std::string home_file() const
    {
        return temporary.path("home/velmar2.ini");
    }
};

TEST_F(PREFERENCE_PLACES, are_the_directory_that_the_variable_names_or_else_the_profile_directory)
{
    struct ROW
    {
        std::optional<std::string> variable;
        std::string path;
        bool from_variable;
        std::string remark;
    };
    for (const auto& [variable, path, from_variable, remark] :
         {ROW{std::nullopt, home_file(), false, ""}, ROW{"", home_file(), false, ""},
          ROW{"user", "user/velmar2.ini", true, ""}, ROW{"user/", "user/velmar2.ini", true, ""},
          ROW{"file", home_file(), false, "VELMAR2_INI names no directory and is ignored: file"},
          ROW{"missing", home_file(), false, "VELMAR2_INI names no directory and is ignored: missing"}})
    {
        SCOPED_TRACE(variable.value_or("unset"));
        if (variable)
            environment.set("VELMAR2_INI", *variable);
        else
            environment.unset("VELMAR2_INI");
        const PREFERENCE_FILE_LOCATION location = preference_file_location();
        EXPECT_EQ(location.path, path);
        EXPECT_EQ(location.from_variable, from_variable);
        EXPECT_EQ(location.remark, remark);

        const FILE_CANDIDATE candidate = preference_file_candidate();
        EXPECT_EQ(candidate.file, "velmar2.ini");
        EXPECT_EQ(candidate.place, from_variable ? "VELMAR2_INI" : "profile directory");
        EXPECT_EQ(candidate.path, path);
        EXPECT_EQ(candidate.state, from_variable ? FILE_STATE::READ : FILE_STATE::MISSING);
        EXPECT_EQ(candidate.remark, remark);
    }
}

// What is wrong with the file is more than that the variable is ignored.
TEST_F(PREFERENCE_PLACES, have_the_problem_of_the_file_before_that_of_the_variable)
{
    environment.set("VELMAR2_INI", "missing");
    std::filesystem::create_directories(home_file());
    const FILE_CANDIDATE candidate = preference_file_candidate();
    EXPECT_THAT(candidate.remark, testing::HasSubstr("directory"));
    EXPECT_EQ(candidate.remark.find("VELMAR2_INI"), std::string::npos) << candidate.remark;
}

TEST_F(PREFERENCE_PLACES, come_last_of_all_files_and_the_appended_one_behind_the_main_ones)
{
    environment.set("VELMAR2_INI", "user");
    environment.set("APPENDED_VELMAR_INI", "file");
    SETTINGS_SCOPE scope;
    scope.project = "project";
    std::vector<std::string> files;
    for (const FILE_CANDIDATE& candidate : all_file_candidates(scope))
    {
        if (files.empty() || files.back() != candidate.file)
            files.push_back(candidate.file);
    }
    EXPECT_THAT(files, ElementsAre("velmar.ini", "appended", "regtest.ini", "velmar2.ini"));
}

TEST_F(PREFERENCE_PLACES, a_file_that_is_there_is_read_once_and_kept)
{
    environment.set("VELMAR2_INI", "user");
    INPUT_FILES files;
    const std::shared_ptr<const INPUT_FILE> file = preference_file_in_use(files);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->path, "user/velmar2.ini");
    EXPECT_EQ(preference_file_in_use(files), file);
    SECRETS secrets;
    const PREFERENCES preferences = load_preferences(files, secrets);
    EXPECT_EQ(preferences.look_up(CLOUD_SERVER).value, "a");
    EXPECT_EQ(preferences.look_up(CLOUD_USERNAME).value, "b"); // its line has no end
    EXPECT_THAT(files.problems(), ElementsAre());
}

TEST_F(PREFERENCE_PLACES, a_file_that_is_missing_is_no_problem_and_a_link_that_leads_nowhere_is)
{
    environment.set("VELMAR2_INI", "file");
    INPUT_FILES files;
    EXPECT_EQ(preference_file_in_use(files), nullptr);
    EXPECT_THAT(files.problems(), ElementsAre());
    std::filesystem::create_directories(temporary.path("home"));
    std::filesystem::create_symlink("nowhere", home_file());
    EXPECT_EQ(preference_file_in_use(files), nullptr);
    EXPECT_THAT(files.problems(), ElementsAre(testing::HasSubstr("velmar2.ini")));
}

TEST(PREFERENCES_OF_A_FILE, are_none_without_one_and_whole_lines_where_it_cannot_be_read_whole)
{
    SECRETS secrets;
    EXPECT_EQ(preferences_in(nullptr, secrets).look_up(CLOUD_SERVER).origin.source, PREFERENCE_SOURCE::NOWHERE);
    const std::string bytes = "[Cloud]\nCLOUD_SERVER = a\nCLOUD_USERNAME = cut o";
    const INPUT_FILE whole{"velmar2.ini", bytes, {}};
    EXPECT_EQ(preferences_in(&whole, secrets).look_up(CLOUD_USERNAME).value, "cut o");
    const INPUT_FILE part{"velmar2.ini", bytes, "Input/output error"};
    EXPECT_EQ(preferences_in(&part, secrets).look_up(CLOUD_USERNAME).value, "");
    EXPECT_EQ(preferences_in(&part, secrets).look_up(CLOUD_SERVER).value, "a");
}

TEST(PREFERENCES_OF_A_FILE, have_their_secrets_hidden_unless_all_is_to_be_shown)
{
    const INPUT_FILE file{"velmar2.ini", "[Cloud]\nCLOUD_TOKEN = hush-hush\nCLOUD_SERVER = a\n", {}};
    SECRETS secrets;
    EXPECT_TRUE(has_hidden_parts(preferences_in(&file, secrets).look_up(CLOUD_TOKEN).value));
    EXPECT_EQ(preferences_in(&file, secrets).look_up(CLOUD_SERVER).value, "a");
    secrets.show_all();
    EXPECT_EQ(preferences_in(&file, secrets).look_up(CLOUD_TOKEN).value, "hush-hush");
}

// --- Values that are shown ---

TEST(SHOWN_PREFERENCES, are_hidden_by_key_or_by_name_within)
{
    struct ROW
    {
        const char* name;
        const char* value;
        bool hidden;
    };
    for (const auto& [name, value, hidden] :
         {ROW{"CLOUD_TOKEN", "hush-hush", true}, ROW{"cloud_token", "hush-hush", true},
          ROW{"# PROXY_USER1", "hush-hush", true}, ROW{";\tPROXY_USER1", "hush-hush", true},
          ROW{"MY_SECRET", "hush-hush", true}, ROW{"# MY_SECRET", "hush-hush", true}, ROW{"CLOUD_TOKEN", "on", false},
          ROW{"CLOUD_TOKEN", "", false}, ROW{"CLOUD_TOKEN", "12345", false}, ROW{"CLOUD_SERVER", "hush-hush", false},
          ROW{"CLOUD_SERVER", "a --token=hush-hush", true}, ROW{"CLOUD_SERVER", "a token hush-hush", false},
          ROW{"", "hush-hush", false}, ROW{"#; \t", "hush-hush", false}})
    {
        SCOPED_TRACE(std::string(name) + " " + value);
        SECRETS secrets;
        const std::string shown = hide_in_preference(name, value, secrets);
        EXPECT_EQ(has_hidden_parts(shown), hidden);
        EXPECT_EQ(shown.find("hush") == std::string::npos,
                  hidden || std::string(value).find("hush") == std::string::npos);
        // What is hidden already stays as it is.
        EXPECT_EQ(hide_in_preference("CLOUD_TOKEN", shown, secrets) == shown,
                  hidden || std::string(name) == "CLOUD_TOKEN");
        secrets.show_all();
        EXPECT_EQ(hide_in_preference(name, value, secrets), value);
    }
}
}
