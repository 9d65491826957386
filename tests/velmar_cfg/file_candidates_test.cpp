// Where settings files are looked for, and what is found there. The places beside the program and of the installation
// are left out: they are this test's own.
#include "tools/velmar-cfg/settings/file_candidates.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "tests/support/isolated_test.h"

namespace
{
using testing::ElementsAre;

TEST(FILE_STATES, have_a_word_each)
{
    for (const auto& [state, word] : {std::pair(FILE_STATE::READ, "read"),
                                      {FILE_STATE::SHADOWED, "shadowed"},
                                      {FILE_STATE::DISABLED, "disabled"},
                                      {FILE_STATE::UNUSED, "unused"},
                                      {FILE_STATE::MISSING, "missing"},
                                      {FILE_STATE::DANGLING, "dangling"},
                                      {FILE_STATE::BARRED, "barred"},
                                      {FILE_STATE::SKIPPED, "skipped"}})
        EXPECT_STREQ(state_word(state), word);
}

TEST(FILE_STATES, are_fields_in_json)
{
    const auto json_of = [](const FILE_CANDIDATE& candidate)
    {
        TEXT_SINK sink;
        JSON_WRITER out(sink);
        write_json(out, candidate);
        out.finish();
        return nlohmann::ordered_json::parse(sink.text).dump();
    };
    EXPECT_EQ(json_of({"velmar.ini", "HOME", "/x/velmar.ini", FILE_STATE::READ, ""}),
              R"({"file":"velmar.ini","place":"HOME","path":"/x/velmar.ini","state":"read","remark":""})");
    EXPECT_EQ(json_of({"appended", "APPENDED_VELMAR_INI", "", FILE_STATE::SKIPPED, "not set"}),
              R"({"file":"appended","place":"APPENDED_VELMAR_INI","path":null,"state":"skipped","remark":"not set"})");
}

class FILE_CANDIDATES : public ISOLATED_TEST
{
protected:
    FILE_CANDIDATES()
    {
        environment.set("HOME", temporary.path("home"));
    }

    // "place state path (remark)"; the temporary directory as "T".
    std::string described(const FILE_CANDIDATE& candidate) const
    {
        std::string text = candidate.place + " " + state_word(candidate.state) +
                           (candidate.path.empty() ? "" : " " + candidate.path) +
                           (candidate.remark.empty() ? "" : " (" + candidate.remark + ")");
        for (std::size_t at = 0; (at = text.find(temporary.path())) != std::string::npos;)
            text.replace(at, temporary.path().size(), "T");
        return text;
    }

