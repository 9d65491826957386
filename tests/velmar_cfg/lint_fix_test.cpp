// velmar-cfg lint --fix, and the options that choose findings.
#include <filesystem>
#include <sys/wait.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class LINT_FIX : public TOOL_TEST
{
protected:
    std::string full_path(const std::string& path) const
    {
        return std::filesystem::canonical(temporary.path("cwd")).string() + "/" + path;
    }
};

TEST_F(LINT_FIX, writes_what_is_suggested_and_shows_what_is_left)
{
    write_file("velmar.ini", "# mine\r\nmax fanout = 12 # loads\r\n[x]\r\nmsg_sqlite = 7\r\nb = 1");
    const TOOL_RUN fixed = run({"lint", "--fix", "velmar.ini"});
    EXPECT_EQ(fixed.exit_code, 1);
    EXPECT_THAT(fixed.out, StartsWith("velmar.ini:4:14: error: '7' is no boolean"));
    EXPECT_EQ(std::count(fixed.out.begin(), fixed.out.end(), '\n'), 1);
    EXPECT_EQ(fixed.err, "velmar-cfg: " + full_path("velmar.ini") + ": 2 lines were replaced\n");
    EXPECT_EQ(read_file("velmar.ini"), "# mine\r\nmax_fanout = 12 # loads\r\n# [x]\r\nmsg_sqlite = 7\r\nb = 1");
    const TOOL_RUN again = run({"lint", "--fix", "velmar.ini"});
    EXPECT_EQ(again, (TOOL_RUN{1, fixed.out, ""}));
}

TEST_F(LINT_FIX, dry_run_shows_the_difference_and_ends_as_the_run_would)
{
    write_file("velmar.ini", "a = yes\nb = 1\n[x]\n");
    write_file("other.ini", "c = no\n");
    const std::string path = full_path("velmar.ini");
    const std::string other = full_path("other.ini");
    EXPECT_EQ(run({"lint", "velmar.ini", "other.ini"}).exit_code, 1);
    EXPECT_EQ(run({"lint", "--fix", "--dry-run", "velmar.ini", "other.ini"}),
              (TOOL_RUN{0,
                        "--- " + path + "\n+++ " + path +
                            " (new)\n@@ -1,3 +1,3 @@\n-a = yes\n+a = on\n b = 1\n-[x]\n+# [x]\n"
                            "--- " +
                            other + "\n+++ " + other + " (new)\n@@ -1 +1 @@\n-c = no\n+c = off\n",
                        ""}));
    const nlohmann::json rows = run({"lint", "--fix", "--dry-run", "--json", "velmar.ini", "other.ini"}).json();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].at("path"), path);
    EXPECT_EQ(rows[0].at("changed"), true);
    EXPECT_EQ(rows[0].at("refusal"), nullptr);
    EXPECT_EQ(rows[0].at("fixes"), 2);
    EXPECT_THAT(rows[1].at("difference").get<std::string>(), EndsWith("\n-c = no\n+c = off\n"));
    EXPECT_EQ(read_file("velmar.ini"), "a = yes\nb = 1\n[x]\n");
    write_file("velmar.ini", "msg_sqlite = 7\n");
    EXPECT_EQ(run({"lint", "--fix", "--dry-run", "velmar.ini"}), (TOOL_RUN{1, "", ""}));
}

TEST_F(LINT_FIX, without_a_file_fixes_every_settings_file_that_is_read)
{
    write_file("project/velmar.ini", "a = yes\n");
    write_file("project/regtest.ini", "b = yes\n");
    write_file("appended.ini", "c = yes\n");
    write_file("user/velmar2.ini", "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n# note\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR_INI_VARS"] = "d=yes";
    variables["VELMAR2_INI"] = "user";
    const TOOL_RUN fixed = run({"--project", "project", "--regtest", "lint", "--fix"});
    EXPECT_EQ(fixed.exit_code, 0);
    EXPECT_THAT(fixed.out, StartsWith("VELMAR_INI_VARS:1:3: note: 'yes' is no boolean"));
    EXPECT_THAT(fixed.out, HasSubstr("velmar2.ini:3:"));
    EXPECT_EQ(read_file("project/velmar.ini"), "a = on\n");
    EXPECT_EQ(read_file("project/regtest.ini"), "b = on\n");
    EXPECT_EQ(read_file("appended.ini"), "c = on\n");
    EXPECT_THAT(read_file("user/velmar2.ini"), EndsWith("# note\n"));
    EXPECT_EQ(std::count(fixed.err.begin(), fixed.err.end(), '\n'), 3);
}

