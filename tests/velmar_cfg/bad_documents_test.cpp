// JSON documents that are none, or not those that are asked for: one line that names the file and what to do.
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using nlohmann::ordered_json;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// A command that reads the document as its last argument, and a document that it accepts.
struct READER
{
    std::vector<std::string> command;
    std::string title;
    std::string accepted;
    bool takes_any = false; // documents of every kind

    std::string kinds() const
    {
        return takes_any ? "snapshot or run report" : title;
    }

    std::string makers() const
    {
        const std::string of_reports = "a host's cfg_write_run_report";
        return takes_any             ? "velmar-cfg snapshot or " + of_reports
               : title == "snapshot" ? "velmar-cfg snapshot"
                                     : of_reports;
    }
};

void PrintTo(const READER& reader, std::ostream* stream)
{
    *stream << reader.command.front() << " of a " << reader.title;
}

constexpr const char* accepted_snapshot = R"({
  "schema": "velmar-snapshot", "schema_version": 1, "product": "velmar", "release": "23.4", "project": null,
  "regtest": false,
  "files": [
    {"role": "main", "path": "velmar.ini", "size": 70, "sha256": "11"},
    {"role": "appended", "path": null, "size": null, "sha256": null},
    {"role": "regtest", "path": null, "size": null, "sha256": null},
    {"role": "preferences", "path": null, "size": null, "sha256": null}],
  "environment": [{"name": "HOME", "value": "/home/ana"}, {"name": "VELMAR_INI", "value": null}],
  "variables": [
    {"name": "a", "value": "5", "external": true,
     "layer": "main", "file": "velmar.ini", "line": 3, "item": null, "layers": ["main"],
     "readings": {"bool": true, "int": 5, "uint": 5, "double": 5.5, "double_whole": true}},
    {"name": {"hex": "ff"}, "value": "", "external": true,
     "layer": "inline", "file": null, "line": null, "item": 2, "layers": ["main", "inline"],
     "readings": {"bool": null, "int": null, "uint": null, "double": "-inf", "double_whole": false}}],
  "preferences": [
    {"key": "HDL_PREFERENCE", "value": "VHDL", "default": "Verilog", "source": "older release",
     "section": "General 23.3_pro", "release": "23.3"},
    {"key": "SHOW_MESSAGE_ID", "value": "on", "default": "on", "source": "default", "section": null, "release": null}]
})";

constexpr const char* accepted_report = R"({
  "schema": "velmar-run-report", "schema_version": 1, "run": "nightly", "release": "23.4",
  "files": {"main": "velmar.ini", "appended": null, "regtest": null},
  "read": [{"name": "a", "count": 3, "value": "12", "external": true, "used": true},
           {"name": "b", "count": 3, "value": null, "external": false, "used": false}],
  "external_never_read": [{"name": "c", "value": "7"}], "uncounted": ["d"]
})";

class BAD_DOCUMENT : public TOOL_TEST, public testing::WithParamInterface<READER>
{
protected:
    BAD_DOCUMENT()
    {
        write_file("good.json", accepted_snapshot);
    }

    TOOL_RUN read(const std::string& file) const
    {
        std::vector<std::string> arguments = GetParam().command;
        arguments.push_back(file);
        return run(arguments);
    }

    TOOL_RUN read_bytes(const std::string& bytes) const
    {
        write_file("bad.json", bytes);
        return read("bad.json");
    }

    void expect_refused(const std::string& bytes, const std::string& change) const
    {
        const TOOL_RUN got = read_bytes(bytes);
        EXPECT_EQ(got.exit_code, 3) << change;
        EXPECT_EQ(got.out, "") << change;
        EXPECT_THAT(got.err, StartsWith("velmar-cfg: bad.json: ")) << change;
        EXPECT_EQ(std::count(got.err.begin(), got.err.end(), '\n'), 1) << change;
    }
};

