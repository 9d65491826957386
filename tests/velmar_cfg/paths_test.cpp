#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
class PATHS : public TOOL_TEST
{
protected:
    // "state path remark" of each row for one file, by place; the temporary directory as "T".
    std::map<std::string, std::string> rows(const std::string& file, std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"paths", "--json", "--root", temporary.path("root")});
        std::map<std::string, std::string> result;
        const nlohmann::json document = run(arguments).json();
        for (const nlohmann::json& row : document.at("files"))
        {
            if (row.at("file") != file)
                continue;
            std::string text = row.at("state");
            if (row.at("path") != nullptr)
                text += " " + row.at("path").get<std::string>();
            if (row.at("remark") != "")
                text += " (" + row.at("remark").get<std::string>() + ")";
            for (std::size_t at = text.find(temporary.path()); at != std::string::npos;
                 at = text.find(temporary.path()))
                text.replace(at, temporary.path().size(), "T");
            result[row.at("place")] = text;
        }
        return result;
    }

    PATHS()
    {
        std::filesystem::create_directory(temporary.path("root"));
    }
};

using ROWS = std::map<std::string, std::string>;

TEST_F(PATHS, the_first_that_exists_is_read_and_shadows_the_others)
{
    variables["VELMAR_INI"] = "named";
    write_file(temporary.path("home/velmar.ini"), "");
    write_file(temporary.path("home/.kestrin.velmar/velmar.ini"), "");
    write_file(temporary.path("root/bin/velmar.ini"), "");
    EXPECT_EQ(rows("velmar.ini"), (ROWS{{"current directory", "missing T/cwd/velmar.ini"},
                                        {"VELMAR_INI", "missing named/velmar.ini"},
                                        {"HOME", "read T/home/velmar.ini"},
                                        {"HOME/.kestrin.velmar", "shadowed T/home/.kestrin.velmar/velmar.ini"},
                                        {"beside the program", "shadowed T/root/bin/velmar.ini"},
                                        {"installation", "shadowed T/root/bin/velmar.ini"}}));
}

TEST_F(PATHS, a_projects_own_file_comes_first)
{
    write_file("project/velmar.ini", "");
    write_file("velmar.ini", "");
    const ROWS found = rows("velmar.ini", {"--project", "project"});
    EXPECT_EQ(found.at("project"), "read project/velmar.ini");
    EXPECT_EQ(found.at("current directory"), "shadowed T/cwd/velmar.ini");
}

TEST_F(PATHS, disabled_search)
{
    write_file("project/velmar.ini", "");
    write_file("velmar.ini", "");
    variables["VELMAR_INI_DISABLED"] = "1";
    EXPECT_EQ(rows("velmar.ini").at("current directory"), "disabled T/cwd/velmar.ini");
    EXPECT_EQ(rows("velmar.ini", {"--project", "project"}).at("project"), "read project/velmar.ini");
    variables["VELMAR_INI_DISABLED"] = "true";
    EXPECT_EQ(rows("velmar.ini").at("current directory"), "read T/cwd/velmar.ini");
}

TEST_F(PATHS, places_that_name_no_directory)
{
    variables.erase("HOME");
    write_file("file", "");
    variables["VELMAR_INI"] = "file";
    ROWS found = rows("velmar.ini");
    EXPECT_EQ(found.at("HOME"), "skipped (HOME is not set)");
    EXPECT_EQ(found.at("HOME/.kestrin.velmar"), "skipped (HOME is not set)");
    EXPECT_EQ(found.at("VELMAR_INI"), "missing file/velmar.ini (VELMAR_INI names a file; it must name a directory)");

    variables["HOME"] = std::string(1025, 'h');
    variables.erase("VELMAR_INI");
    found = rows("velmar.ini");
    EXPECT_EQ(found.at("HOME"), "skipped (HOME is longer than 1024 bytes)");
    EXPECT_EQ(found.at("VELMAR_INI"), "skipped (VELMAR_INI is not set)");
}

TEST_F(PATHS, the_regression_test_file_is_read_only_when_asked_for)
{
    write_file("project/regtest.ini", "");
    write_file("regtest.ini", "");
    EXPECT_EQ(rows("regtest.ini", {"--project", "project"}).at("project"), "unused project/regtest.ini");
    const ROWS found = rows("regtest.ini", {"--project", "project", "--regtest"});
    EXPECT_EQ(found.at("project"), "read project/regtest.ini");
    EXPECT_EQ(found.at("current directory"), "shadowed T/cwd/regtest.ini");
}

TEST_F(PATHS, the_appended_file)
{
    EXPECT_EQ(rows("appended").at("APPENDED_VELMAR_INI"), "skipped (APPENDED_VELMAR_INI is not set)");
    variables["APPENDED_VELMAR_INI"] = "more.ini";
    EXPECT_EQ(rows("appended").at("APPENDED_VELMAR_INI"), "missing more.ini");
    write_file("more.ini", "");
    EXPECT_EQ(rows("appended").at("APPENDED_VELMAR_INI"), "read more.ini");
}

