// The differences between two snapshots as JSON: every field, in its order, and what stands for what is not there.
#include "tools/velmar-cfg/documents/differences_json.h"

#include <gtest/gtest.h>

#include "tests/velmar_cfg/snapshots.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"

namespace
{
constexpr LAYER_KIND main_file = LAYER_KIND::MAIN_FILE;
constexpr LAYER_KIND inline_text = LAYER_KIND::INLINE_TEXT;

std::string json_of(const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b,
                    const std::optional<RUN_REPORT>& run = std::nullopt)
{
    SNAPSHOT_DIFFERENCES differences = compare_snapshots(a.snapshot, b.snapshot);
    if (run)
        keep_what_the_run_read(differences, *run);
    return compact_json([&](JSON_WRITER& out) { write_differences_json(out, a, b, differences, run); });
}

// The object without all but the members of these names.
std::string member_of(const std::string& json, const char* name)
{
    return nlohmann::ordered_json::parse(json).at(name).dump();
}

COMPARED_SNAPSHOT side(const char* title)
{
    COMPARED_SNAPSHOT made{title, {}};
    made.snapshot.product = "velmar";
    made.snapshot.release = "23.4";
    return made;
}

TEST(DIFFERENCES_JSON, has_every_field_where_nothing_differs)
{
    COMPARED_SNAPSHOT b = side("now");
    b.snapshot.project = "cpu";
    b.snapshot.regtest = true;
    EXPECT_EQ(json_of(side("monday.json"), b),
              R"({"a":{"title":"monday.json","product":"velmar","release":"23.4","project":null,"regtest":false},)"
              R"("b":{"title":"now","product":"velmar","release":"23.4","project":"cpu","regtest":true},)"
              R"("used":null,"same":true,"installation":[],"environment":[],"files":[],"variables":[],)"
              R"("preferences":[],"cannot_tell":[]})");
}

TEST(DIFFERENCES_JSON, has_a_row_for_each_difference)
{
    COMPARED_SNAPSHOT a = side("a");
    COMPARED_SNAPSHOT b = side("b");
    a.snapshot.release = "23.3";
    a.snapshot.environment = {{"HOME", "/x"}, {"VELMAR_INI", std::nullopt}};
    b.snapshot.environment = {{"HOME", std::nullopt}, {"VELMAR_INI", ""}, {"VELMAR2_INI", "y"}};
    a.snapshot.files = {{"main", "velmar.ini", 3, "11", "behind"},
                        {"appended", std::nullopt, std::nullopt, std::nullopt}};
    b.snapshot.files = {{"main", "velmar.ini", std::nullopt, std::nullopt}, {"regtest", "r.ini", 0, "22"}};
    a.snapshot.variables.add(variable_of("Fan", "1", {main_file}));
    a.snapshot.variables.add(variable_of("gone", "x", {main_file}));
    b.snapshot.variables.add(variable_of("FAN", "2", {main_file, inline_text}));
    a.snapshot.preferences = {
        {"HDL_PREFERENCE", "VHDL", "Verilog", {PREFERENCE_SOURCE::OLDER_RELEASE, "General 23.3_pro"}, "23.3"}};
    b.snapshot.preferences = {{"HDL_PREFERENCE", "Verilog", "Verilog", {PREFERENCE_SOURCE::DEFAULT, ""}, ""}};
    const std::string json = json_of(a, b);
    EXPECT_EQ(member_of(json, "same"), "false");
    EXPECT_EQ(member_of(json, "installation"), R"([{"what":"release","a":"23.3","b":"23.4"}])");
    EXPECT_EQ(member_of(json, "environment"),
              R"([{"name":"HOME","a":"/x","b":null},{"name":"VELMAR_INI","a":null,"b":""},)"
              R"({"name":"VELMAR2_INI","a":null,"b":"y"}])");
    EXPECT_EQ(member_of(json, "files"),
              R"([{"role":"main","a":{"role":"main","path":"velmar.ini","size":3,"sha256":"11"},)"
              R"("b":{"role":"main","path":"velmar.ini","size":null,"sha256":null}},)"
              R"({"role":"regtest","a":null,"b":{"role":"regtest","path":"r.ini","size":0,"sha256":"22"}}])");
    EXPECT_EQ(
        member_of(json, "variables"),
        R"([{"name":"Fan","a":{"name":"Fan","value":"1","external":true,"layer":"main","file":"main","line":1,)"
        R"("item":null,"layers":["main"],"readings":{"bool":true,"int":1,"uint":1,"double":1.0,"double_whole":true}},)"
        R"("b":{"name":"FAN","value":"2","external":true,"layer":"inline","file":null,"line":null,"item":1,)"
        R"("layers":["main","inline"],"readings":{"bool":null,"int":2,"uint":2,"double":2.0,"double_whole":true}},)"
        R"("made_by":"inline","same_in_every_type":false,"dependence":null},)"
        R"({"name":"gone","a":{"name":"gone","value":"x","external":true,"layer":"main","file":"main","line":1,)"
        R"("item":null,"layers":["main"],"readings":{"bool":null,"int":null,"uint":null,"double":0.0,)"
        R"("double_whole":false}},"b":null,"made_by":"main","same_in_every_type":false,"dependence":null}])");
    EXPECT_EQ(member_of(json, "preferences"),
              R"([{"key":"HDL_PREFERENCE","a":{"key":"HDL_PREFERENCE","value":"VHDL","default":"Verilog",)"
              R"("source":"older release","section":"General 23.3_pro","release":"23.3"},)"
              R"("b":{"key":"HDL_PREFERENCE","value":"Verilog","default":"Verilog","source":"default","section":null,)"
              R"("release":null},"made_by":"older release"}])");
    EXPECT_EQ(member_of(json, "cannot_tell"), "[]");
    // The other way round.
    EXPECT_EQ(member_of(json_of(b, a), "preferences").substr(0, 30), R"([{"key":"HDL_PREFERENCE","a":{)");
    EXPECT_EQ(nlohmann::json::parse(json_of(b, a)).at("preferences").at(0).at("made_by"), "older release");
    EXPECT_EQ(nlohmann::json::parse(json_of(b, a)).at("variables").at(1).at("a"), nullptr);
}

TEST(DIFFERENCES_JSON, says_how_a_run_stands_to_each_variable)
{
    COMPARED_SNAPSHOT a = side("a");
    COMPARED_SNAPSHOT b = side("b");
    for (const char* const name : {"read", "perhaps", "unread"})
        a.snapshot.variables.add(variable_of(name, "1", {main_file}));
    RUN_REPORT run;
    run.file = "run.json";
    run.run = "nightly";
    run.read.push_back({"read", 1, std::nullopt, false, true});
    run.uncounted.emplace_back("perhaps");
    run.external_never_read.push_back({"unread", "1"});
    const nlohmann::json json = nlohmann::json::parse(json_of(a, b, run));
    EXPECT_EQ(json.at("used").dump(), R"({"file":"run.json","run":"nightly"})");
    ASSERT_EQ(json.at("variables").size(), 2U);
    EXPECT_EQ(json.at("variables").at(0).at("name"), "perhaps");
    EXPECT_EQ(json.at("variables").at(0).at("dependence"), "perhaps");
    EXPECT_EQ(json.at("variables").at(1).at("dependence"), "read");
    EXPECT_EQ(json.at("same"), false);
}

// Readings of the same assignment differ between releases: no layer made that.
TEST(DIFFERENCES_JSON, has_null_where_no_layer_made_the_difference)
{
    COMPARED_SNAPSHOT a = side("a");
    COMPARED_SNAPSHOT b = side("b");
    SNAPSHOT_VARIABLE variable = variable_of("v", "yes", {main_file});
    a.snapshot.variables.add(variable);
    variable.readings.boolean = true;
    b.snapshot.variables.add(variable);
    EXPECT_EQ(nlohmann::json::parse(json_of(a, b)).at("variables").at(0).at("made_by"), nullptr);
}

TEST(DIFFERENCES_JSON, names_what_cannot_be_told)
{
    COMPARED_SNAPSHOT a = side("a");
    COMPARED_SNAPSHOT b = side("b");
    for (const auto& [one, key] : {std::pair(&a, 'a'), std::pair(&b, 'b')})
    {
        const std::string mark = mark_under(key, '1');
        one->snapshot.variables.add(variable_of("api_token", mark, {main_file}));
        one->snapshot.files.push_back({"preferences", "velmar2.ini", 9, mark});
    }
    const std::string json = json_of(a, b);
    EXPECT_EQ(member_of(json, "same"), "true");
    EXPECT_EQ(member_of(json, "cannot_tell"),
              R"([{"what":"files","name":"preferences"},{"what":"variables","name":"api_token"}])");
}
}