TEST_P(BAD_DOCUMENT, the_accepted_one_is_accepted)
{
    EXPECT_LE(read_bytes(GetParam().accepted).exit_code, 1);
}

TEST_P(BAD_DOCUMENT, a_missing_file)
{
    EXPECT_EQ(read("nowhere.json"),
              (TOOL_RUN{3, "", "velmar-cfg: nowhere.json: No such file or directory; check the path\n"}));
}

TEST_P(BAD_DOCUMENT, a_file_without_permission)
{
    write_file("secret.json", GetParam().accepted);
    ASSERT_EQ(chmod("secret.json", 0), 0);
    std::vector<std::string> arguments = GetParam().command;
    arguments.emplace_back("secret.json");
    EXPECT_EQ(run_without_rights(arguments),
              (TOOL_RUN{3, "", "velmar-cfg: secret.json: Permission denied; make the file readable for this user\n"}));
}

TEST_P(BAD_DOCUMENT, a_link_that_leads_nowhere)
{
    ASSERT_EQ(symlink("nowhere", "link.json"), 0);
    EXPECT_EQ(
        read("link.json"),
        (TOOL_RUN{3, "", "velmar-cfg: link.json: is a broken symbolic link; remove it or create what it names\n"}));
}

TEST_P(BAD_DOCUMENT, a_directory_that_cannot_be_searched)
{
    write_file("barred/document.json", GetParam().accepted);
    ASSERT_EQ(chmod("barred", 0600), 0);
    std::vector<std::string> arguments = GetParam().command;
    arguments.emplace_back("barred/document.json");
    EXPECT_EQ(run_without_rights(arguments),
              (TOOL_RUN{3, "",
                        "velmar-cfg: barred/document.json: Permission denied; let this user search the directories "
                        "that it is in\n"}));
    ASSERT_EQ(chmod("barred", 0700), 0);
}

TEST_P(BAD_DOCUMENT, standard_input_and_pipes_are_named_like_files)
{
    write_file("bad", "x");
    standard_input = "bad";
    const TOOL_RUN refused = read("-");
    EXPECT_EQ(refused.exit_code, 3);
    EXPECT_THAT(refused.err,
                StartsWith("velmar-cfg: standard input: is not well-formed JSON from line 1, column 1 on"));

    write_file("accepted", GetParam().accepted);
    standard_input = "accepted";
    const TOOL_RUN from_file = read("accepted");
    EXPECT_LE(from_file.exit_code, 1);
    EXPECT_EQ(read("-").exit_code, from_file.exit_code);
    EXPECT_EQ(read("/dev/stdin").exit_code, from_file.exit_code);

    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0)
    {
        write_file("pipe", GetParam().accepted); // waits for the reader
        _exit(0);
    }
    EXPECT_EQ(read("pipe").exit_code, from_file.exit_code);
    EXPECT_EQ(waitpid(writer, nullptr, 0), writer);
}

TEST_P(BAD_DOCUMENT, every_truncation)
{
    const std::string& whole = GetParam().accepted;
    for (std::size_t length = 0; length < whole.size(); length += 37)
        expect_refused(whole.substr(0, length), "the first " + std::to_string(length) + " bytes");
}

TEST_P(BAD_DOCUMENT, no_json_at_all)
{
    EXPECT_EQ(read_bytes("x"),
              (TOOL_RUN{3, "",
                        "velmar-cfg: bad.json: is not well-formed JSON from line 1, column 1 on; give a " +
                            GetParam().kinds() + " as " + GetParam().makers() + " writes it\n"}));
    expect_refused("", "nothing");
    expect_refused(std::string(1 << 20, 'x'), "a line of a megabyte");
    expect_refused(std::string("\x7f"
                               "ELF\0\0",
                               6),
                   "a binary file");
    expect_refused("{\"schema\": \"\xff\"}", "no UTF-8");
    expect_refused(std::string(100000, '['), "deep nesting");
    expect_refused(R"({"schema": 1e999})", "a number beyond all");
}

