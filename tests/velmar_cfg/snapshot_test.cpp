#include <filesystem>
#include <sys/stat.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::EndsWith;
using testing::StartsWith;

class SNAPSHOT : public TOOL_TEST
{
};

const nlohmann::json& row_of(const nlohmann::json& rows, const char* field, const std::string& name)
{
    for (const nlohmann::json& row : rows)
    {
        if (row.at(field) == name)
            return row;
    }
    static const nlohmann::json none;
    ADD_FAILURE() << "no row " << name;
    return none;
}

TEST_F(SNAPSHOT, says_what_it_is_and_of_what)
{
    write_file("project/readme", "");
    nlohmann::json document = run({"snapshot", "--project", "project", "--regtest"}).json();
    for (const char* const member :
         {"user", "host", "directory", "taken", "tool", "as", "search", "findings", "problems", "sources", "lines",
          "files", "environment", "variables", "preferences"})
        EXPECT_EQ(document.erase(member), 1U) << member;
    EXPECT_EQ(document, R"({"schema": "velmar-snapshot", "schema_version": 3, "product": "velmar", "release": "23.4",
                            "project": "project", "regtest": true})"_json);
    document = run({"snapshot"}).json();
    EXPECT_EQ(document.at("project"), nullptr);
    EXPECT_EQ(document.at("regtest"), false);
}

TEST_F(SNAPSHOT, has_a_row_for_each_file_with_size_and_hash)
{
    write_file("project/velmar.ini", "abc");
    write_file("appended.ini", "");
    write_file("user/velmar2.ini", "abc");
    write_file("project/regtest.ini", "a=1\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR2_INI"] = "user";
    EXPECT_EQ(run({"snapshot", "--project", "project", "--regtest"}).json().at("files"), R"([
        {"role": "main", "path": "project/velmar.ini", "size": 3,
         "sha256": "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"role": "appended", "path": "appended.ini", "size": 0,
         "sha256": "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"role": "regtest", "path": "project/regtest.ini", "size": 4,
         "sha256": "fe3209d6d4f51935b391288a43df48d9ddece1a992597ae53387ca16611a9179"},
        {"role": "preferences", "path": "user/velmar2.ini", "size": 3,
         "sha256": "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"}])"_json);
}

TEST_F(SNAPSHOT, has_the_same_rows_without_files)
{
    EXPECT_EQ(run({"snapshot"}).json().at("files"), nlohmann::json::parse(R"([
        {"role": "main", "path": null, "size": null, "sha256": null},
        {"role": "appended", "path": null, "size": null, "sha256": null},
        {"role": "regtest", "path": null, "size": null, "sha256": null},
        {"role": "preferences", "path": ")" + temporary.path("home/velmar2.ini") +
                                                                          R"(", "size": null, "sha256": null}])"));
}

TEST_F(SNAPSHOT, has_the_environment_that_matters_and_no_other)
{
    write_file("config/readme", "");
    variables["HOME"] = "/home/ana";
    variables["PATH"] = "/bin";
    variables["VELMAR_SECRET"] = "x";
    variables["VELMAR_INI"] = "config";
    variables["VELMAR_INI_VARS"] = "a=1";
    EXPECT_EQ(run({"snapshot"}).json().at("environment"), R"([
        {"name": "VELMAR_INI", "value": "config"}, {"name": "HOME", "value": "/home/ana"},
        {"name": "VELMAR_INI_DISABLED", "value": null}, {"name": "APPENDED_VELMAR_INI", "value": null},
        {"name": "VELMAR_INI_VARS", "value": "a=1"}, {"name": "VELMAR2_INI", "value": null}])"_json);
}

