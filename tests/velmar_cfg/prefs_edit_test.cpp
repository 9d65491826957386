#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/velmar_cfg/preference_tool_test.h"

namespace
{
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class PREFS_EDIT : public PREFERENCE_TOOL_TEST
{
protected:
    // Such an edit of a file of these bytes ends so, and the file stays as it is.
    void expect_unchanged(const std::string& bytes, const std::vector<std::string>& arguments,
                          const TOOL_RUN& expected) const
    {
        write_preferences(bytes);
        EXPECT_EQ(run(arguments), expected);
        EXPECT_EQ(preferences(), bytes);
        EXPECT_TRUE(other_files().empty());
    }

    // What stands in the directory beside the preference file.
    static std::vector<std::string> other_files()
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator("user"))
        {
            if (entry.path() != file)
                names.push_back(entry.path().filename());
        }
        return names;
    }
};

constexpr const char* normal_form = "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n";

TEST_F(PREFS_EDIT, set_makes_the_file)
{
    EXPECT_EQ(run({"prefs", "set", "hdl_preference", "VHDL"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(), normal_form);
    EXPECT_TRUE(other_files().empty());
}

// The library goes on with the file of HOME then, which is not the one that the user named.
TEST_F(PREFS_EDIT, the_change_of_another_file_than_VELMAR2_INI_names_is_told)
{
    write_file("elsewhere", "");
    for (const char* const named : {"elsewhere", "missing"})
    {
        variables["VELMAR2_INI"] = named;
        EXPECT_THAT(
            run({"prefs", "set", "HDL_PREFERENCE", "VHDL", "--dry-run"}).err,
            StartsWith("velmar-cfg: VELMAR2_INI names no directory and is ignored: " + std::string(named) + "\n"));
    }
}

TEST_F(PREFS_EDIT, set_replaces_a_value_and_keeps_the_spelling_given)
{
    write_preferences(normal_form);
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "verilog"}).exit_code, 0);
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nHDL_PREFERENCE = verilog\n");
}

TEST_F(PREFS_EDIT, set_to_the_same_value_leaves_every_byte)
{
    expect_unchanged("# mine\n[General 23.4_pro]\nHDL_PREFERENCE=VHDL", {"prefs", "set", "HDL_PREFERENCE", "VHDL"},
                     {0, "", ""});
}

TEST_F(PREFS_EDIT, values_of_every_look)
{
    for (const char* const value : {"two words", "a=b", "# no comment", "'x'", "{}", "%d", "/path;other", "\xc3\xa9"})
    {
        EXPECT_EQ(run({"prefs", "set", "PROXY_SETTINGS", value}).exit_code, 0) << value;
        EXPECT_EQ(run({"prefs", "get", "PROXY_SETTINGS"}).out, std::string(value) + "\n");
    }
    EXPECT_EQ(run({"prefs", "set", "PROXY_SETTINGS", "--", "-5"}).exit_code, 0);
    EXPECT_EQ(run({"prefs", "get", "PROXY_SETTINGS"}).out, "-5\n");
}

TEST_F(PREFS_EDIT, a_value_that_is_not_allowed_is_refused_with_the_allowed_ones)
{
    write_preferences(normal_form);
    EXPECT_EQ(run({"prefs", "set", "SHOW_MESSAGE_ID", "1"}),
              (TOOL_RUN{5, "", "velmar-cfg: '1' is not allowed for SHOW_MESSAGE_ID; allowed: off, on\n"}));
    EXPECT_EQ(run({"prefs", "set", "SHOW_MESAGE_ID", "on"}).exit_code, 5);
    EXPECT_EQ(run({"prefs", "set", "PROXY_SETTINGS", ""}).exit_code, 5);
    EXPECT_EQ(preferences(), normal_form);
    EXPECT_TRUE(other_files().empty());
}

TEST_F(PREFS_EDIT, a_value_that_would_not_be_read_back_is_refused)
{
    write_preferences(normal_form);
    EXPECT_EQ(run({"prefs", "set", "PROXY_SETTINGS", "[::1]:80"}),
              (TOOL_RUN{5, "",
                        "velmar-cfg: the file cannot hold this value: it would be read back as nothing; leave out "
                        "'[', line ends, and blanks or quotes at both ends\n"}));
    EXPECT_EQ(run({"prefs", "set", "PROXY_SETTINGS", " x "}).exit_code, 5);
    EXPECT_EQ(run({"prefs", "set", "PROXY_SETTINGS", "\"x\""}).exit_code, 5);
    EXPECT_EQ(run({"prefs", "set", "PROXY_SETTINGS", "x\nUSER_LIBRARIES = /evil"}).exit_code, 5);
    EXPECT_EQ(preferences(), normal_form);
    EXPECT_TRUE(other_files().empty());
}