TEST_P(BAD_DOCUMENT, json_of_another_kind)
{
    for (const char* const text : {"{}", "[]", "null", "7", "\"velmar-snapshot\"", R"({"schema": "other"})"})
        EXPECT_THAT(read_bytes(text).err, HasSubstr("bad.json: is no " + GetParam().kinds() + "; give one that "))
            << text;
}

TEST_P(BAD_DOCUMENT, a_newer_version)
{
    ordered_json document = ordered_json::parse(GetParam().accepted);
    const int newest = std::string_view(GetParam().title) == "snapshot" ? 3 : 2;
    document["schema_version"] = newest + 1;
    EXPECT_EQ(read_bytes(document.dump()),
              (TOOL_RUN{3, "",
                        "velmar-cfg: bad.json: is a " + GetParam().title + " of version " + std::to_string(newest + 1) +
                            ", and this velmar-cfg knows them up to version " + std::to_string(newest) +
                            "; use a newer velmar-cfg\n"}));
    for (const char* const version : {"0", "-1", "1.5", "\"1\"", "null", "18446744073709551615"})
    {
        document["schema_version"] = ordered_json::parse(version);
        expect_refused(document.dump(), std::string("version ") + version);
    }
}

// Every pointer to a value in the document.
void collect(const ordered_json& value, const ordered_json::json_pointer& at,
             std::vector<ordered_json::json_pointer>& all)
{
    if (!at.empty())
        all.push_back(at);
    if (value.is_object())
    {
        for (const auto& [name, member] : value.items())
            collect(member, at / name, all);
    }
    else if (value.is_array())
    {
        for (std::size_t i = 0; i < value.size(); ++i)
            collect(value[i], at / i, all);
    }
}

TEST_P(BAD_DOCUMENT, a_wrong_type_in_any_place)
{
    const ordered_json accepted = ordered_json::parse(GetParam().accepted);
    std::vector<ordered_json::json_pointer> places;
    collect(accepted, ordered_json::json_pointer(), places);
    ASSERT_GT(places.size(), 20U);
    for (const ordered_json::json_pointer& place : places)
    {
        // No field is a list of truth values, an object without members, or negative beyond all integers.
        for (const ordered_json& wrong : {ordered_json::array({true}), ordered_json::object()})
        {
            ordered_json changed = accepted;
            changed[place] = wrong;
            expect_refused(changed.dump(), place.to_string() + " = " + wrong.dump());
        }
    }
}

TEST_P(BAD_DOCUMENT, any_member_missing)
{
    const ordered_json accepted = ordered_json::parse(GetParam().accepted);
    std::vector<ordered_json::json_pointer> places;
    collect(accepted, ordered_json::json_pointer(), places);
    for (const ordered_json::json_pointer& place : places)
    {
        ordered_json changed = accepted;
        ordered_json& parent = changed[place.parent_pointer()];
        if (!parent.is_object())
            continue;
        parent.erase(place.back());
        expect_refused(changed.dump(), place.to_string() + " missing");
    }
}

INSTANTIATE_TEST_SUITE_P(
    documents, BAD_DOCUMENT,
    testing::Values(READER{{"diff"}, "snapshot", accepted_snapshot, true},
                    READER{{"diff", "good.json"}, "snapshot", accepted_snapshot, true},
                    READER{{"diff", "good.json"}, "run report", accepted_report, true},
                    READER{{"list", "--of"}, "snapshot", accepted_snapshot, true},
                    READER{{"list", "--of"}, "run report", accepted_report, true},
                    READER{{"run-report"}, "run report", accepted_report},
                    READER{{"run-report", "--merge"}, "run report", accepted_report},
                    READER{{"diff", "good.json", "good.json", "--used"}, "run report", accepted_report}));

struct WRONG_VALUE
{
    const char* place;
    const char* value;
    const char* complaint;
};

void PrintTo(const WRONG_VALUE& row, std::ostream* stream)
{
    *stream << row.place << " = " << row.value;
}