TEST_F(SNAPSHOT, has_every_variable_with_origin_and_readings)
{
    write_file("project/velmar.ini", "# settings\nRatio = 2.5x\nfan = 1\nratio = -3\n");
    write_file("project/regtest.ini", "seed = 4294967295\n");
    variables["VELMAR_INI_VARS"] = "b=1;FAN=on";
    EXPECT_EQ(run({"snapshot", "--project", "project", "--regtest"}).json().at("variables"), R"([
        {"name": "Ratio", "value": "-3", "external": true,
         "layer": "main", "file": "project/velmar.ini", "line": 4, "item": null, "layers": ["main"],
         "readings": {"bool": null, "int": -3, "uint": null, "double": -3.0, "double_whole": true}},
        {"name": "b", "value": "1", "external": true,
         "layer": "inline", "file": null, "line": null, "item": 1, "layers": ["inline"],
         "readings": {"bool": true, "int": 1, "uint": 1, "double": 1.0, "double_whole": true}},
        {"name": "fan", "value": "on", "external": true,
         "layer": "inline", "file": null, "line": null, "item": 2, "layers": ["main", "inline"],
         "readings": {"bool": true, "int": null, "uint": null, "double": 0.0, "double_whole": false}},
        {"name": "seed", "value": "4294967295", "external": false,
         "layer": "regtest", "file": "project/regtest.ini", "line": 1, "item": null, "layers": ["regtest"],
         "readings": {"bool": null, "int": null, "uint": 4294967295, "double": 4294967295.0, "double_whole": true}}
    ])"_json);
}

TEST_F(SNAPSHOT, has_every_preference_with_its_origin)
{
    write_file("user/velmar2.ini", "[General]\nUSER_LIBRARIES = \"/old/lib\"\n[Messages 23.3_pro]\n"
                                   "SHOW_MESSAGE_ID = off\n[Programmer 23.4_pro]\nPGMW_SERIAL_FLASH_PP_TIME = 7\n");
    variables["VELMAR2_INI"] = "user";
    const nlohmann::json preferences = run({"snapshot"}).json().at("preferences");
    ASSERT_EQ(preferences.size(), 121);
    EXPECT_EQ(row_of(preferences, "key", "USER_LIBRARIES"),
              R"({"key": "USER_LIBRARIES", "value": "/old/lib", "default": "", "source": "unversioned section",
                  "section": "General", "release": null})"_json);
    EXPECT_EQ(row_of(preferences, "key", "SHOW_MESSAGE_ID"),
              R"({"key": "SHOW_MESSAGE_ID", "value": "off", "default": "on", "source": "older release",
                  "section": "Messages 23.3_pro", "release": "23.3"})"_json);
    EXPECT_EQ(row_of(preferences, "key", "PGMW_SERIAL_FLASH_PP_TIME"),
              R"({"key": "PGMW_SERIAL_FLASH_PP_TIME", "value": "7", "default": "0", "source": "running release",
                  "section": "Programmer 23.4_pro", "release": "23.4"})"_json);
    EXPECT_EQ(row_of(preferences, "key", "HDL_PREFERENCE"),
              R"({"key": "HDL_PREFERENCE", "value": "Verilog", "default": "Verilog", "source": "default",
                  "section": null, "release": null})"_json);
}

TEST_F(SNAPSHOT, keeps_bytes_that_are_no_text)
{
    write_file("velmar.ini", "a\xff=x\xc3y\n");
    variables["VELMAR_INI"] = "\xfe";
    const nlohmann::json document = run({"snapshot"}).json();
    EXPECT_EQ(document.at("variables").at(0).at("name"), R"({"hex": "61ff"})"_json);
    EXPECT_EQ(document.at("variables").at(0).at("value"), R"({"hex": "78c379"})"_json);
    EXPECT_EQ(document.at("environment").at(0).at("value"), R"({"hex": "fe"})"_json);
    EXPECT_EQ(document.at("lines").at(0), R"({"of": "main", "text": {"hex": "61ff3d78c379"}})"_json);
}