TEST_F(PREFS_EDIT, a_line_that_a_save_would_spoil_stops_the_change)
{
    expect_unchanged("[General 23.4_pro]\nUSER_LIBRARIES = \"\"/lib\"\"\n", {"prefs", "set", "HDL_PREFERENCE", "VHDL"},
                     {4, "",
                      "velmar-cfg: " + full_path() +
                          ": lines that would not be kept as they were: 1\n"
                          "velmar-cfg: line 2: 'USER_LIBRARIES = \"\"/lib\"\"': a save keeps these quotes, and the "
                          "load after it removes them\n"
                          "velmar-cfg: " +
                          full_path() +
                          ": a save would also change USER_LIBRARIES from '\"/lib\"' to '/lib', as [General "
                          "23.4_pro] says, since line 2 is not kept as it is; set that one first, or --allow-loss "
                          "changes it anyway\n"});
}

// A first value in the running release's section ends the carrying over into it, so what was carried over is written
// too.
TEST_F(PREFS_EDIT, other_preferences_keep_the_values_they_had)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\nSHOW_MESSAGE_PARTITION_ID = on\n");
    EXPECT_EQ(run({"prefs", "set", "SHOW_MESSAGE_PARTITION_ID", "off"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(), "\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\nSHOW_MESSAGE_PARTITION_ID = on\n"
                             "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\nSHOW_MESSAGE_PARTITION_ID = off\n");
    EXPECT_EQ(run({"prefs", "get", "SHOW_MESSAGE_ID"}).out, "off\n");
}

TEST_F(PREFS_EDIT, an_old_value_that_is_no_longer_allowed_is_told)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = 1\n");
    EXPECT_EQ(run({"prefs", "set", "SHOW_MESSAGE_PARTITION_ID", "on"}),
              (TOOL_RUN{0, "",
                        "velmar-cfg: this also changes SHOW_MESSAGE_ID from '1' to 'on': the old value is an older "
                        "release's and is no longer allowed\n"}));
}

TEST_F(PREFS_EDIT, a_save_that_would_change_another_preference_is_not_made)
{
    // The empty section keeps the older value away, and a save does not keep empty sections.
    const char* const bytes = "[Messages 23.4_pro]\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n";
    write_preferences(bytes);
    EXPECT_EQ(
        run({"prefs", "set", "HDL_PREFERENCE", "VHDL"}),
        (TOOL_RUN{
            4, "",
            "velmar-cfg: " + full_path() +
                ": lines that would not be kept as they were: 1\n"
                "velmar-cfg: line 1: '[Messages 23.4_pro]': a section without a value, which a save drops\n"
                "velmar-cfg: " +
                full_path() +
                ": a save would also change SHOW_MESSAGE_ID from 'on' to 'off', as [Messages 23.3_pro] "
                "says, since line 1 is not kept as it is; set that one first, or --allow-loss changes it anyway\n"}));
    EXPECT_EQ(preferences(), bytes);
    EXPECT_EQ(run({"prefs", "set", "SHOW_MESSAGE_ID", "on"}).exit_code, 0);
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "VHDL"}).exit_code, 0);
}

TEST_F(PREFS_EDIT, dry_run_shows_the_difference_and_changes_nothing)
{
    const char* const commented = "# mine\n[General 23.4_pro]\nHDL_PREFERENCE=VHDL\nno preference\n";
    write_preferences(commented);
    const std::string path = full_path();
    const std::string lost = "velmar-cfg: line 1: '# mine': this line sets nothing, and a save drops it\n"
                             "velmar-cfg: line 4: 'no preference': this line sets nothing, and a save drops it\n";
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--dry-run"}),
              (TOOL_RUN{0,
                        "--- " + path + "\n+++ " + path +
                            " (new)\n@@ -1,4 +1,3 @@\n-# mine\n+\n [General 23.4_pro]\n-HDL_PREFERENCE=VHDL\n-no "
                            "preference\n+HDL_PREFERENCE = KHDL\n",
                        "velmar-cfg: " + path + ": lines that would not be kept as they were: 2\n" + lost}));
    EXPECT_EQ(preferences(), commented);
    EXPECT_TRUE(other_files().empty());

    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL"}).err,
              "velmar-cfg: " + path + ": lines that were not kept as they were: 2\n" + lost);
}