TEST_F(PATHS, the_preference_file)
{
    EXPECT_EQ(rows("velmar2.ini"), (ROWS{{"profile directory", "missing T/home/velmar2.ini"}}));
    write_file("user/velmar2.ini", "");
    variables["VELMAR2_INI"] = "user";
    EXPECT_EQ(rows("velmar2.ini"), (ROWS{{"VELMAR2_INI", "read user/velmar2.ini"}}));
}

TEST_F(PATHS, what_cannot_be_read_is_said_and_no_failure)
{
    write_file("project/velmar.ini/file", "");
    EXPECT_EQ(rows("velmar.ini", {"--project", "project"}).at("project"),
              "read project/velmar.ini (is a directory, not a file; check the path)");
}

TEST_F(PATHS, what_cannot_be_seen_is_told_from_what_is_missing)
{
    write_file("barred/file", "");
    ASSERT_EQ(chmod("barred", 0600), 0);
    ASSERT_EQ(symlink("nowhere", "velmar.ini"), 0);
    ASSERT_EQ(symlink("circle", "circle"), 0);
    variables["VELMAR_INI"] = "barred";
    variables["APPENDED_VELMAR_INI"] = "circle/appended.ini";
    const TOOL_RUN shown = run_without_rights({"paths", "--json"});
    std::filesystem::permissions("barred", std::filesystem::perms::owner_all);
    EXPECT_EQ(shown.exit_code, 0);
    EXPECT_EQ(shown.err, "");
    std::map<std::string, std::string> found;
    const nlohmann::json document = shown.json();
    for (const nlohmann::json& row : document.at("files"))
    {
        if (row.at("file") != "regtest.ini")
            found[row.at("place")] = row.at("state").get<std::string>() + ": " + row.at("remark").get<std::string>();
    }
    EXPECT_EQ(found["current directory"], "dangling: is a broken symbolic link; remove it or create what it names");
    EXPECT_EQ(found["VELMAR_INI"], "barred: Permission denied; let this user search the directories that it is in");
    EXPECT_EQ(found["APPENDED_VELMAR_INI"], "dangling: is reached through circle, a symbolic link that leads back to "
                                            "itself; remove it or create what it names");
    EXPECT_EQ(found["HOME"], "missing: ");
}

TEST_F(PATHS, text)
{
    variables["VELMAR_INI_VARS"] = "a=1";
    write_file("velmar.ini", "");
    const TOOL_RUN shown = run({"paths", "--root", temporary.path("root")});
    const std::string in_cwd = temporary.path("cwd/");
    const std::string in_home = temporary.path("home/");
    const std::string in_bin = temporary.path("root/bin/");
    EXPECT_EQ(shown, (TOOL_RUN{0,
                               "velmar.ini\n"
                               "  read      current directory     " +
                                   in_cwd +
                                   "velmar.ini\n"
                                   "  skipped   VELMAR_INI            (VELMAR_INI is not set)\n"
                                   "  missing   HOME                  " +
                                   in_home +
                                   "velmar.ini\n"
                                   "  missing   HOME/.kestrin.velmar  " +
                                   in_home +
                                   ".kestrin.velmar/velmar.ini\n"
                                   "  missing   beside the program    " +
                                   in_bin +
                                   "velmar.ini\n"
                                   "  missing   installation          " +
                                   in_bin +
                                   "velmar.ini\n"
                                   "appended\n"
                                   "  skipped   APPENDED_VELMAR_INI   (APPENDED_VELMAR_INI is not set)\n"
                                   "regtest.ini\n"
                                   "  missing   current directory     " +
                                   in_cwd +
                                   "regtest.ini\n"
                                   "  skipped   VELMAR_INI            (VELMAR_INI is not set)\n"
                                   "  missing   HOME                  " +
                                   in_home +
                                   "regtest.ini\n"
                                   "  missing   HOME/.kestrin.velmar  " +
                                   in_home +
                                   ".kestrin.velmar/regtest.ini\n"
                                   "  missing   beside the program    " +
                                   in_bin +
                                   "regtest.ini\n"
                                   "  missing   installation          " +
                                   in_bin +
                                   "regtest.ini\n"
                                   "velmar2.ini\n"
                                   "  missing   profile directory     " +
                                   in_home +
                                   "velmar2.ini\n"
                                   "environment\n"
                                   "  VELMAR_INI is not set\n"
                                   "  HOME=" +
                                   temporary.path("home") +
                                   "\n"
                                   "  VELMAR_INI_DISABLED is not set\n"
                                   "  APPENDED_VELMAR_INI is not set\n"
                                   "  VELMAR_INI_VARS=a=1\n"
                                   "  VELMAR2_INI is not set\n",
                               ""}));
}
}