TEST_F(LINT_FIX, goes_on_behind_a_file_that_must_not_be_changed)
{
    write_file("a.ini", "a = yes\n");
    write_file("b.ini", "b = yes\n");
    write_file("c.ini", "c = yes\n");
    std::filesystem::create_hard_link("a.ini", "other");
    std::filesystem::create_directory("b.ini.lock"); // where the lock would be
    const TOOL_RUN fixed = run({"lint", "--fix", "a.ini", "b.ini", "c.ini", "nowhere.ini"});
    EXPECT_EQ(fixed.exit_code, 4);
    EXPECT_THAT(fixed.err, HasSubstr("a.ini: the file has 2 names (hard links)"));
    EXPECT_THAT(fixed.err, HasSubstr("b.ini.lock: is no file, where velmar-cfg keeps its lock; remove it\n"));
    EXPECT_THAT(fixed.err, HasSubstr("c.ini: 1 line was replaced\n"));
    EXPECT_THAT(fixed.err, HasSubstr("nowhere.ini: "));
    EXPECT_THAT(fixed.out, HasSubstr("a.ini:1:5: note: 'yes' is no boolean"));
    EXPECT_THAT(fixed.out, HasSubstr("b.ini:1:5: note: 'yes' is no boolean"));
    EXPECT_THAT(fixed.out, Not(HasSubstr("c.ini")));
    EXPECT_EQ(read_file("a.ini"), "a = yes\n");
    EXPECT_EQ(read_file("c.ini"), "c = on\n");
    EXPECT_FALSE(std::filesystem::exists("nowhere.ini"));
    EXPECT_EQ(run({"lint", "--fix", "a.ini", "--break-hard-links"}).exit_code, 0);
    EXPECT_EQ(read_file("a.ini"), "a = on\n");
    EXPECT_EQ(read_file("other"), "a = yes\n");
}

// The null device reads as an empty file, and is none that could be changed.
TEST_F(LINT_FIX, names_the_changed_files_also_where_another_cannot_be_read_any_more)
{
    write_file("a.ini", "a = yes\n");
    write_file("c.ini", "c = yes\n");
    const TOOL_RUN fixed = run({"lint", "--fix", "a.ini", "/dev/null", "c.ini"});
    EXPECT_EQ(fixed.exit_code, 3);
    EXPECT_THAT(fixed.err, StartsWith("velmar-cfg: " + full_path("a.ini") + ": 1 line was replaced\n"));
    EXPECT_THAT(fixed.err, HasSubstr("\nvelmar-cfg: /dev/null: "));
    EXPECT_THAT(fixed.err, EndsWith("velmar-cfg: " + full_path("c.ini") + ": 1 line was replaced\n"));
    EXPECT_EQ(read_file("c.ini"), "c = on\n");
}

TEST_F(LINT_FIX, takes_a_file_that_is_two_layers_once)
{
    write_file("velmar.ini", "a = yes\n");
    std::filesystem::create_symlink("velmar.ini", "link.ini");
    for (const char* const appended : {"velmar.ini", "./velmar.ini", "link.ini"})
    {
        variables["APPENDED_VELMAR_INI"] = appended;
        const TOOL_RUN tried = run({"lint", "--fix", "--dry-run"});
        EXPECT_EQ(tried.out, "--- " + full_path("velmar.ini") + "\n+++ " + full_path("velmar.ini") +
                                 " (new)\n@@ -1 +1 @@\n-a = yes\n+a = on\n")
            << appended;
    }
    const TOOL_RUN fixed = run({"lint", "--fix"});
    EXPECT_EQ(fixed.err, "velmar-cfg: " + full_path("velmar.ini") + ": 1 line was replaced\n");
    EXPECT_THAT(fixed.out, Not(HasSubstr("yes"))); // of neither layer
}

