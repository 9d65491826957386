// What holds now as a snapshot, and snapshots by what a user calls them.
#include "tools/velmar-cfg/documents/take_snapshot.h"

#include <filesystem>
#include <gmock/gmock.h>

#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/snapshots.h"
#include "tools/velmar-cfg/base/content_hash.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/states/read_state.h"
#include "tools/velmar-cfg/states/state_name.h"

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TAKEN_SNAPSHOT : public ISOLATED_TEST
{
protected:
    TAKEN_SNAPSHOT()
    {
        environment.set("HOME", temporary.path("home"));
        write_file(temporary.path("user/velmar2.ini"), "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
        environment.set("VELMAR2_INI", temporary.path("user"));
    }

    // "role path size" of each file; the temporary directory as "T".
    std::vector<std::string> files_of(const SNAPSHOT& snapshot) const
    {
        std::vector<std::string> rows;
        for (const SNAPSHOT_FILE& file : snapshot.files)
        {
            std::string path = file.path.value_or("-");
            if (path.starts_with(temporary.path()))
                path.replace(0, temporary.path().size(), "T");
            rows.push_back(file.role + " " + path + " " + (file.size ? std::to_string(*file.size) : "-"));
        }
        return rows;
    }

    INPUT_FILES files;
};

TEST_F(TAKEN_SNAPSHOT, has_a_row_for_each_file_whatever_is_there)
{
    EXPECT_THAT(files_of(take_snapshot({}, files)),
                ElementsAre("main - -", "appended - -", "regtest - -", "preferences T/user/velmar2.ini 41"));
    write_file("cpu/velmar.ini", "a=1\n");
    write_file("cpu/regtest.ini", "a=22\n");
    write_file("more.ini", "");
    environment.set("APPENDED_VELMAR_INI", "more.ini");
    std::filesystem::remove(temporary.path("user/velmar2.ini"));
    INPUT_FILES anew;
    EXPECT_THAT(files_of(take_snapshot({"cpu", true}, anew)),
                ElementsAre("main cpu/velmar.ini 4", "appended more.ini 0", "regtest cpu/regtest.ini 5",
                            "preferences T/user/velmar2.ini -"));
    INPUT_FILES without;
    const SNAPSHOT snapshot = take_snapshot({"cpu", false}, without);
    EXPECT_EQ(files_of(snapshot)[2], "regtest - -");
    EXPECT_EQ(snapshot.project, "cpu");
    EXPECT_FALSE(snapshot.regtest);
    EXPECT_EQ(snapshot.product, "velmar");
    EXPECT_EQ(snapshot.release, "23.4");
}

TEST_F(TAKEN_SNAPSHOT, hashes_the_bytes_of_each_file)
{
    write_file("velmar.ini", "a=1\n");
    const SNAPSHOT snapshot = take_snapshot({}, files);
    EXPECT_EQ(snapshot.files[0].sha256, sha256_of("a=1\n"));
    EXPECT_EQ(snapshot.files[0].hash_behind_mask, sha256_of("a=1\n"));
    EXPECT_EQ(snapshot.files[3].sha256, sha256_of("[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n"));
    EXPECT_EQ(snapshot.files[1].hash_behind_mask, "");
}

// The hash of a file with a secret could be guessed until it fits, so that it is hidden; its size is that of the bytes.
TEST_F(TAKEN_SNAPSHOT, hides_the_hash_of_a_file_that_holds_secrets)
{
    struct ROW
    {
        const char* what;
        const char* settings;
        const char* preferences;
        bool settings_hidden;
        bool preferences_hidden;
    };
    const ROW rows[] = {
        {"no secret", "a=1\n", "[General]\nHDL_PREFERENCE = VHDL\n", false, false},
        {"a secret in the settings", "token=abc\n", "[General]\nHDL_PREFERENCE = VHDL\n", true, false},
        {"a secret in the preferences", "a=1\n", "[Cloud]\nCLOUD_TOKEN = abc\n", false, true},
        {"a name without a secret", "token=on\n", "[Cloud]\nCLOUD_TOKEN =\n", false, false},
    };
    for (const ROW& row : rows)
    {
        write_file("velmar.ini", row.settings);
        write_file(temporary.path("user/velmar2.ini"), row.preferences);
        INPUT_FILES read;
        const SNAPSHOT snapshot = take_snapshot({}, read);
        const auto expect = [&](const SNAPSHOT_FILE& file, const std::string& bytes, bool hidden)
        {
            EXPECT_EQ(file.size, bytes.size()) << row.what;
            EXPECT_EQ(file.hash_behind_mask, sha256_of(bytes)) << row.what;
            EXPECT_EQ(has_hidden_parts(*file.sha256), hidden) << row.what;
            EXPECT_EQ(*file.sha256 == file.hash_behind_mask, !hidden) << row.what;
        };
        expect(snapshot.files[0], row.settings, row.settings_hidden);
        expect(snapshot.files[3], row.preferences, row.preferences_hidden);

        SETTINGS_SCOPE showing;
        showing.secrets->show_all();
        INPUT_FILES again;
        const SNAPSHOT shown = take_snapshot(showing, again);
        EXPECT_EQ(shown.files[0].sha256, sha256_of(row.settings)) << row.what;
        EXPECT_EQ(shown.files[3].sha256, sha256_of(row.preferences)) << row.what;
    }
}

TEST_F(TAKEN_SNAPSHOT, has_no_hash_of_a_file_that_cannot_be_read)
{
    std::filesystem::create_directory("velmar.ini");
    const SNAPSHOT snapshot = take_snapshot({}, files);
    EXPECT_EQ(files_of(snapshot)[0], "main T/cwd/velmar.ini -");
    EXPECT_EQ(snapshot.files[0].sha256, std::nullopt);
    EXPECT_EQ(snapshot.files[0].hash_behind_mask, "");
    EXPECT_THAT(files.problems(), ElementsAre(HasSubstr("velmar.ini: is a directory")));
}

TEST_F(TAKEN_SNAPSHOT, has_values_environment_and_preferences)
{
    write_file("velmar.ini", "b=2\nmy_token = abc\na=1\n");
    environment.set("VELMAR_INI_VARS", "a=3;password=xyz");
    const SNAPSHOT snapshot = take_snapshot({}, files);
    std::vector<std::string> variables;
    for (std::size_t i = 0; i < snapshot.variables.size(); ++i)
        variables.push_back(std::string(snapshot.variables[i].name) + "=" +
                            with_hidden_parts_named(snapshot.variables[i].value));
    EXPECT_THAT(variables, ElementsAre("a=3", "b=2", "my_token=\\(masked)", "password=\\(masked)"));
    ASSERT_EQ(snapshot.environment.size(), 6U);
    EXPECT_EQ(with_hidden_parts_named(*snapshot.environment[4].value), "a=3;password=\\(masked)");
    ASSERT_EQ(snapshot.preferences.size(), all_preference_numbers().size());
    const auto hdl = std::ranges::find(snapshot.preferences, "HDL_PREFERENCE", &SNAPSHOT_PREFERENCE::key);
    ASSERT_NE(hdl, snapshot.preferences.end());
    EXPECT_EQ(hdl->value, "VHDL");
    EXPECT_EQ(hdl->default_value, "Verilog");
    EXPECT_EQ(hdl->origin.source, PREFERENCE_SOURCE::RUNNING_RELEASE);
    EXPECT_EQ(hdl->release, "23.4");
    EXPECT_TRUE(files.problems().empty());
}

// --- By name ---

STATE state_named(const std::string& text, const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    return read_state(state_name(text), {.snapshot = true}, scope, files);
}

TEST_F(TAKEN_SNAPSHOT, is_that_of_the_directory_which_a_user_names)
{
    write_file("cpu/velmar.ini", "a=cpu\n");
    write_file("cpu/regtest.ini", "r=1\n");
    write_file("gpu/velmar.ini", "a=gpu\n");
    SETTINGS_SCOPE scope{"gpu", true};
    const STATE named = state_named("cpu", scope, files);
    EXPECT_EQ(named.name, "cpu");
    EXPECT_EQ(named.snapshot->project, "cpu");
    EXPECT_TRUE(named.snapshot->regtest); // as the scope says
    ASSERT_EQ(named.snapshot->variables.size(), 2U);
    EXPECT_EQ(named.snapshot->variables[0].value, "cpu");
    EXPECT_EQ(scope.project, "gpu");
}

TEST_F(TAKEN_SNAPSHOT, is_read_where_a_user_names_a_file)
{
    write_file("velmar.ini", "a=1\ntoken=abc\n");
    TEXT_SINK sink;
    JSON_WRITER out(sink);
    SETTINGS_SCOPE showing;
    showing.secrets->show_all();
    write_json(out, take_snapshot(showing, files));
    out.finish();
    write_file("monday.json", sink.text);
    const STATE named = state_named("monday.json", {}, files);
    EXPECT_EQ(named.name, "monday.json");
    ASSERT_EQ(named.snapshot->variables.size(), 2U);
    EXPECT_EQ(with_hidden_parts_named(named.snapshot->variables[1].value), "\\(masked)");
    EXPECT_EQ(state_named("monday.json", showing, files).snapshot->variables[1].value, "abc");
}

TEST_F(TAKEN_SNAPSHOT, is_refused_where_a_name_is_of_neither)
{
    write_file("velmar.ini", "a=1\n");
    for (const auto& [path, complaint] :
         {std::pair("nowhere", "nowhere: No such file or directory; check the path"),
          {"velmar.ini", "velmar.ini: is not well-formed JSON from line 1, column 1 on; give a snapshot or run report "
                         "as velmar-cfg snapshot or a host's cfg_write_run_report writes it"}})
    {
        try
        {
            state_named(path, {}, files);
            FAIL() << path;
        }
        catch (const TOOL_ERROR& error)
        {
            EXPECT_EQ(error.exit_code, EXIT_CODE::BAD_INPUT);
            EXPECT_STREQ(error.what(), complaint);
        }
    }
    EXPECT_THAT(files.problems(), IsEmpty());
}
}
