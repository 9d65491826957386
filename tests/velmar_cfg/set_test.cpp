// velmar-cfg set and unset, on real files. What becomes of the text is tested with the model.
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/run_program.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using ARGUMENTS = std::vector<std::string>;

// The project is the directory "project".
class SET : public TOOL_TEST
{
protected:
    SET()
    {
        std::filesystem::create_directory("project");
    }

    TOOL_RUN run_in_project(ARGUMENTS arguments) const
    {
        arguments.insert(arguments.begin(), {"--project", "project"});
        return run(arguments);
    }

    static void write_settings(const std::string& bytes)
    {
        write_file(file, bytes);
    }

    static std::string settings()
    {
        return read_file(file);
    }

    std::string full_path(const std::string& path = file) const
    {
        return std::filesystem::canonical(temporary.path("cwd")).string() + "/" + path;
    }

    static std::vector<std::string> names_in(const std::string& directory)
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            names.push_back(entry.path().filename());
        return names;
    }

    static constexpr const char* file = "project/velmar.ini";
};

TEST_F(SET, changes_one_value_and_says_nothing)
{
    write_settings("# mine\nmax_fanout   = 12   ; loads\r\nb = 1");
    EXPECT_EQ(run_in_project({"set", "MAX_FANOUT", "16"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(settings(), "# mine\nmax_fanout   = 16   ; loads\r\nb = 1");
    EXPECT_EQ(run_in_project({"get", "max_fanout"}).out, "16\n");
    EXPECT_EQ(run_in_project({"set", "c", "--", "-5"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(settings(), "# mine\nmax_fanout   = 16   ; loads\r\nb = 1\r\nc = -5\r\n");
    EXPECT_EQ(run_in_project({"unset", "B"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(settings(), "# mine\nmax_fanout   = 16   ; loads\r\nc = -5\r\n");
    EXPECT_THAT(names_in("project"), testing::ElementsAre("velmar.ini"));
}

TEST_F(SET, paints_the_difference_of_a_dry_run)
{
    write_settings("a = 1\nb = 2\n");
    EXPECT_EQ(
        run_in_project({"--color", "always", "set", "a", "2", "--dry-run"}).out,
        "\x1b[31m--- " + full_path() + "\x1b[0m\n\x1b[32m+++ " + full_path() +
            " (new)\x1b[0m\n\x1b[2m@@ -1,2 +1,2 @@\x1b[0m\n\x1b[31m-a = 1\x1b[0m\n\x1b[32m+a = 2\x1b[0m\n b = 2\n");
}

TEST_F(SET, takes_no_value_for_a_question_for_help)
{
    for (const char* const value : {"-html", "-Vx"})
        EXPECT_EQ(run_in_project({"set", "report_dir", value}),
                  (TOOL_RUN{2, "",
                            "velmar-cfg: there is no option '" + std::string(value) +
                                "'; put -- before an argument that begins with \"-\"\n"}));
    EXPECT_EQ(run_in_project({"set", "report_dir", "--", "-html"}).exit_code, 0);
    EXPECT_EQ(settings(), "report_dir = -html\n");
}

TEST_F(SET, takes_the_file_of_the_current_directory_without_a_project)
{
    write_file("velmar.ini", "a = 1\n");
    write_settings("a = 1\n");
    EXPECT_EQ(run({"set", "a", "2"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(read_file("velmar.ini"), "a = 2\n");
    EXPECT_EQ(settings(), "a = 1\n");
}

TEST_F(SET, leaves_every_byte_of_what_is_so_already)
{
    write_settings("a =  5");
    struct stat before;
    struct stat after;
    ASSERT_EQ(stat(file, &before), 0);
    EXPECT_EQ(run_in_project({"set", "a", "5"}), (TOOL_RUN{0, "", ""}));
    ASSERT_EQ(stat(file, &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(SET, refuses_what_no_line_can_hold)
{
    write_settings("a = 1\n");
    EXPECT_EQ(run_in_project({"set", "a", "x;y"}),
              (TOOL_RUN{5, "",
                        "velmar-cfg: a line of a settings file cannot hold this value: it would be read back as 'x'; "
                        "outside double quotes, ';' or '#' begins a comment\n"}));
    EXPECT_EQ(run_in_project({"set", "max fanout", "1"}),
              (TOOL_RUN{5, "",
                        "velmar-cfg: no line of a settings file can set 'max fanout': it would set 'maxfanout'; leave "
                        "out white space, '=', and what begins a comment\n"}));
    EXPECT_EQ(run_in_project({"set", "", "1"}).exit_code, 5);
    EXPECT_EQ(run_in_project({"unset", "a=b"}).exit_code, 5);
    EXPECT_EQ(settings(), "a = 1\n");
    EXPECT_THAT(names_in("project"), testing::ElementsAre("velmar.ini"));
}

TEST_F(SET, unset_of_what_no_line_sets_tells_what_may_be_meant)
{
    write_settings("max_fanout = 1\n");
    EXPECT_EQ(
        run_in_project({"unset", "max_fanuot"}),
        (TOOL_RUN{0, "", "velmar-cfg: " + full_path() + ": no line sets 'max_fanuot' (did you mean 'max_fanout'?)\n"}));
    EXPECT_EQ(run_in_project({"unset", "x"}), (TOOL_RUN{0, "", "velmar-cfg: " + full_path() + ": no line sets 'x'\n"}));
    EXPECT_EQ(settings(), "max_fanout = 1\n");
}

// --- Who decides ---

TEST_F(SET, says_which_line_decides_if_not_the_one_that_was_set)
{
    write_settings("max_fanout = 12\n");
    write_file("appended.ini", "# on top\nmax_fanout = 16\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    EXPECT_EQ(run_in_project({"set", "max_fanout", "14"}),
              (TOOL_RUN{1, "", "velmar-cfg: appended.ini:2 still says 16\n"}));
    EXPECT_EQ(settings(), "max_fanout = 14\n");
    EXPECT_EQ(run_in_project({"set", "max_fanout", "14", "--dry-run"}),
              (TOOL_RUN{1, "", "velmar-cfg: appended.ini:2 still says 16\n"}));
    EXPECT_EQ(run_in_project({"set", "max_fanout", "16"}),
              (TOOL_RUN{0, "", "velmar-cfg: appended.ini:2 sets the same value, and decides\n"}));
    EXPECT_EQ(run_in_project({"unset", "max_fanout"}), (TOOL_RUN{1, "", "velmar-cfg: appended.ini:2 still says 16\n"}));
    EXPECT_EQ(settings(), "");
    variables["VELMAR_INI_VARS"] = "x=1;max_fanout=9";
    EXPECT_EQ(run_in_project({"set", "max_fanout", "14"}),
              (TOOL_RUN{1, "", "velmar-cfg: VELMAR_INI_VARS:2 still says 9\n"}));
    EXPECT_EQ(run_in_project({"set", "max_fanout", "14", "--file", "appended.ini"}),
              (TOOL_RUN{1, "", "velmar-cfg: VELMAR_INI_VARS:2 still says 9\n"}));
    EXPECT_EQ(read_file("appended.ini"), "# on top\nmax_fanout = 14\n");
    variables.erase("VELMAR_INI_VARS");
    EXPECT_EQ(run_in_project({"set", "max_fanout", "15", "--file", "appended.ini"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run_in_project({"unset", "max_fanout", "--file", "appended.ini"}),
              (TOOL_RUN{1, "", "velmar-cfg: project/velmar.ini:1 still says 14\n"}));
}

TEST_F(SET, counts_the_file_for_regression_runs_when_asked_to)
{
    write_settings("a = 1\n");
    write_file("project/regtest.ini", "a = 2\n");
    EXPECT_EQ(run_in_project({"set", "a", "3"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run_in_project({"--regtest", "set", "a", "4"}),
              (TOOL_RUN{1, "", "velmar-cfg: project/regtest.ini:1 still says 2\n"}));
    EXPECT_EQ(run_in_project({"--regtest", "set", "a", "5", "--file", "project/regtest.ini"}), (TOOL_RUN{0, "", ""}));
    // A file that is not read here may be meant for other runs.
    EXPECT_EQ(run_in_project({"set", "a", "6", "--file", "project/regtest.ini"}),
              (TOOL_RUN{0, "",
                        "velmar-cfg: " + full_path("project/regtest.ini") +
                            ": is not read by a run here; see velmar-cfg paths\n"}));
    EXPECT_EQ(read_file("project/regtest.ini"), "a = 6\n");
}

TEST_F(SET, says_that_the_search_is_switched_off)
{
    write_file("velmar.ini", "a = 1\n");
    variables["VELMAR_INI_DISABLED"] = "1";
    EXPECT_EQ(run({"set", "a", "2"}), (TOOL_RUN{1, "",
                                                "velmar-cfg: " + full_path("velmar.ini") +
                                                    ": is not read by a run here; see velmar-cfg paths\n"}));
    EXPECT_EQ(read_file("velmar.ini"), "a = 2\n");
}

// --- Files that do not exist ---

TEST_F(SET, makes_the_file_and_says_so)
{
    const mode_t mask = umask(027);
    const TOOL_RUN tried = run_in_project({"set", "a", "1", "--dry-run"});
    EXPECT_EQ(tried.err, "velmar-cfg: " + full_path() + ": would be created, since there was no such file\n");
    EXPECT_EQ(tried.exit_code, 0);
    EXPECT_THAT(tried.out, EndsWith("@@ -0,0 +1 @@\n+a = 1\n"));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(run_in_project({"set", "a", "1"}),
              (TOOL_RUN{0, "", "velmar-cfg: " + full_path() + ": created, since there was no such file\n"}));
    umask(mask);
    EXPECT_EQ(settings(), "a = 1\n");
    struct stat made;
    ASSERT_EQ(stat(file, &made), 0);
    EXPECT_EQ(made.st_mode & 07777U, 0640U);
}

TEST_F(SET, makes_the_file_that_a_link_names)
{
    std::filesystem::create_directory("elsewhere");
    std::filesystem::create_symlink("../elsewhere/settings", file);
    const std::string target = full_path("elsewhere/settings");
    const TOOL_RUN tried = run_in_project({"set", "a", "1", "--dry-run"});
    EXPECT_EQ(tried.err, "velmar-cfg: " + target + ": would be created, since there was no such file\n");
    EXPECT_EQ(tried.exit_code, 0);
    EXPECT_EQ(run_in_project({"unset", "a", "--dry-run"}).exit_code, 3); // the link goes on to name nothing
    EXPECT_EQ(run_in_project({"set", "a", "1"}),
              (TOOL_RUN{0, "", "velmar-cfg: " + target + ": created, since there was no such file\n"}));
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(settings(), "a = 1\n");
}

TEST_F(SET, unset_makes_no_file)
{
    EXPECT_EQ(run_in_project({"unset", "a"}), (TOOL_RUN{0, "", "velmar-cfg: " + full_path() + ": no line sets 'a'\n"}));
    EXPECT_TRUE(names_in("project").empty());
    write_file(temporary.path("home/velmar.ini"), "a = 1\n");
    const TOOL_RUN elsewhere = run_in_project({"unset", "a"});
    EXPECT_EQ(elsewhere.exit_code, 1);
    EXPECT_THAT(elsewhere.err, EndsWith("home/velmar.ini:1 still says 1\n"));
}

// A new file would hide all that the other one sets.
TEST_F(SET, makes_no_file_that_takes_the_place_of_another_unless_it_is_named)
{
    const std::string other = temporary.path("home/velmar.ini");
    write_file(other, "a = 1\nb = 2\n");
    for (const char* const mode : {"--wait=0", "--dry-run"})
    {
        const TOOL_RUN refused = run_in_project({"set", "a", "5", mode});
        EXPECT_EQ(refused.exit_code, 4);
        EXPECT_EQ(refused.err, "velmar-cfg: " + full_path() +
                                   ": there is no such file, and a new one would be read instead of " + other +
                                   ", whose settings would then not apply; name the file to change with --file\n");
        EXPECT_EQ(run({"set", "a", "5", mode}).exit_code, 4); // in the current directory
    }
    EXPECT_TRUE(names_in("project").empty());
    EXPECT_EQ(run_in_project({"set", "a", "5", "--file", file, "--dry-run"}).err,
              "velmar-cfg: " + full_path() +
                  ": would be created, since there was no such file; it is read instead of " + other + " then\n");
    EXPECT_EQ(run_in_project({"set", "a", "5", "--file", file}).err,
              "velmar-cfg: " + full_path() + ": created, since there was no such file; it is read instead of " + other +
                  " from now on\n");
    EXPECT_EQ(settings(), "a = 5\n");
    EXPECT_EQ(run_in_project({"set", "a", "6", "--file", other}).exit_code, 0); // no part of these settings
    EXPECT_EQ(read_file(other), "a = 6\nb = 2\n");
}

TEST_F(SET, a_dry_run_knows_what_a_new_file_would_do)
{
    write_settings("a = 1\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    const std::string made = ": would be created, since there was no such file\n";
    EXPECT_EQ(run_in_project({"set", "a", "2", "--file", "appended.ini", "--dry-run"}).err,
              "velmar-cfg: " + full_path("appended.ini") + made);
    EXPECT_EQ(run_in_project({"set", "a", "2", "--file", "other.ini", "--dry-run"}).err,
              "velmar-cfg: " + full_path("other.ini") + made + "velmar-cfg: " + full_path("other.ini") +
                  ": is not read by a run here; see velmar-cfg paths\n");
    EXPECT_EQ(run_in_project({"--regtest", "set", "a", "2", "--file", "project/regtest.ini", "--dry-run"}).err,
              "velmar-cfg: " + full_path("project/regtest.ini") + made);
    write_file("velmar.ini", "a = 3\n");
    // What the search would find behind the file that it finds is not read.
    std::filesystem::create_directory(temporary.path("home"));
    const TOOL_RUN behind = run({"set", "a", "2", "--file", temporary.path("home/velmar.ini"), "--dry-run"});
    EXPECT_EQ(behind.exit_code, 0);
    EXPECT_THAT(behind.err, EndsWith(": is not read by a run here; see velmar-cfg paths\n"));
    EXPECT_EQ(names_in("project"), ARGUMENTS{"velmar.ini"});
}

TEST_F(SET, names_a_directory_that_does_not_exist)
{
    EXPECT_EQ(
        run({"set", "a", "1", "--file", "nowhere/velmar.ini"}),
        (TOOL_RUN{4, "", "velmar-cfg: nowhere/velmar.ini: No such file or directory; make the directory first\n"}));
    EXPECT_EQ(run({"set", "a", "1", "--file", "project"}).exit_code, 3); // a directory
    EXPECT_EQ(run({"set", "a", "1", "--file", "."}).exit_code, 3);
    EXPECT_EQ(run({"set", "a", "1", "--file", "-"}).exit_code, 2);
    EXPECT_EQ(run({"set", "a", "1", "--file="}).exit_code, 2);
    EXPECT_EQ(run({"--project", "nowhere", "set", "a", "1"}).exit_code, 3);
    EXPECT_EQ(names_in("."), ARGUMENTS{"project"});
}

// --- What is shown ---

TEST_F(SET, dry_run_shows_the_difference_and_changes_nothing)
{
    write_settings("# a = 0\nb = 1\n");
    const std::string path = full_path();
    EXPECT_EQ(
        run_in_project({"set", "a", "5", "--dry-run"}),
        (TOOL_RUN{0, "--- " + path + "\n+++ " + path + " (new)\n@@ -1,2 +1,3 @@\n # a = 0\n+a = 5\n b = 1\n", ""}));
    EXPECT_EQ(run_in_project({"unset", "b", "--dry-run"}).out,
              "--- " + path + "\n+++ " + path + " (new)\n@@ -1,2 +1 @@\n # a = 0\n-b = 1\n");
    EXPECT_EQ(settings(), "# a = 0\nb = 1\n");
    EXPECT_EQ(names_in("project"), ARGUMENTS{"velmar.ini"});
}

TEST_F(SET, json_tells_what_was_done)
{
    write_settings("a = 1\n");
    write_file("appended.ini", "a = 2\n");
    EXPECT_EQ(run_in_project({"set", "a", "5", "--json"}).json(),
              nlohmann::json({{"name", "a"},
                              {"value", "5"},
                              {"path", full_path()},
                              {"changed", true},
                              {"made", false},
                              {"refusal", nullptr},
                              {"dry_run", false},
                              {"changed_lines", {{{"number", 1}, {"change", "replaced"}}}},
                              {"difference", ""},
                              {"is_read", true},
                              {"takes_effect", true},
                              {"now", "5"},
                              {"layer", "main"},
                              {"file", "project/velmar.ini"},
                              {"line", 1},
                              {"item", nullptr}}));
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    const TOOL_RUN run = run_in_project({"unset", "a", "--json", "--dry-run"});
    EXPECT_EQ(run.exit_code, 1);
    const nlohmann::json unset = run.json();
    EXPECT_EQ(unset.at("value"), nullptr);
    EXPECT_EQ(unset.at("takes_effect"), false);
    EXPECT_EQ(unset.at("now"), "2");
    EXPECT_EQ(unset.at("file"), "appended.ini");
    EXPECT_THAT(unset.at("difference").get<std::string>(), EndsWith("\n-a = 5\n"));
    std::filesystem::create_hard_link(file, "other");
    const nlohmann::json refused = run_in_project({"set", "a", "7", "--json"}).json();
    EXPECT_EQ(refused.at("changed"), false);
    EXPECT_EQ(refused.at("is_read"), nullptr);
    EXPECT_EQ(refused.at("takes_effect"), nullptr);
    EXPECT_THAT(refused.at("refusal").get<std::string>(), EndsWith("--break-hard-links changes the file anyway"));
}

TEST_F(SET, shows_no_secret)
{
    write_settings("api_token = hush-hush-1 # hush-hush-2\nb = 1\n");
    write_file("appended.ini", "api_token = hush-hush-3\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    for (const ARGUMENTS& change : {ARGUMENTS{"set", "api_token", "hush-hush-4", "--dry-run"},
                                    {"set", "api_token", "hush-hush-4", "--dry-run", "--json"},
                                    {"set", "api_token", "hush-hush-4", "--json"},
                                    {"set", "api_token", "hush-hush-4;x"},
                                    {"set", "api_token", "\"hush-hush-4"},
                                    {"set", "b", "2", "--dry-run"},
                                    {"unset", "api_token", "--dry-run"},
                                    {"unset", "api_token"}})
    {
        const TOOL_RUN result = run_in_project(change);
        EXPECT_THAT(result.out + result.err, Not(HasSubstr("hush"))) << testing::PrintToString(change);
    }
    EXPECT_EQ(settings(), "b = 1\n");
    EXPECT_EQ(run_in_project({"set", "api_token", "x", "--with-secrets"}).err,
              "velmar-cfg: appended.ini:1 still says hush-hush-3\n");
}

// --- The file system around the file ---

TEST_F(SET, keeps_links_modes_and_attributes_as_edits_of_preferences_do)
{
    write_file("elsewhere/settings", "a = 1\n");
    std::filesystem::create_symlink("../elsewhere/settings", file);
    ASSERT_EQ(chmod("elsewhere/settings", 0640), 0);
    EXPECT_EQ(run_in_project({"set", "a", "2"}), (TOOL_RUN{0, "", ""}));
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(read_file("elsewhere/settings"), "a = 2\n");
    struct stat kept;
    ASSERT_EQ(stat(file, &kept), 0);
    EXPECT_EQ(kept.st_mode & 07777U, 0640U);

    std::filesystem::create_hard_link("elsewhere/settings", "other");
    ASSERT_EQ(chmod("elsewhere/settings", 0444), 0);
    EXPECT_THAT(run_in_project({"set", "a", "3", "--replace-read-only"}).err,
                EndsWith("--break-hard-links changes the file anyway\n"));
    const TOOL_RUN read_only = run_in_project({"unset", "a", "--break-hard-links"});
    EXPECT_EQ(read_only.exit_code, 4);
    EXPECT_THAT(read_only.err, EndsWith("--replace-read-only changes it anyway\n"));
    EXPECT_EQ(settings(), "a = 2\n");
    EXPECT_EQ(run_in_project({"set", "a", "3", "--break-hard-links", "--replace-read-only"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(settings(), "a = 3\n");
    EXPECT_EQ(read_file("other"), "a = 2\n");
}

TEST_F(SET, waits_only_so_long_for_another_run)
{
    write_settings("a = 1\n");
    const int lock = open("project/velmar.ini.lock", O_RDWR | O_CREAT, 0600);
    ASSERT_GE(lock, 0);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    EXPECT_EQ(run_in_project({"set", "a", "2", "--wait", "0"}),
              (TOOL_RUN{4, "",
                        "velmar-cfg: " + full_path() +
                            ".lock: another velmar-cfg holds this lock; run the command again when it has ended\n"}));
    EXPECT_EQ(settings(), "a = 1\n");
    close(lock);
}

TEST_F(SET, runs_at_the_same_time_lose_nothing)
{
    write_settings("# shared\n");
    std::vector<pid_t> runs;
    constexpr int count = 6;
    for (int i = 0; i < count; ++i)
    {
        const std::string number = std::to_string(i);
        runs.push_back(
            start({"--project", "project", "set", "variable" + number, number}, temporary.path("out" + number)));
    }
    for (const pid_t child : runs)
    {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    for (int i = 0; i < count; ++i)
        EXPECT_THAT(settings(), HasSubstr("variable" + std::to_string(i) + " = " + std::to_string(i) + "\n"));
    EXPECT_THAT(settings(), StartsWith("# shared\n"));
    EXPECT_EQ(names_in("project"), ARGUMENTS{"velmar.ini"});
}

TEST_F(SET, a_failure_to_tell_does_not_hide_the_change)
{
    write_settings("a = 1\n");
    const pid_t child = start({"--project", "project", "set", "a", "2", "--json"}, "/dev/full");
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 4);
    EXPECT_THAT(read_file(temporary.path("standard_error")),
                StartsWith("velmar-cfg: " + full_path() + " was changed; standard output: "));
    EXPECT_EQ(settings(), "a = 2\n");
}

// --- What is no settings file ---

TEST_F(SET, refuses_what_is_no_file_before_anything_is_made_beside_it)
{
    ASSERT_EQ(mkfifo("project/pipe", 0600), 0);
    std::filesystem::create_directory("project/directory");
    std::filesystem::create_symlink("/", "project/root");
    for (const char* const path : {"/dev/null", "project/pipe", "project/directory", "/", "project/root"})
    {
        const TOOL_RUN dry = run({"set", "--file", path, "a", "1", "--dry-run"});
        // Where nothing can be made, an attempt would be told instead.
        ASSERT_EQ(chmod("project", 0555), 0);
        EXPECT_EQ(run_without_rights({"set", "--file", path, "a", "1"}), dry) << path;
        ASSERT_EQ(chmod("project", 0755), 0);
        EXPECT_EQ(dry.exit_code, 3) << path;
        EXPECT_THAT(dry.err, testing::AnyOf(HasSubstr(": is no regular file"), HasSubstr(": is a directory"),
                                            HasSubstr(": is a link to a directory")))
            << path;
    }
}

// Nothing can be read there, whoever asks.
TEST_F(SET, ends_as_list_does_where_links_lead_in_a_circle)
{
    std::filesystem::create_directory("project");
    std::filesystem::create_symlink("velmar.ini", file);
    std::filesystem::create_symlink("circle", "circle");
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"list"}, {"lint"}, {"set", "a", "1"}, {"set", "a", "1", "--dry-run"}, {"unset", "a"}, {"lint", "--fix"}})
    {
        for (const char* const project : {"project", "circle"})
        {
            std::vector<std::string> with_project = words;
            with_project.insert(with_project.end(), {"--project", project});
            const TOOL_RUN got = run(with_project);
            EXPECT_EQ(got.exit_code, 3) << testing::PrintToString(with_project);
            EXPECT_THAT(got.err, HasSubstr("symbolic link")) << testing::PrintToString(with_project);
        }
    }
    EXPECT_EQ(
        run({"set", "a", "1", "--file", "circle"}),
        (TOOL_RUN{3, "", "velmar-cfg: circle: symbolic links that lead back to themselves; remove one of them\n"}));
}

TEST_F(SET, refuses_a_text_of_which_no_line_is_read)
{
    for (const std::string& bytes : {std::string("\xff\xfe"
                                                 "a\0=\0",
                                                 6),
                                     std::string("\xfe\xff\0a\0=", 6)})
    {
        write_settings(bytes);
        for (const ARGUMENTS& arguments : {ARGUMENTS{"set", "a", "1"}, {"unset", "a"}, {"set", "a", "1", "--dry-run"}})
            EXPECT_EQ(run_in_project(arguments),
                      (TOOL_RUN{3, "",
                                "velmar-cfg: " + full_path() +
                                    ": is UTF-16, which the library does not understand; save "
                                    "it as UTF-8 without a byte order mark\n"}))
                << arguments.front();
        EXPECT_EQ(run_in_project({"lint", "--fix"}).exit_code, 3);
        EXPECT_EQ(settings(), bytes);
    }
}

TEST_F(SET, refuses_preference_files)
{
    const std::string text = "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n";
    write_file("velmar2.ini", "");
    write_file("mine.ini", "\n" + text);
    std::filesystem::create_symlink("mine.ini", "link.ini");
    for (const char* const path : {"velmar2.ini", "mine.ini", "link.ini", "project/velmar2.ini"})
    {
        const TOOL_RUN refused = run({"set", "a", "1", "--file", path});
        EXPECT_EQ(refused.exit_code, 2) << path;
        EXPECT_THAT(refused.err,
                    EndsWith(": is a preference file; change it with velmar-cfg prefs set or prefs reset\n"));
    }
    EXPECT_EQ(read_file("mine.ini"), "\n" + text);
    // A section that means nothing to preferences makes no preference file.
    write_file("settings.ini", "[General]\n[x 23.4_pro]\nb = [General 23.4_pro]\n");
    EXPECT_EQ(run({"set", "a", "1", "--file", "settings.ini"}).exit_code, 0);
}

// --- Rights ---

TEST_F(SET, tells_in_a_dry_run_that_the_directory_cannot_be_written)
{
    write_settings("a = 1\n");
    ASSERT_EQ(chmod("project", 0555), 0);
    const std::string why = ": Permission denied; the directory must be writable to change the file safely\n";
    EXPECT_EQ(run_without_rights({"--project", "project", "set", "a", "2", "--dry-run"}),
              (TOOL_RUN{4, "--- " + full_path() + "\n+++ " + full_path() + " (new)\n@@ -1 +1 @@\n-a = 1\n+a = 2\n",
                        "velmar-cfg: " + full_path() + why}));
    EXPECT_EQ(run_without_rights({"--project", "project", "set", "a", "2"}).err,
              "velmar-cfg: " + full_path() + ".lock" + why);
    EXPECT_EQ(run_without_rights({"--project", "project", "set", "a", "1", "--dry-run"}), (TOOL_RUN{0, "", ""}));
    EXPECT_THAT(run_without_rights({"lint", "--fix", "--dry-run", "--json"}).out, Not(HasSubstr("null")));
}

// --replace-read-only is only said to help where it does.
TEST_F(SET, tells_whose_a_file_is_that_another_user_must_not_change)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    write_settings("a = 1\n");
    ASSERT_EQ(chmod(file, 0644), 0);
    ASSERT_EQ(chown(file, 65534, 65534), 0);
    for (const char* const option : {"--wait=10", "--dry-run"})
    {
        const TOOL_RUN refused = run_without_rights({"--project", "project", "set", "a", "2", option});
        EXPECT_EQ(refused.exit_code, 4);
        EXPECT_THAT(refused.err, testing::MatchesRegex("velmar-cfg: [^\n]*velmar.ini: the file belongs to the user "
                                                       "[^\n]*, and this user must not write to it\n"));
    }
    ASSERT_EQ(chown(file, 0, 0), 0);
    ASSERT_EQ(chmod(file, 0444), 0);
    EXPECT_THAT(run_without_rights({"--project", "project", "set", "a", "2", "--dry-run"}).err,
                EndsWith("--replace-read-only changes it anyway\n"));
    ASSERT_EQ(chmod("project", 0555), 0);
    EXPECT_THAT(run_without_rights({"--project", "project", "set", "a", "2", "--dry-run"}).err,
                EndsWith("the file is read-only, and so is its directory\n"));
}

// --- patch(1) ---

class DRY_RUN_DIFFERENCES : public SET
{
};

TEST_F(DRY_RUN_DIFFERENCES, can_be_applied_by_patch)
{
    if (std::string(PATCH).empty())
        GTEST_SKIP() << "patch is not installed";
    struct ROW
    {
        std::string before;
        ARGUMENTS arguments;
    };
    for (const auto& [before, arguments] :
         {ROW{"# mine\na = 1 ; c\r\nb = 2\n", {"set", "a", "2"}}, ROW{"a = 1", {"set", "a", "2"}},
          ROW{"a = 1", {"set", "b", "2"}}, ROW{"b = 1\na = 1", {"unset", "a"}},
          ROW{"x = 1\n[y]\nz = yes", {"lint", "--fix", "project/velmar.ini"}}, ROW{"a\t= \\x\n", {"set", "a", "\\y"}}})
    {
        write_settings(before);
        ARGUMENTS dry_run = arguments;
        dry_run.emplace_back("--dry-run");
        const bool lints = arguments.front() == "lint";
        const std::string shown = (lints ? run(dry_run) : run_in_project(dry_run)).out;
        dry_run.emplace_back("--json");
        const nlohmann::json answer = (lints ? run(dry_run) : run_in_project(dry_run)).json();
        const std::string exact = (lints ? answer[0] : answer).at("difference");
        ASSERT_NE((lints ? run(arguments) : run_in_project(arguments)).exit_code, 2);
        const std::string after = settings();
        ASSERT_NE(after, before);
        const bool is_shown_as_it_is = before.find_first_of("\t\r\\") == std::string::npos;
        for (const std::string& difference : {exact, is_shown_as_it_is ? shown : exact})
        {
            write_settings(before);
            write_file("difference", difference);
            const PROGRAM_RESULT patched = run_program(
                {PATCH, "--binary", "--directory=/", "--strip=1", "--input=" + temporary.path("cwd/difference")});
            EXPECT_EQ(patched.status, 0) << patched.out << patched.err << difference;
            EXPECT_EQ(settings(), after) << difference;
        }
    }
}
}