class WRONG_SNAPSHOT : public TOOL_TEST, public testing::WithParamInterface<WRONG_VALUE>
{
};

TEST_P(WRONG_SNAPSHOT, is_refused)
{
    ordered_json document = ordered_json::parse(accepted_snapshot);
    document[ordered_json::json_pointer(GetParam().place)] = ordered_json::parse(GetParam().value);
    write_file("bad.json", document.dump());
    EXPECT_EQ(run({"diff", "bad.json"}), (TOOL_RUN{3, "",
                                                   std::string("velmar-cfg: bad.json: ") + GetParam().complaint +
                                                       "; have the file written again\n"}));
}

INSTANTIATE_TEST_SUITE_P(
    values, WRONG_SNAPSHOT,
    testing::Values(
        WRONG_VALUE{"/release", "7", ".release is no text"},
        WRONG_VALUE{"/regtest", "null", ".regtest is no truth value"},
        WRONG_VALUE{"/variables", "null", ".variables is no list"},
        WRONG_VALUE{"/files/0/role", "\"other\"", ".files[0].role is no role of a file"},
        WRONG_VALUE{"/files/1/role", "\"main\"", ".files[1] is no row of its own: there is another of that name"},
        WRONG_VALUE{"/files/0/size", "-1", ".files[0].size is no natural number"},
        WRONG_VALUE{"/files/0/size", "1.0", ".files[0].size is no natural number"},
        WRONG_VALUE{"/files", "[]", ".files is no list of a file of each role"},
        WRONG_VALUE{"/environment/1/name", "\"HOME\"",
                    ".environment[1] is no row of its own: there is another of that name"},
        WRONG_VALUE{"/variables/1/name", "\"A\"", ".variables[1] is no row of its own: there is another of that name"},
        WRONG_VALUE{"/variables/1/name", R"({"hex": "f"})", ".variables[1].name is no text"},
        WRONG_VALUE{"/variables/1/name", R"({"hex": "0x"})", ".variables[1].name is no text"},
        WRONG_VALUE{"/variables/1/name", R"({"hex": "ff", "more": 1})", ".variables[1].name is no text"},
        WRONG_VALUE{"/variables/0/layer", "\"top\"", ".variables[0].layer is no layer"},
        WRONG_VALUE{"/variables/0/layers", R"(["top"])", ".variables[0].layers[0] is no layer"},
        WRONG_VALUE{"/variables/0/file", "null",
                    ".variables[0] is no row with file and line, or else an item, as its layer has"},
        WRONG_VALUE{"/variables/0/item", "3",
                    ".variables[0] is no row with file and line, or else an item, as its layer has"},
        WRONG_VALUE{"/variables/1/line", "3",
                    ".variables[1] is no row with file and line, or else an item, as its layer has"},
        WRONG_VALUE{"/variables/0/readings/int", "2147483648", ".variables[0].readings.int is no signed 32-bit number"},
        WRONG_VALUE{"/variables/0/readings/int", "-2147483649",
                    ".variables[0].readings.int is no signed 32-bit number"},
        WRONG_VALUE{"/variables/0/readings/uint", "4294967296",
                    ".variables[0].readings.uint is no unsigned 32-bit number"},
        WRONG_VALUE{"/variables/0/readings/uint", "-1", ".variables[0].readings.uint is no unsigned 32-bit number"},
        WRONG_VALUE{"/variables/0/readings/double", "\"5.5\"", ".variables[0].readings.double is no number"},
        WRONG_VALUE{"/variables/0/readings/double_whole", "null",
                    ".variables[0].readings.double_whole is no truth value"},
        WRONG_VALUE{"/preferences/0/source", "\"here\"", ".preferences[0].source is no source of a preference"},
        WRONG_VALUE{"/preferences/1/key", "\"HDL_PREFERENCE\"",
                    ".preferences[1] is no row of its own: there is another of that name"}));
}