TEST_F(LINT_FIX, takes_a_file_that_is_named_twice_once)
{
    write_file("velmar.ini", "msg_sqlite = 7\n");
    std::filesystem::create_symlink("velmar.ini", "link.ini");
    const TOOL_RUN once = run({"lint", "velmar.ini"});
    EXPECT_EQ(run({"lint", "velmar.ini", "./velmar.ini", temporary.path("cwd/velmar.ini"), "link.ini"}), once);
    write_file("velmar2.ini", "# note\n");
    EXPECT_EQ(run({"prefs", "lint", "velmar2.ini", "velmar2.ini"}), run({"prefs", "lint", "velmar2.ini"}));
    EXPECT_EQ(run({"lint", "-", "-"}), run({"lint", "-"}));
}

// What is fixed is what lint shows of a line, so that the quotes and the carriage return of a secret are nobody's
// business.
TEST_F(LINT_FIX, writes_secrets_as_they_are_and_shows_none)
{
    write_file("velmar.ini", "api_token = \"hush-hush-1\"\n'secret' = 'hush-hush-2' # old: hush-hush-3\n"
                             "token = hush-hush-4\rhush-hush-5\npass word = hush-hush-6\nb = yes\n");
    const std::string after = "api_token = hush-hush-1\nsecret = 'hush-hush-2' # old: hush-hush-3\n"
                              "token = hush-hush-4\rhush-hush-5\npass_word = hush-hush-6\nb = on\n";
    for (const char* const format : {"--json", "--color=never"})
        EXPECT_THAT(run({"lint", "--fix", "--dry-run", "velmar.ini", format}).out, Not(HasSubstr("hush")));
    const TOOL_RUN fixed = run({"lint", "--fix", "velmar.ini"});
    EXPECT_EQ(fixed.out, "");
    EXPECT_EQ(fixed.err, "velmar-cfg: " + full_path("velmar.ini") + ": 4 lines were replaced\n");
    EXPECT_EQ(read_file("velmar.ini"), after);
}

// The findings that are left are more than a buffer holds, so that writing them fails before the last one.
TEST_F(LINT_FIX, names_the_changed_files_also_where_findings_cannot_be_written)
{
    std::string text = "a = yes\n";
    for (int i = 0; i < 3000; ++i)
        text += "b" + std::to_string(i) + " = 1\nb" + std::to_string(i) + " = 2\n";
    for (const char* const format : {"--format=text", "--format=sarif", "--json"})
    {
        write_file("velmar.ini", text);
        const pid_t child = start({"lint", "--fix", "velmar.ini", format}, "/dev/full");
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), 4) << format;
        EXPECT_THAT(read_file(temporary.path("standard_error")),
                    StartsWith("velmar-cfg: " + full_path("velmar.ini") +
                               ": 1 line was replaced\nvelmar-cfg: standard output: "))
            << format;
        EXPECT_THAT(read_file("velmar.ini"), StartsWith("a = on\n")) << format;
    }
}