// There is no copy that could be mistaken for the file, and so no directory for one.
TEST_F(PREFS_EDIT, dry_run_needs_no_directory_to_write_to)
{
    write_preferences(normal_form);
    std::filesystem::create_directory(temporary.path("home"));
    write_file(temporary.path("home/velmar2.ini"), normal_form);
    for (const std::string& directory : {temporary.path("cwd/user"), temporary.path("nowhere"), std::string("user")})
    {
        variables["TMPDIR"] = directory;
        const TOOL_RUN tried = run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--dry-run"});
        EXPECT_EQ(tried.exit_code, 0) << tried.err;
        EXPECT_THAT(tried.out, EndsWith("-HDL_PREFERENCE = VHDL\n+HDL_PREFERENCE = KHDL\n"));
        EXPECT_EQ(preferences(), normal_form);
        EXPECT_EQ(read_file(temporary.path("home/velmar2.ini")), normal_form);
        EXPECT_TRUE(other_files().empty());
    }
    variables["TMPDIR"] = temporary.path("nowhere");
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL"}), (TOOL_RUN{0, "", ""}));
}

TEST_F(PREFS_EDIT, json_tells_what_was_done)
{
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "VHDL", "--json"}).json(),
              nlohmann::json({{"key", "HDL_PREFERENCE"},
                              {"value", "VHDL"},
                              {"path", full_path()},
                              {"changed", true},
                              {"refusal", nullptr},
                              {"dry_run", false},
                              {"dropped_lines", 0},
                              {"lost_lines", nlohmann::json::array()},
                              {"difference", ""}}));
    const nlohmann::json reset = run({"prefs", "reset", "HDL_PREFERENCE", "--json", "--dry-run"}).json();
    EXPECT_EQ(reset.at("value"), nullptr);
    EXPECT_EQ(reset.at("changed"), true);
    EXPECT_THAT(reset.at("difference").get<std::string>(), HasSubstr("\n-HDL_PREFERENCE = VHDL\n"));
}

// --- Lines that a save does not keep ---

TEST_F(PREFS_EDIT, a_value_that_would_go_with_a_line_is_kept_unless_told_otherwise)
{
    const char* const bytes = "USER_LIBRARIES = /x\n# note\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n"
                              "HDL_PREFERENCE = Verilog\n[Cloud 23.4_pro]\n";
    write_preferences(bytes);
    const std::string path = full_path();
    const std::string lines =
        " kept as they were: 4\n"
        "velmar-cfg: line 1: 'USER_LIBRARIES = /x': a key line before any section is ignored, and a save drops it\n"
        "velmar-cfg: line 2: '# note': this line sets nothing, and a save drops it\n"
        "velmar-cfg: line 5: 'HDL_PREFERENCE = Verilog': line 4 sets this key of this section already: the first one "
        "counts, and a save drops this one\n"
        "velmar-cfg: line 6: '[Cloud 23.4_pro]': a section without a value, which a save drops\n";
    const std::string refused = "velmar-cfg: " + path + ": lines that would not be" + lines + "velmar-cfg: " + path +
                                ": a save would lose or change the value in lines 1, 5; mend the file (see velmar-cfg "
                                "prefs lint), or --allow-loss changes it anyway\n";
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL"}), (TOOL_RUN{4, "", refused}));
    EXPECT_EQ(preferences(), bytes);

    // A dry run ends as the run would, and shows what it would have written.
    const TOOL_RUN tried = run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--dry-run"});
    EXPECT_EQ(tried.exit_code, 4);
    EXPECT_EQ(tried.err, refused);
    EXPECT_THAT(tried.out, HasSubstr("\n-USER_LIBRARIES = /x\n-# note\n"));

    const TOOL_RUN as_json = run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--json"});
    EXPECT_EQ(as_json.exit_code, 4);
    EXPECT_EQ(as_json.json().at("changed"), false);
    EXPECT_THAT(as_json.json().at("refusal").get<std::string>(), EndsWith("or --allow-loss changes it anyway"));
    EXPECT_EQ(as_json.json().at("lost_lines").at(2),
              nlohmann::json(
                  {{"line", 5}, {"reason", "duplicate"}, {"text", "HDL_PREFERENCE = Verilog"}, {"value_lost", true}}));
    EXPECT_EQ(as_json.json().at("lost_lines").at(1).at("value_lost"), false);

    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--allow-loss"}),
              (TOOL_RUN{0, "", "velmar-cfg: " + path + ": lines that were not" + lines}));
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
}