TEST_F(SNAPSHOT, has_every_line_of_every_source_in_order)
{
    write_file("project/velmar.ini", "a=1\r\n\n# b");
    write_file("project/regtest.ini", "");
    write_file("appended.ini", "c=2\n");
    write_file("user/velmar2.ini", "[General]\n");
    variables["VELMAR_INI_VARS"] = "d=1;e\nf=2";
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR2_INI"] = "user";
    const nlohmann::json document = run({"snapshot", "--project", "project", "--regtest"}).json();
    EXPECT_EQ(document.at("lines"), R"([{"of": "main", "text": "a=1\r"}, {"of": "main", "text": ""},
        {"of": "main", "text": "# b"}, {"of": "appended", "text": "c=2"}, {"of": "inline", "text": "d=1;e"},
        {"of": "inline", "text": "f=2"}, {"of": "preferences", "text": "[General]"}])"_json);
    EXPECT_EQ(document.at("sources"), R"([
        {"of": "main", "path": "project/velmar.ini", "problem": null, "newline_at_end": false},
        {"of": "appended", "path": "appended.ini", "problem": null, "newline_at_end": true},
        {"of": "inline", "path": "VELMAR_INI_VARS", "problem": null, "newline_at_end": false},
        {"of": "regtest", "path": "project/regtest.ini", "problem": null, "newline_at_end": false},
        {"of": "preferences", "path": "user/velmar2.ini", "problem": null, "newline_at_end": true}])"_json);
    EXPECT_EQ(document.at("search"), run({"paths", "--project", "project", "--regtest", "--json"}).json().at("files"));
    EXPECT_EQ(document.at("findings"), nlohmann::json::array());
    EXPECT_EQ(document.at("problems"), nlohmann::json::array());
}

TEST_F(SNAPSHOT, says_what_could_not_be_read)
{
    std::filesystem::create_directories("user/velmar2.ini");
    std::filesystem::create_directories("velmar.ini");
    variables["VELMAR2_INI"] = "user";
    variables["VELMAR_INI_DISABLED"] = "yes";
    const TOOL_RUN taken = run({"snapshot"});
    EXPECT_EQ(taken.exit_code, 3);
    const std::string problem = "is a directory, not a file; check the path";
    const std::string main = temporary.path("cwd/velmar.ini");
    EXPECT_EQ(taken.json().at("problems"),
              (nlohmann::json{{{"of", "settings"}, {"text", main + ": " + problem}},
                              {{"of", "preferences"}, {"text", "user/velmar2.ini: " + problem}}}));
    EXPECT_EQ(taken.json().at("sources")[0],
              (nlohmann::json{{"of", "main"}, {"path", main}, {"problem", problem}, {"newline_at_end", false}}));
    EXPECT_EQ(taken.json().at("findings")[0].at("reason"), "disables-nothing");
}

std::string without_time(std::string document)
{
    const std::size_t time = document.find("\"taken\": \"") + std::string("\"taken\": \"").size();
    return document.erase(time, document.find('"', time) - time);
}

TEST_F(SNAPSHOT, is_written_to_a_file_as_a_whole)
{
    write_file("velmar.ini", "a=1\n");
    const TOOL_RUN shown = run({"snapshot"});
    EXPECT_EQ(shown.exit_code, 0);
    EXPECT_THAT(shown.out, EndsWith("\n}\n"));
    EXPECT_EQ(run({"snapshot", "-o", "new.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(without_time(read_file("new.json")), without_time(shown.out));
    write_file("old.json", "something longer than what takes its place" + std::string(100000, '.'));
    EXPECT_EQ(run({"snapshot", "--output=old.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(without_time(read_file("old.json")), without_time(shown.out));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 3);
}

TEST_F(SNAPSHOT, that_cannot_be_written_is_told)
{
    EXPECT_EQ(run({"snapshot", "-o", "nowhere/new.json"}),
              (TOOL_RUN{4, "",
                        "velmar-cfg: nowhere/new.json: No such file or directory; name a file that can be "
                        "written\n"}));
    EXPECT_EQ(run({"snapshot", "-o", "/dev/full"}),
              (TOOL_RUN{4, "", "velmar-cfg: /dev/full: No space left on device; name a file that can be written\n"}));
}

TEST_F(SNAPSHOT, that_cannot_be_written_leaves_the_old_file)
{
    write_file("old.json", "old");
    ASSERT_EQ(chmod("old.json", 0400), 0);
    EXPECT_EQ(run_without_rights({"snapshot", "-o", "old.json"}),
              (TOOL_RUN{4, "", "velmar-cfg: old.json: Permission denied; name a file that can be written\n"}));
    EXPECT_EQ(read_file("old.json"), "old");
}

TEST_F(SNAPSHOT, takes_a_line_of_a_megabyte)
{
    const std::string value(1 << 20, 'x');
    write_file("velmar.ini", "long=" + value + "\n");
    const TOOL_RUN snapshot = run({"snapshot"});
    EXPECT_EQ(snapshot.exit_code, 0);
    EXPECT_EQ(snapshot.json().at("variables").at(0).at("value"), value);
}
}