TEST_F(LINT_FIX, refuses_what_makes_no_sense)
{
    write_file("velmar.ini", "a = yes\n");
    const TOOL_RUN refused{2, "", "velmar-cfg: --fix changes files, not standard input\n"};
    EXPECT_EQ(run({"lint", "--fix", "-"}), refused);
    EXPECT_EQ(run({"lint", "--fix", "-", "--project", "gone"}), refused); // before a directory is looked for
    EXPECT_EQ(run({"lint", "--dry-run"}).exit_code, 2);
    EXPECT_EQ(run({"lint", "--break-hard-links"}).exit_code, 2);
    EXPECT_EQ(run({"lint", "--format", "sarif", "--json"}).exit_code, 2);
    EXPECT_EQ(run({"lint", "--format", "sarif", "--fix", "--dry-run"}).exit_code, 2);
    EXPECT_EQ(run({"lint", "--format", "xml"}).exit_code, 2);
    for (const std::vector<std::string>& rest : std::vector<std::vector<std::string>>{{"velmar.ini"},
                                                                                      {"--fix"},
                                                                                      {"--strict"},
                                                                                      {"--ignore", "separator"},
                                                                                      {"--of", "."},
                                                                                      {"--with", "a=1"},
                                                                                      {"--without", "a"},
                                                                                      {"--format", "sarif"},
                                                                                      {"--format", "sarif", "--json"}})
    {
        std::vector<std::string> arguments = {"lint", "--list-reasons"};
        arguments.insert(arguments.end(), rest.begin(), rest.end());
        EXPECT_EQ(run(arguments), (TOOL_RUN{2, "",
                                            "velmar-cfg: --list-reasons checks nothing: files, --fix, --of, --with, "
                                            "--without, --strict, --ignore and --format sarif exclude it\n"}))
            << rest.front();
    }
    EXPECT_EQ(run({"prefs", "lint", "--list-reasons", "--format", "sarif"}),
              (TOOL_RUN{2, "",
                        "velmar-cfg: --list-reasons checks nothing: files, --strict, --ignore and --format sarif "
                        "exclude it\n"}));
    EXPECT_EQ(run({"prefs", "lint", "--list-reasons", "--format", "text"}).exit_code, 0);
    EXPECT_EQ(read_file("velmar.ini"), "a = yes\n");
}

TEST_F(LINT_FIX, ignored_reasons_count_for_nothing)
{
    write_file("velmar.ini", "[x]\na = yes\nb = 'c'\n");
    EXPECT_EQ(run({"lint", "velmar.ini"}).exit_code, 1);
    const TOOL_RUN rest = run({"lint", "velmar.ini", "--ignore", "no-equals-sign", "--ignore", "quotes-kept"});
    EXPECT_EQ(rest.exit_code, 0);
    EXPECT_THAT(rest.out, StartsWith("velmar.ini:2:5: note:"));
    EXPECT_EQ(std::count(rest.out.begin(), rest.out.end(), '\n'), 1);
    EXPECT_EQ(run({"lint", "--json", "velmar.ini", "--ignore=no-equals-sign"}).json().size(), 2U);
    EXPECT_EQ(run({"lint", "velmar.ini", "--ignore", "no-equal-sign"}),
              (TOOL_RUN{2, "",
                        "velmar-cfg: no finding has the reason 'no-equal-sign' (did you mean 'no-equals-sign'?); see "
                        "velmar-cfg lint --list-reasons\n"}));
    EXPECT_EQ(run({"lint", "--fix", "velmar.ini", "--ignore", "boolean-word"}).out, "");
    EXPECT_EQ(read_file("velmar.ini"), "# [x]\na = yes\nb = c\n");
    write_file("user/velmar2.ini", "# note\n");
    EXPECT_EQ(run({"prefs", "lint", "user/velmar2.ini", "--ignore", "not-kept"}), (TOOL_RUN{0, "", ""}));
}

TEST_F(LINT_FIX, reasons_can_be_listed)
{
    const std::string all = run({"lint", "--list-reasons"}).out;
    EXPECT_THAT(all, StartsWith("Of settings:\n  almost-known        The name is nearly that of a known variable.\n"));
    EXPECT_THAT(all, HasSubstr("\nOf preferences:\n  before-section      A key line before any section is ignored.\n"));
    const std::string preferences = run({"prefs", "lint", "--list-reasons"}).out;
    EXPECT_THAT(preferences, StartsWith("Of preferences:\n"));
    EXPECT_THAT(all, EndsWith(preferences));
    const nlohmann::json rows = run({"lint", "--list-reasons", "--json"}).json();
    EXPECT_GT(rows.size(), 45U);
    EXPECT_EQ(rows[0], nlohmann::json({{"reason", "almost-known"},
                                       {"of", "settings"},
                                       {"meaning", "The name is nearly that of a known variable."}}));
    EXPECT_EQ(rows.back().at("of"), "preferences");
}
}