TEST_F(PREFS_EDIT, no_secret_is_shown_with_a_lost_line)
{
    const char* const bytes = "PROXY_USER1 = hush-hush-1\n[Internet Connectivity 23.4_pro]\nPROXY_USER1 = hush-hush-2\n"
                              "PROXY_USER1 = hush-hush-3\nPROXY_USER2 = \"\"hush-hush-4\"\"\n";
    write_preferences(bytes);
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--wait=0"}, {"--dry-run"}, {"--json"}, {"--dry-run", "--json"}, {"--allow-loss"}})
    {
        std::vector<std::string> arguments = {"prefs", "set", "HDL_PREFERENCE", "VHDL"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const TOOL_RUN edited = run(arguments);
        EXPECT_EQ(edited.exit_code, options.front() == "--allow-loss" ? 0 : 4);
        EXPECT_THAT(edited.err, HasSubstr("line 1: 'PROXY_USER1 = \\(masked"));
        EXPECT_THAT(edited.err + edited.out, testing::Not(HasSubstr("hush")));
    }
    EXPECT_THAT(preferences(), HasSubstr("PROXY_USER1 = hush-hush-2\n"));
}

TEST_F(PREFS_EDIT, another_value_that_would_change_is_told_where_it_may)
{
    write_preferences("[Messages 23.4_pro]\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    const TOOL_RUN edited = run({"prefs", "set", "HDL_PREFERENCE", "VHDL", "--allow-loss"});
    EXPECT_EQ(edited.exit_code, 0);
    EXPECT_THAT(edited.err, StartsWith("velmar-cfg: this also changes SHOW_MESSAGE_ID from 'on' to 'off', as [Messages "
                                       "23.3_pro] says, since line 1 is not kept as it is\n"));
}

struct MANY_LOST_LINES
{
    const char* title;
    std::vector<std::string> options;
    bool with_value;  // that would be lost
    int shown;        // of the 60
    std::string rest; // what is said of the others
};

void PrintTo(const MANY_LOST_LINES& row, std::ostream* stream)
{
    *stream << row.title;
}

class PREFS_EDIT_OF_MANY_LOST_LINES : public PREFS_EDIT, public testing::WithParamInterface<MANY_LOST_LINES>
{
};

// Each line is shown, or can be where it is said: in the JSON.
TEST_P(PREFS_EDIT_OF_MANY_LOST_LINES, hides_none)
{
    std::string bytes = GetParam().with_value ? "k = v\n" : "#\n";
    for (int i = 2; i <= 60; ++i)
        bytes += "# " + std::string(200, 'x') + "\n";
    write_preferences(bytes);
    std::vector<std::string> arguments = {"prefs", "set", "HDL_PREFERENCE", "VHDL"};
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    const TOOL_RUN edited = run(arguments);
    EXPECT_THAT(edited.err, HasSubstr("kept as they were: 60\n"));
    EXPECT_THAT(edited.err, HasSubstr("velmar-cfg: line 50: '# " + std::string(98, 'x') + "...': this line"));
    int shown = 0;
    for (std::size_t at = 0; (at = edited.err.find("velmar-cfg: line ", at)) != std::string::npos; ++at)
        ++shown;
    EXPECT_EQ(shown, GetParam().shown);
    EXPECT_THAT(edited.err, HasSubstr(GetParam().rest));
    EXPECT_EQ(edited.err.find(" more; ") != std::string::npos, shown < 60);
    if (shown < 60)
    {
        const nlohmann::json rows = run({"prefs", "set", "HDL_PREFERENCE", "VHDL", "--dry-run", "--json"}).json();
        const bool changed = preferences() != bytes;
        EXPECT_EQ((changed ? edited.json() : rows).at("lost_lines").size(), 60U);
    }
}

INSTANTIATE_TEST_SUITE_P(
    table, PREFS_EDIT_OF_MANY_LOST_LINES,
    testing::Values(
        MANY_LOST_LINES{"a change", {}, false, 60, "velmar-cfg: line 60: "},
        MANY_LOST_LINES{"a change that loses a value", {"--allow-loss"}, true, 60, "velmar-cfg: line 60: "},
        MANY_LOST_LINES{
            "a dry run", {"--dry-run"}, false, 50, "velmar-cfg: and 10 more; --dry-run --json lists them all\n"},
        MANY_LOST_LINES{"a refusal", {}, true, 50, "velmar-cfg: and 10 more; --dry-run --json lists them all\n"},
        MANY_LOST_LINES{
            "a change in JSON", {"--json"}, false, 50, "velmar-cfg: and 10 more; \"lost_lines\" has them all\n"},
        MANY_LOST_LINES{"a dry run in JSON",
                        {"--json", "--dry-run"},
                        false,
                        50,
                        "velmar-cfg: and 10 more; \"lost_lines\" has them all\n"}));

TEST_F(PREFS_EDIT, no_secret_is_shown_with_sections_that_are_told_again_and_again)
{
    std::string bytes = "[cloud 23.4_pro]\nCLOUD_TOKEN = hush-[Hush-hush]\n[hush-hush]\n";
    for (int i = 0; i < 3; ++i)
        bytes += "k" + std::to_string(i) + " = v\n";
    write_preferences(bytes + "[Hush-hush]\nl = w\n");
    const TOOL_RUN edited = run({"prefs", "set", "HDL_PREFERENCE", "VHDL"});
    EXPECT_EQ(edited.exit_code, 4);
    EXPECT_THAT(edited.err, HasSubstr("line 6: 'k2 = v': the section ["));
    EXPECT_THAT(edited.err, testing::Not(HasSubstr("[Hush")));
}

TEST_F(PREFS_EDIT, a_section_that_is_spelt_otherwise_is_blamed_and_not_the_value)
{
    expect_unchanged("[GENERAL 23.4_pro]\nx = y\n", {"prefs", "set", "HDL_PREFERENCE", "VHDL"},
                     {4, "",
                      "velmar-cfg: " + full_path() +
                          ":1: the section [GENERAL 23.4_pro] differs from [General 23.4_pro] in letter case only, and "
                          "a save would write HDL_PREFERENCE below it, where no lookup finds it; rename that "
                          "section\n"});
}

TEST_F(PREFS_EDIT, reset_leaves_the_preference_out)
{
    write_preferences("[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES = /lib\n");
    EXPECT_EQ(run({"prefs", "reset", "HDL_PREFERENCE"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nUSER_LIBRARIES = /lib\n");
}

TEST_F(PREFS_EDIT, reset_writes_the_default_where_an_older_release_would_shine_through)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(run({"prefs", "reset", "SHOW_MESSAGE_ID"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(),
              "\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\n");
}

TEST_F(PREFS_EDIT, reset_that_the_file_cannot_express_is_not_made)
{
    expect_unchanged("[Cloud 23.3_pro]\nCLOUD_SERVER = host\n", {"prefs", "reset", "CLOUD_SERVER"},
                     {4, "",
                      "velmar-cfg: " + full_path() +
                          ":1: the section [Cloud 23.3_pro] gives CLOUD_SERVER the value 'host', which its empty "
                          "default cannot override; remove the value there\n"});
}

TEST_F(PREFS_EDIT, reset_of_what_has_its_default_leaves_every_byte)
{
    expect_unchanged("# mine\n", {"prefs", "reset", "HDL_PREFERENCE"}, {0, "", ""});
}

// --- The file system around the file ---

TEST_F(PREFS_EDIT, mode_and_owner_are_kept)
{
    write_preferences(normal_form);
    ASSERT_EQ(chmod(file, 0640), 0);
    if (geteuid() == 0)
    {
        ASSERT_EQ(chown(file, 64711, 64712), 0);
    }
    ASSERT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL"}).exit_code, 0);
    struct stat status;
    ASSERT_EQ(stat(file, &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    EXPECT_EQ(status.st_uid, geteuid() == 0 ? 64711U : getuid());
    EXPECT_EQ(status.st_gid, geteuid() == 0 ? 64712U : getgid());
}

TEST_F(PREFS_EDIT, a_symbolic_link_stays_one)
{
    write_file("elsewhere/prefs.txt", normal_form);
    std::filesystem::create_symlink("../elsewhere/prefs.txt", file);
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL"}).exit_code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(read_file("elsewhere/prefs.txt"), "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");

    std::filesystem::remove("elsewhere/prefs.txt");
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "VHDL"}).exit_code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(read_file("elsewhere/prefs.txt"), normal_form);
}

TEST_F(PREFS_EDIT, root_follows_no_link_that_a_user_planted)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give links away";
    write_file("elsewhere/secret", normal_form);
    std::filesystem::create_symlink("../elsewhere/secret", file);
    ASSERT_EQ(lchown(file, 64711, 64711), 0);
    for (const char* const mode : {"--wait=0", "--dry-run"})
    {
        const TOOL_RUN edited = run({"prefs", "set", "HDL_PREFERENCE", "KHDL", mode});
        EXPECT_EQ(edited.exit_code, 4);
        EXPECT_THAT(edited.err, HasSubstr("is a link that belongs to the user number 64711"));
    }
    EXPECT_EQ(read_file("elsewhere/secret"), normal_form);
}

TEST_F(PREFS_EDIT, hard_links_and_read_only_files_are_changed_when_told)
{
    write_preferences(normal_form);
    std::filesystem::create_hard_link(file, "other");
    ASSERT_EQ(chmod(file, 0444), 0);
    const TOOL_RUN linked = run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--replace-read-only"});
    EXPECT_EQ(linked.exit_code, 4);
    EXPECT_THAT(linked.err, HasSubstr("--break-hard-links changes the file anyway"));
    const TOOL_RUN read_only = run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--break-hard-links"});
    EXPECT_EQ(read_only.exit_code, 4);
    EXPECT_THAT(read_only.err, HasSubstr("--replace-read-only changes it anyway"));
    EXPECT_EQ(preferences(), normal_form);
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--break-hard-links", "--replace-read-only"}),
              (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(read_file("other"), normal_form);
}

TEST_F(PREFS_EDIT, a_failure_to_tell_does_not_hide_the_change)
{
    write_preferences(normal_form);
    const pid_t child = start({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--json"}, "/dev/full");
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 4);
    EXPECT_THAT(read_file(temporary.path("standard_error")),
                StartsWith("velmar-cfg: " + full_path() + " was changed; standard output: "));
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
}

TEST_F(PREFS_EDIT, a_link_in_a_circle_is_named)
{
    std::filesystem::create_symlink("velmar2.ini", file);
    const TOOL_RUN edited = run({"prefs", "set", "HDL_PREFERENCE", "KHDL"});
    EXPECT_EQ(edited.exit_code, 3); // as for who reads it
    EXPECT_EQ(run({"prefs", "list"}).exit_code, 3);
    EXPECT_THAT(edited.err, HasSubstr("velmar2.ini"));
}

TEST_F(PREFS_EDIT, a_directory_that_is_not_writable_is_named)
{
    write_preferences(normal_form);
    ASSERT_EQ(chmod("user", 0555), 0);
    const TOOL_RUN edited = run_without_rights({"prefs", "set", "HDL_PREFERENCE", "KHDL"});
    EXPECT_EQ(edited, (TOOL_RUN{4, "",
                                "velmar-cfg: " + full_path() +
                                    ".lock: Permission denied; the directory must be writable to change the file "
                                    "safely\n"}));
    EXPECT_EQ(preferences(), normal_form);
    const TOOL_RUN tried = run_without_rights({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--dry-run"});
    EXPECT_EQ(tried.exit_code, 4);
    EXPECT_THAT(tried.err, EndsWith(full_path() + ": Permission denied; the directory must be writable to change the "
                                                  "file safely\n"));
}

TEST_F(PREFS_EDIT, a_directory_that_does_not_exist_is_named)
{
    variables.erase("VELMAR2_INI");
    const TOOL_RUN edited = run({"prefs", "set", "HDL_PREFERENCE", "KHDL"});
    EXPECT_EQ(edited.exit_code, 4);
    EXPECT_THAT(edited.err, StartsWith("velmar-cfg: " + temporary.path("home/velmar2.ini") + ": "));
}

TEST_F(PREFS_EDIT, a_full_disk_leaves_the_old_file)
{
    std::string bytes = "[General 23.4_pro]\nUSER_LIBRARIES = " + std::string(100000, 'x') + "\n";
    write_preferences(bytes);
    struct rlimit unlimited;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    struct rlimit limited = unlimited;
    // The copy fits, the rewritten file with its empty first line does not.
    limited.rlim_cur = bytes.size();
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const TOOL_RUN edited = run({"prefs", "set", "HDL_PREFERENCE", "KHDL"});
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &unlimited), 0);
    EXPECT_EQ(edited.exit_code, 4);
    EXPECT_NE(edited.err, "");
    EXPECT_EQ(preferences(), bytes);
    EXPECT_TRUE(other_files().empty());
}

// --- Other runs ---

TEST_F(PREFS_EDIT, waits_only_so_long_for_another_run)
{
    write_preferences(normal_form);
    const int lock = open("user/velmar2.ini.lock", O_RDWR | O_CREAT, 0600);
    ASSERT_GE(lock, 0);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--wait", "0"}),
              (TOOL_RUN{4, "",
                        "velmar-cfg: " + full_path() +
                            ".lock: another velmar-cfg holds this lock; run the command again when it has "
                            "ended\n"}));
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE"}).out, "VHDL\n");
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--dry-run", "--wait", "0"}).exit_code, 0);
    EXPECT_EQ(preferences(), normal_form);
    close(lock);
    EXPECT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL", "--wait", "0"}), (TOOL_RUN{0, "", ""}));
    EXPECT_THAT(other_files(), testing::ElementsAre("velmar2.ini.lock")); // which no velmar-cfg made
}

TEST_F(PREFS_EDIT, runs_at_the_same_time_lose_nothing)
{
    const std::vector<std::string> keys = {"USER_LIBRARIES", "PROXY_SETTINGS", "CLOUD_SERVER",  "WEB_BROWSER",
                                           "PROXY_USER1",    "PROXY_USER2",    "CLOUD_USER_ID", "RECENT_PROJECTS"};
    std::vector<pid_t> runs;
    for (const std::string& key : keys)
        runs.push_back(start({"prefs", "set", key, "value of " + key}, temporary.path("out_" + key)));
    for (const pid_t child : runs)
    {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    for (const std::string& key : keys)
        EXPECT_EQ(run({"prefs", "get", key}).out, "value of " + key + "\n");
    EXPECT_TRUE(other_files().empty());
}

TEST_F(PREFS_EDIT, what_a_killed_run_left_is_removed_and_nothing_else)
{
    write_preferences(normal_form);
    write_file("user/velmar2.ini.velmar-cfg-0123456789ab.tmp", "half");
    write_file("user/velmar2.ini.velmar-cfg-0123456789aX.tmp", "not ours: no such number");
    write_file("user/velmar2.ini.velmar-cfg-0123456789.tmp", "not ours: another length");
    write_file("user/velmar2.ini.velmar-cfg-0123456789ab.txt", "not ours: another end");
    write_file("user/other.ini.velmar-cfg-0123456789ab.tmp", "another file's");
    write_file("user/velmar2.ini.velmar-cfg-0123456789ac.tmp/x", "a directory's");
    write_file("user/velmar2.ini.lock", "A lock of velmar-cfg, which removes it.\n");
    ASSERT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL"}), (TOOL_RUN{0, "", ""}));
    EXPECT_THAT(other_files(), testing::UnorderedElementsAre(
                                   "velmar2.ini.velmar-cfg-0123456789aX.tmp", "velmar2.ini.velmar-cfg-0123456789.tmp",
                                   "velmar2.ini.velmar-cfg-0123456789ab.txt", "other.ini.velmar-cfg-0123456789ab.tmp",
                                   "velmar2.ini.velmar-cfg-0123456789ac.tmp"));
}

TEST_F(PREFS_EDIT, a_file_of_the_lock_s_name_that_is_the_user_s_own_stays)
{
    for (const std::string bytes : {"", "mine\n", "A lock of velmar-cfg, which removes it.\nNot this one.\n"})
    {
        write_preferences(normal_form);
        write_file("user/velmar2.ini.lock", bytes);
        ASSERT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "KHDL"}), (TOOL_RUN{0, "", ""})) << bytes;
        ASSERT_EQ(preferences(), "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
        EXPECT_EQ(read_file("user/velmar2.ini.lock"), bytes);
        EXPECT_THAT(other_files(), testing::ElementsAre("velmar2.ini.lock"));
    }
}
}
