// Snapshots as JSON documents: what is written, what is read back, and what is hidden on the way in.
#include "tools/velmar-cfg/documents/snapshot_json.h"

#include <gmock/gmock.h>

#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/snapshots.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"

namespace
{
using nlohmann::ordered_json;
using testing::ElementsAre;

constexpr LAYER_KIND main_file = LAYER_KIND::MAIN_FILE;
constexpr LAYER_KIND appended = LAYER_KIND::APPENDED_FILE;
constexpr LAYER_KIND inline_text = LAYER_KIND::INLINE_TEXT;
constexpr LAYER_KIND regtest = LAYER_KIND::REGTEST_FILE;

template <typename ROW>
std::string json_of(const ROW& row)
{
    return compact_json([&row](JSON_WRITER& out) { write_json(out, row); });
}

// --- Writing ---

TEST(SNAPSHOT_JSON, has_the_head_of_the_document_first)
{
    SNAPSHOT snapshot;
    snapshot.product = "velmar";
    snapshot.release = "23.4";
    EXPECT_EQ(json_of(snapshot),
              R"({"schema":"velmar-snapshot","schema_version":2,"product":"velmar","release":"23.4","project":null,)"
              R"("regtest":false,"files":[],"environment":[],"variables":[],"preferences":[]})");
    snapshot.project = "cpu";
    snapshot.regtest = true;
    EXPECT_EQ(ordered_json::parse(json_of(snapshot)).at("project"), "cpu");
    EXPECT_EQ(ordered_json::parse(json_of(snapshot)).at("regtest"), true);
}

TEST(SNAPSHOT_JSON, has_no_hash_that_is_masked)
{
    EXPECT_EQ(json_of(SNAPSHOT_FILE{"main", "velmar.ini", 7, mark_under('a', '1'), "the hash itself"}),
              R"({"role":"main","path":"velmar.ini","size":7,"sha256":)"
              R"({"masked":[{"key":"aaaaaaaaaaaaaaaa","hmac":"1111111111111111"}]}})");
    EXPECT_EQ(json_of(SNAPSHOT_FILE{"main", std::nullopt, std::nullopt, std::nullopt}),
              R"({"role":"main","path":null,"size":null,"sha256":null})");
}

TEST(SNAPSHOT_JSON, has_the_layers_of_a_variable_in_their_order)
{
    struct ROW
    {
        std::initializer_list<LAYER_KIND> layers;
        const char* json;
    };
    const ROW rows[] = {
        {{main_file}, R"(["main"])"},
        {{appended, main_file}, R"(["main","appended"])"},
        {{regtest, inline_text}, R"(["inline","regtest"])"},
        {{regtest, inline_text, appended, main_file}, R"(["main","appended","inline","regtest"])"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(ordered_json::parse(json_of(variable_of("v", "1", row.layers))).at("layers").dump(), row.json);
}

TEST(SNAPSHOT_JSON, has_the_place_that_a_layer_has)
{
    for (const auto& [kind, json] : {std::pair(main_file, R"("layer":"main","file":"main","line":1,"item":null)"),
                                     {appended, R"("layer":"appended","file":"appended","line":1,"item":null)"},
                                     {inline_text, R"("layer":"inline","file":null,"line":null,"item":1)"},
                                     {regtest, R"("layer":"regtest","file":"regtest","line":1,"item":null)"}})
        EXPECT_THAT(json_of(variable_of("v", "1", {kind})), testing::HasSubstr(json));
}

TEST(SNAPSHOT_JSON, has_the_source_of_each_preference)
{
    struct ROW
    {
        PREFERENCE_SOURCE source;
        const char* section;
        const char* release;
        const char* json;
    };
    const ROW rows[] = {
        {PREFERENCE_SOURCE::RUNNING_RELEASE, "General 23.4_pro", "23.4",
         R"("source":"running release","section":"General 23.4_pro","release":"23.4")"},
        {PREFERENCE_SOURCE::OLDER_RELEASE, "General 23.3_pro", "23.3",
         R"("source":"older release","section":"General 23.3_pro","release":"23.3")"},
        {PREFERENCE_SOURCE::UNVERSIONED_SECTION, "General", "",
         R"("source":"unversioned section","section":"General","release":null)"},
        {PREFERENCE_SOURCE::DEFAULT, "", "", R"("source":"default","section":null,"release":null)"},
        {PREFERENCE_SOURCE::NOWHERE, "", "", R"("source":"none","section":null,"release":null)"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(json_of(SNAPSHOT_PREFERENCE{"K", "v", "d", {row.source, row.section}, row.release}),
                  std::string(R"({"key":"K","value":"v","default":"d",)") + row.json + "}");
}

// --- Reading ---

class SNAPSHOT_DOCUMENTS : public ISOLATED_TEST
{
protected:
    // A snapshot with a row of each kind.
    static ordered_json document()
    {
        return ordered_json::parse(R"({
            "schema": "velmar-snapshot", "schema_version": 2, "product": "velmar", "release": "23.4", "project": "cpu",
            "regtest": true,
            "files": [{"role": "main", "path": "velmar.ini", "size": 70, "sha256": "11"},
                      {"role": "appended", "path": null, "size": null, "sha256": null},
                      {"role": "regtest", "path": null, "size": null, "sha256": null},
                      {"role": "preferences", "path": null, "size": null, "sha256": null}],
            "environment": [{"name": "HOME", "value": "/home/ana"}, {"name": "VELMAR_INI_VARS", "value": null}],
            "variables": [{"name": "a", "value": "5", "external": true, "layer": "main", "file": "velmar.ini",
                "line": 3, "item": null, "layers": ["main"],
                "readings": {"bool": null, "int": 5, "uint": 5, "double": 5.0, "double_whole": true}}],
            "preferences": [{"key": "HDL_PREFERENCE", "value": "VHDL", "default": "Verilog", "source": "older release",
                "section": "General 23.3_pro", "release": "23.3"}]})");
    }

    // The same as it is written now: with a basis.
    static ordered_json document_3()
    {
        const ordered_json before = document();
        ordered_json json;
        for (const char* const member : {"schema", "schema_version", "product", "release", "project", "regtest"})
            json[member] = before[member];
        json["schema_version"] = 3;
        const ordered_json basis = ordered_json::parse(R"({
            "user": "ana", "host": "farm7", "directory": "/proj", "taken": "2026-11-22T08:00:00Z",
            "tool": "velmar-cfg 1.0.0", "as": {"process": 4711, "executable": "/opt/velmar"},
            "search": [{"file": "velmar.ini", "place": "HOME", "path": "/h/velmar.ini", "state": "shadowed",
                "remark": "x"}],
            "findings": [{"file": "VELMAR_INI", "line": null, "item": 1, "column": 1, "severity": "warning",
                "reason": "missing-directory", "message": "m", "instead": "i", "replacement": null}],
            "problems": [{"of": "settings", "text": "velmar.ini: no"}, {"of": "preferences", "text": "p"}],
            "sources": [{"of": "main", "path": "velmar.ini", "problem": null, "newline_at_end": true},
                        {"of": "inline", "path": "VELMAR_INI_VARS", "problem": null, "newline_at_end": false},
                        {"of": "preferences", "path": "velmar2.ini", "problem": "no", "newline_at_end": true}],
            "lines": [{"of": "main", "text": "# note"}, {"of": "main", "text": "a = 5"}, {"of": "inline", "text": "b=1"},
                      {"of": "preferences", "text": "[General]"}]})");
        for (const auto& [name, value] : basis.items())
            json[name] = value;
        for (const char* const member : {"files", "environment", "variables", "preferences"})
            json[member] = before[member];
        json["files"][3] = {{"role", "preferences"}, {"path", "velmar2.ini"}, {"size", 9}, {"sha256", "22"}};
        return json;
    }

    static SNAPSHOT read(const ordered_json& json, SECRETS& secrets)
    {
        write_file("document.json", json.dump());
        return read_snapshot("document.json", secrets);
    }

    static SNAPSHOT read(const ordered_json& json)
    {
        SECRETS secrets;
        return read(json, secrets);
    }

    // The document's only variable under that name and with that value and layer.
    static ordered_json with_variable(const char* name, const char* value, const char* layer)
    {
        ordered_json json = document();
        ordered_json& row = json["variables"][0];
        row["name"] = name;
        row["value"] = value;
        row["layer"] = layer;
        row["layers"] = {layer};
        if (std::string_view(layer) == "inline")
        {
            row["file"] = nullptr;
            row["line"] = nullptr;
            row["item"] = 3;
        }
        return json;
    }
};

// What a user sees of a text of which a part is hidden by a key of this process.
std::string shown(std::string_view text)
{
    return with_hidden_parts_named(text);
}

TEST_F(SNAPSHOT_DOCUMENTS, are_written_as_they_were_read)
{
    EXPECT_EQ(json_of(read(document())), document().dump());
    // A version before has the same rows.
    ordered_json old = document();
    old["schema_version"] = 1;
    EXPECT_EQ(json_of(read(old)), document().dump());
    // Marks of a key that is kept stay; the size of what they hide is not known.
    ordered_json masked = document();
    const ordered_json mark =
        ordered_json::parse(R"({"masked": [{"key": "aaaaaaaaaaaaaaaa", "hmac": "1111111111111111"}]})");
    masked["files"][0]["sha256"] = mark;
    masked["variables"][0]["value"] = mark;
    masked["variables"][0]["readings"] =
        ordered_json::parse(R"({"bool": null, "int": null, "uint": null, "double": null, "double_whole": false})");
    masked["preferences"][0]["value"] = mark;
    EXPECT_EQ(json_of(read(masked)), masked.dump());
}

TEST_F(SNAPSHOT_DOCUMENTS, of_version_3_are_written_as_they_were_read)
{
    EXPECT_EQ(json_of(read(document_3())), document_3().dump());
    ordered_json turned;
    const ordered_json json = document_3();
    for (auto member = json.rbegin(); member != json.rend(); ++member)
        turned[member.key()] = *member;
    EXPECT_EQ(json_of(read(turned)), document_3().dump());
    // What is not known stays so.
    ordered_json bare = document_3();
    bare["host"] = nullptr;
    bare["directory"] = nullptr;
    bare["search"][0]["path"] = nullptr;
    bare["problems"] = ordered_json::array();
    bare["as"]["process"] = nullptr;
    EXPECT_EQ(json_of(read(bare)), bare.dump());
    // One that does not say whose view it is is of nobody but the tool.
    ordered_json own = document_3();
    own["as"] = nullptr;
    EXPECT_EQ(json_of(read(own)), own.dump());
    ordered_json silent = document_3();
    silent.erase("as");
    EXPECT_EQ(json_of(read(silent)), own.dump());
}

TEST_F(SNAPSHOT_DOCUMENTS, have_the_texts_of_their_sources_byte_by_byte)
{
    struct ROW
    {
        const char* lines; // of the main file
        bool newline_at_end;
        std::string text;
    };
    const ROW rows[] = {
        {R"([])", false, ""},
        {R"([""])", true, "\n"},
        {R"(["a = 1"])", false, "a = 1"},
        {R"(["a = 1"])", true, "a = 1\n"},
        {R"(["a = 1\r", "b"])", true, "a = 1\r\nb\n"},
        {R"(["a = 1", "", ""])", true, "a = 1\n\n\n"},
        {R"(["a = 1", "", ""])", false, "a = 1\n\n"},
        {R"(["a\u0000=\ufeff", {"hex": "ff3d"}])", true, std::string("a\0=\xef\xbb\xbf\n\xff=\n", 10)},
    };
    for (const ROW& row : rows)
    {
        ordered_json json = document_3();
        std::erase_if(json["lines"].get_ref<ordered_json::array_t&>(),
                      [](const ordered_json& line) { return line.at("of") == "main"; });
        ordered_json lines = ordered_json::array();
        for (const ordered_json& text : ordered_json::parse(row.lines))
            lines.push_back({{"of", "main"}, {"text", text}});
        json["lines"].insert(json["lines"].begin(), lines.begin(), lines.end());
        json["sources"][0]["newline_at_end"] = row.newline_at_end;
        const SNAPSHOT snapshot = read(json);
        EXPECT_EQ(snapshot.basis->sources[0].file->bytes, row.text) << row.lines;
        EXPECT_EQ(json_of(read(ordered_json::parse(json_of(snapshot)))), json_of(snapshot)) << row.lines;
    }
}

TEST_F(SNAPSHOT_DOCUMENTS, have_secrets_on_any_line_hidden)
{
    ordered_json json = document_3();
    json["lines"][0]["text"] = "# api_token = abc";
    json["lines"][2]["text"] = "a=1;my_secret=abc:def==;b=1";
    json["lines"][3]["text"] = "CLOUD_TOKEN = abc";
    const SNAPSHOT snapshot = read(json);
    const std::vector<SNAPSHOT_SOURCE>& sources = snapshot.basis->sources;
    EXPECT_EQ(shown(sources[0].file->bytes), "# api_token = \\(masked)\na = 5\n");
    EXPECT_EQ(shown(sources[1].file->bytes), "a=1;my_secret=\\(masked):\\(masked);b=1");
    EXPECT_EQ(shown(sources[2].file->bytes), "CLOUD_TOKEN = \\(masked)\n");
    // The hash could be tried until it fits.
    EXPECT_TRUE(has_hidden_parts(*snapshot.files[0].sha256));
    EXPECT_TRUE(has_hidden_parts(*snapshot.files[3].sha256));
    EXPECT_FALSE(has_hidden_parts(*read(document_3()).files[0].sha256));
    SECRETS showing;
    showing.show_all();
    EXPECT_EQ(json_of(read(json, showing)), json.dump());
    // What is hidden stays hidden, and is not hidden twice.
    json["lines"][0]["text"] = ordered_json::parse(
        R"({"masked": ["token = ", {"key": "aaaaaaaaaaaaaaaa", "hmac": "1111111111111111"}, " x"]})");
    EXPECT_EQ(ordered_json::parse(json_of(read(json))).at("lines")[0], json["lines"][0]);
}

TEST_F(SNAPSHOT_DOCUMENTS, are_read_with_the_lists_that_are_wanted)
{
    const auto read_with = [](const ordered_json& json, const SNAPSHOT_LISTS& wanted)
    {
        write_file("document.json", json.dump());
        SECRETS secrets;
        SNAPSHOT_READER reader(secrets, wanted);
        const JSON_DOCUMENT document("document.json", {reader.format()});
        return reader.finish(document);
    };
    ordered_json json = document_3();
    const SNAPSHOT compared = read_with(json, {.lines = false});
    EXPECT_EQ(compared.variables.size(), 1U);
    EXPECT_THAT(compared.basis->sources, testing::IsEmpty());
    EXPECT_EQ(compared.basis->user, "ana");
    const SNAPSHOT shown = read_with(json, {.variables = false});
    EXPECT_EQ(shown.variables.size(), 0U);
    EXPECT_EQ(shown.basis->sources.size(), 3U);
    // A document before has its rows only.
    for (const SNAPSHOT_LISTS wanted : {SNAPSHOT_LISTS{}, SNAPSHOT_LISTS{false, false}})
        EXPECT_EQ(read_with(document(), wanted).variables.size(), 1U);
    EXPECT_FALSE(read_with(document(), {}).basis);
}

TEST_F(SNAPSHOT_DOCUMENTS, have_every_field_in_the_snapshot)
{
    const SNAPSHOT snapshot = read(document());
    EXPECT_EQ(snapshot.product, "velmar");
    EXPECT_EQ(snapshot.release, "23.4");
    EXPECT_EQ(snapshot.project, "cpu");
    EXPECT_TRUE(snapshot.regtest);
    ASSERT_EQ(snapshot.files.size(), 4U);
    EXPECT_EQ(snapshot.files[0], (SNAPSHOT_FILE{"main", "velmar.ini", 70, "11"}));
    EXPECT_EQ(snapshot.environment,
              (std::vector<ENVIRONMENT_VARIABLE>{{"HOME", "/home/ana"}, {"VELMAR_INI_VARS", std::nullopt}}));
    ASSERT_EQ(snapshot.variables.size(), 1U);
    const SNAPSHOT_VARIABLE variable = snapshot.variables[0];
    EXPECT_EQ(location_as_text(variable.location), "velmar.ini:3");
    EXPECT_EQ(variable.layers, set_of({main_file}));
    EXPECT_EQ(variable.readings.signed_integer, 5);
    EXPECT_TRUE(variable.readings.floating_is_whole);
    ASSERT_EQ(snapshot.preferences.size(), 1U);
    EXPECT_EQ(snapshot.preferences[0].origin.source, PREFERENCE_SOURCE::OLDER_RELEASE);
    EXPECT_EQ(snapshot.preferences[0].origin.section, "General 23.3_pro");
    EXPECT_EQ(snapshot.preferences[0].release, "23.3");
}

TEST_F(SNAPSHOT_DOCUMENTS, are_read_with_the_readings_that_they_have)
{
    ordered_json json = document();
    json["variables"][0]["readings"] = ordered_json::parse(
        R"({"bool": false, "int": -1, "uint": 4294967295, "double": "-inf", "double_whole": false})");
    const SNAPSHOT snapshot = read(json);
    const TYPED_READINGS readings = snapshot.variables[0].readings;
    EXPECT_EQ(readings.boolean, false);
    EXPECT_EQ(readings.signed_integer, -1);
    EXPECT_EQ(readings.unsigned_integer, 4294967295U);
    EXPECT_EQ(readings.floating, -std::numeric_limits<double>::infinity());
    EXPECT_FALSE(readings.floating_is_whole);
}

// The list that holds most of a document comes before its head in no document of the tool's, and may in others.
TEST_F(SNAPSHOT_DOCUMENTS, may_have_their_members_in_another_order)
{
    ordered_json turned;
    const ordered_json json = document();
    for (auto member = json.rbegin(); member != json.rend(); ++member)
        turned[member.key()] = *member;
    EXPECT_EQ(json_of(read(turned)), document().dump());
}

TEST_F(SNAPSHOT_DOCUMENTS, keep_the_places_of_many_rows)
{
    ordered_json json = document();
    const ordered_json row = json["variables"][0];
    json["variables"].clear();
    const char* const files[] = {"one.ini", "one.ini", "two.ini", "one.ini"};
    for (std::size_t i = 0; i < 4; ++i)
    {
        json["variables"].push_back(row);
        json["variables"][i]["name"] = "v" + std::to_string(i);
        json["variables"][i]["file"] = files[i];
        json["variables"][i]["line"] = i + 1;
    }
    const SNAPSHOT snapshot = read(json);
    std::vector<std::string> places;
    for (std::size_t i = 0; i < snapshot.variables.size(); ++i)
        places.push_back(location_as_text(snapshot.variables[i].location));
    EXPECT_THAT(places, ElementsAre("one.ini:1", "one.ini:2", "two.ini:3", "one.ini:4"));
}

TEST_F(SNAPSHOT_DOCUMENTS, have_secret_values_hidden_when_they_are_read)
{
    struct ROW
    {
        const char* name;
        const char* value;
        const char* layer;
        const char* hidden;
    };
    const ROW rows[] = {
        {"api_token", "abc", "main", "\\(masked)"},
        {"api_token", "\"abc\"", "main", "\"\\(masked)\""},
        {"api_token", "on", "main", "on"},
        {"API_TOKEN", "abc:def;g", "inline", "\\(masked):\\(masked);\\(masked)"},
        {"api_token", "abc:def", "appended", "\\(masked)"},
        {"api_token", "abc:def", "regtest", "\\(masked)"},
        {"url", "http://h/?token=abc", "main", "http://h/?token=\\(masked)"},
        {"url", "http://h/", "main", "http://h/"},
    };
    for (const ROW& row : rows)
    {
        const SNAPSHOT snapshot = read(with_variable(row.name, row.value, row.layer));
        const SNAPSHOT_VARIABLE variable = snapshot.variables[0];
        EXPECT_EQ(shown(variable.value), row.hidden) << row.name << " = " << row.value;
        EXPECT_EQ(variable.name, row.name);
        // The readings would tell the value.
        EXPECT_EQ(variable.readings.signed_integer.has_value(), !has_hidden_parts(variable.value)) << row.value;
        SECRETS showing;
        showing.show_all();
        const SNAPSHOT shown_snapshot = read(with_variable(row.name, row.value, row.layer), showing);
        EXPECT_EQ(shown_snapshot.variables[0].value, row.value);
        EXPECT_TRUE(shown_snapshot.variables[0].readings.signed_integer);
    }
}

TEST_F(SNAPSHOT_DOCUMENTS, have_the_secrets_of_other_lists_hidden_too)
{
    ordered_json json = document();
    json["environment"][1]["value"] = "a=1;my_password=abc";
    json["environment"][0]["value"] = "/home/token=abc";
    json["preferences"][0]["key"] = "CLOUD_TOKEN";
    json["preferences"][0]["value"] = "abc";
    const SNAPSHOT snapshot = read(json);
    EXPECT_EQ(shown(*snapshot.environment[1].value), "a=1;my_password=\\(masked)");
    EXPECT_EQ(shown(*snapshot.environment[0].value), "/home/token=\\(masked)");
    EXPECT_EQ(shown(snapshot.preferences[0].value), "\\(masked)");
    SECRETS with_pattern;
    with_pattern.add_pattern("a");
    EXPECT_EQ(read(json, with_pattern).variables[0].value, "5"); // too short a number
    json["variables"][0]["value"] = "five";
    EXPECT_EQ(shown(read(json, with_pattern).variables[0].value), "\\(masked)");
}

// Of version 3.
TEST_F(SNAPSHOT_DOCUMENTS, are_refused_with_lines_of_no_source)
{
    struct ROW
    {
        const char* pointer;
        const char* value;
        const char* complaint;
    };
    const char* const not_the_files = ".sources is no list of what .files lists";
    const ROW rows[] = {
        {"/lines", "7", ".lines is no list"},
        {"/lines/1", "7", ".lines[1].of is missing"},
        {"/lines/1/of", R"("top")", ".lines[1].of is no source of lines"},
        {"/lines/1/of", R"("program")", ".lines[1].of is no source of lines"},
        {"/lines/1/of", R"("regtest")", ".lines[2] is no row in the order of the sources"},
        {"/lines/3/of", R"("main")", ".lines[3] is no row in the order of the sources"},
        {"/lines/3/of", R"("regtest")", ".sources[2].newline_at_end is no false, as of a source without lines"},
        {"/lines/0/of", R"("appended")", ".lines[1] is no row in the order of the sources"},
        {"/lines/1/text", R"("a\nb")", ".lines[1].text is no text of one line"},
        {"/lines/1/text", R"({"masked": ["a\n", null]})", ".lines[1].text is no text of one line"},
        {"/lines/1/text", "null", ".lines[1].text is no text"},
        {"/sources/1/of", R"("other")", ".sources[1].of is no source in the order of the sources"},
        {"/sources/1/of", R"("main")", ".sources[1].of is no source in the order of the sources"},
        {"/sources/1/of", R"("appended")", ".sources is no list with the sources of all lines"},
        {"/sources/1/path", R"("other")", ".sources[1].path is no name of the variable"},
        {"/sources/0/path", R"("other")", not_the_files},
        {"/sources/0/newline_at_end", "null", ".sources[0].newline_at_end is no truth value"},
        {"/files/0/path", "null", not_the_files},
        {"/files/1/path", R"("appended.ini")", not_the_files},
        {"/search/0/state", R"("Read")", ".search[0].state is no state of a file"},
        {"/findings/0/severity", R"("fatal")", ".findings[0].severity is no severity of a finding"},
        {"/problems/0/of", R"("files")", ".problems[0].of is no part of a snapshot that files are read for"},
        {"/user", "null", ".user is no text"},
        {"/taken", "7", ".taken is no text"},
        {"/as", R"("process 4711")", ".as.process is missing"},
        {"/as/process", R"("4711")", ".as.process is no natural number"},
        {"/as/process", "0", ".as.process is no number of a process"},
        {"/as/executable", "null", ".as.executable is no text"},
    };
    for (const ROW& row : rows)
    {
        ordered_json json = document_3();
        json[ordered_json::json_pointer(row.pointer)] = ordered_json::parse(row.value);
        std::string complaint;
        try
        {
            read(json);
        }
        catch (const TOOL_ERROR& error)
        {
            complaint = error.what();
        }
        EXPECT_EQ(complaint, std::string("document.json: ") + row.complaint + "; have the file written again")
            << row.pointer << " = " << row.value;
    }
}

TEST_F(SNAPSHOT_DOCUMENTS, are_refused_with_what_they_are_no)
{
    struct ROW
    {
        const char* pointer;
        const char* value;
        const char* complaint;
    };
    const char* const location = ".variables[0] is no row with file and line, or else an item, as its layer has";
    const ROW rows[] = {
        {"/files/3/role", R"("inline")", ".files[3].role is no role of a file"},
        {"/files/3/role", R"("Preferences")", ".files[3].role is no role of a file"},
        {"/variables/0/layer", R"("Main")", ".variables[0].layer is no layer"},
        {"/variables/0/layer", R"("inline")", location},
        {"/variables/0/line", "null", location},
        {"/variables/0/file", "null", location},
        {"/variables/0/line", "-3", ".variables[0].line is no natural number"},
        {"/variables/0/item", "0", location},
        {"/variables/0/layers", R"("main")", ".variables[0].layers is no list"},
        {"/variables/0/layers", R"(["main", "Inline"])", ".variables[0].layers[1] is no layer"},
        {"/preferences/0/source", R"("Default")", ".preferences[0].source is no source of a preference"},
        {"/preferences/0/section", "7", ".preferences[0].section is no text"},
        {"/project", "false", ".project is no text"},
    };
    for (const ROW& row : rows)
    {
        ordered_json json = document();
        json[ordered_json::json_pointer(row.pointer)] = ordered_json::parse(row.value);
        std::string complaint;
        try
        {
            read(json);
        }
        catch (const TOOL_ERROR& error)
        {
            EXPECT_EQ(error.exit_code, EXIT_CODE::BAD_INPUT);
            complaint = error.what();
        }
        EXPECT_EQ(complaint, std::string("document.json: ") + row.complaint + "; have the file written again")
            << row.pointer << " = " << row.value;
    }
}
}