    std::vector<std::string> candidates(const SETTINGS_SCOPE& scope, bool regtest) const
    {
        std::vector<std::string> texts;
        for (const FILE_CANDIDATE& candidate : settings_candidates(scope, regtest))
        {
            EXPECT_EQ(candidate.file, regtest ? "regtest.ini" : "velmar.ini");
            if (candidate.place != "beside the program" && candidate.place != "installation")
                texts.push_back(described(candidate));
        }
        return texts;
    }
};

TEST_F(FILE_CANDIDATES, are_the_places_of_the_search_in_its_order)
{
    std::vector<std::string> places;
    for (const FILE_CANDIDATE& candidate : settings_candidates({"cpu", false}, false))
        places.push_back(candidate.place);
    EXPECT_THAT(places, ElementsAre("project", "current directory", "VELMAR_INI", "HOME", "HOME/.kestrin.velmar",
                                    "beside the program", "installation"));
    EXPECT_EQ(settings_candidates({}, false).size(), 6U);
    EXPECT_THAT(candidates({}, false),
                ElementsAre("current directory missing T/cwd/velmar.ini", "VELMAR_INI skipped (VELMAR_INI is not set)",
                            "HOME missing T/home/velmar.ini",
                            "HOME/.kestrin.velmar missing T/home/.kestrin.velmar/velmar.ini"));
}

TEST_F(FILE_CANDIDATES, are_read_shadowed_disabled_or_unused)
{
    write_file("velmar.ini", "");
    write_file(temporary.path("home/velmar.ini"), "");
    write_file("cpu/velmar.ini", "");
    write_file("cpu/regtest.ini", "");
    write_file("regtest.ini", "");
    EXPECT_EQ(candidates({}, false)[0], "current directory read T/cwd/velmar.ini");
    EXPECT_EQ(candidates({}, false)[2], "HOME shadowed T/home/velmar.ini");
    const std::vector<std::string> of_project = candidates({"cpu", false}, false);
    EXPECT_EQ(of_project[0], "project read cpu/velmar.ini");
    EXPECT_EQ(of_project[1], "current directory shadowed T/cwd/velmar.ini");
    EXPECT_EQ(candidates({"cpu", false}, true)[0], "project unused cpu/regtest.ini");
    EXPECT_EQ(candidates({"cpu", false}, true)[1], "current directory shadowed T/cwd/regtest.ini");
    EXPECT_EQ(candidates({"", false}, true)[0], "current directory unused T/cwd/regtest.ini");
    EXPECT_EQ(candidates({"cpu", true}, true)[0], "project read cpu/regtest.ini");
    environment.set("VELMAR_INI_DISABLED", "1");
    EXPECT_EQ(candidates({}, false)[0], "current directory disabled T/cwd/velmar.ini");
    EXPECT_EQ(candidates({}, false)[2], "HOME shadowed T/home/velmar.ini");
    // A project's own file is not searched for.
    EXPECT_EQ(candidates({"cpu", false}, false)[0], "project read cpu/velmar.ini");
    EXPECT_EQ(candidates({"gpu", false}, false)[1], "current directory disabled T/cwd/velmar.ini");
    // What nothing asks for is unused rather than disabled.
    EXPECT_EQ(candidates({"", false}, true)[0], "current directory unused T/cwd/regtest.ini");
    EXPECT_EQ(candidates({"", true}, true)[0], "current directory disabled T/cwd/regtest.ini");
}

TEST_F(FILE_CANDIDATES, have_a_remark_where_a_place_names_no_directory)
{
    write_file("file", "");
    const std::string longest(1024, 'h');
    struct ROW
    {
        const char* what;
        std::string velmar_ini;
        std::string home;
        std::string of_velmar_ini;
        std::string of_home;
    };
    const ROW rows[] = {
        {"empty", "", "", "VELMAR_INI skipped (VELMAR_INI is not set)", "HOME skipped (HOME is not set)"},
        {"a directory", ".", "/", "VELMAR_INI missing ./velmar.ini", "HOME missing /velmar.ini"},
        {"a file", "file", "file",
         "VELMAR_INI missing file/velmar.ini (VELMAR_INI names a file; it must name a directory)",
         "HOME missing file/velmar.ini"},
        {"the longest", "x", longest, "VELMAR_INI missing x/velmar.ini", ""},
        {"too long", "x", longest + "h", "VELMAR_INI missing x/velmar.ini",
         "HOME skipped (HOME is longer than 1024 bytes)"},
    };
    for (const ROW& row : rows)
    {
        environment.set("VELMAR_INI", row.velmar_ini);
        environment.set("HOME", row.home);
        const std::vector<std::string> found = candidates({}, false);
        EXPECT_EQ(found[1], row.of_velmar_ini) << row.what;
        if (row.of_home.empty())
            EXPECT_EQ(found[2].find("skipped"), std::string::npos) << found[2];
        else
            EXPECT_EQ(found[2], row.of_home) << row.what;
    }
}

TEST_F(FILE_CANDIDATES, have_no_current_directory_once_that_is_removed)
{
    const std::string removed = temporary.path("removed");
    std::filesystem::create_directory(removed);
    const SCOPED_CURRENT_DIRECTORY current(removed);
    ASSERT_EQ(rmdir(removed.c_str()), 0);
    EXPECT_EQ(candidates({}, false)[0], "current directory skipped (the current directory is not known)");
}

TEST_F(FILE_CANDIDATES, tell_links_that_lead_nowhere_and_files_that_cannot_be_read)
{
    ASSERT_EQ(symlink("nowhere", "velmar.ini"), 0);
    std::filesystem::create_directories(temporary.path("home/velmar.ini"));
    const std::vector<std::string> found = candidates({}, false);
    EXPECT_EQ(
        found[0],
        "current directory dangling T/cwd/velmar.ini (is a broken symbolic link; remove it or create what it names)");
    EXPECT_EQ(found[2], "HOME read T/home/velmar.ini (is a directory, not a file; check the path)");
}

TEST_F(FILE_CANDIDATES, may_be_files_that_are_not_searched_for)
{
    EXPECT_EQ(described(appended_candidate()), "APPENDED_VELMAR_INI skipped (APPENDED_VELMAR_INI is not set)");
    environment.set("APPENDED_VELMAR_INI", "more.ini");
    EXPECT_EQ(described(appended_candidate()), "APPENDED_VELMAR_INI missing more.ini");
    write_file("more.ini", "");
    EXPECT_EQ(described(appended_candidate()), "APPENDED_VELMAR_INI read more.ini");
    EXPECT_EQ(appended_candidate().file, "appended");
    environment.set("VELMAR_INI_DISABLED", "1"); // disables the search alone
    EXPECT_EQ(described(appended_candidate()), "APPENDED_VELMAR_INI read more.ini");
    const FILE_CANDIDATE sole = sole_candidate("velmar2.ini", "somewhere", "more.ini");
    EXPECT_EQ(sole.file, "velmar2.ini");
    EXPECT_EQ(described(sole), "somewhere read more.ini");
}
}
